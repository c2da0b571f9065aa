#include "fleet/AssetRemoval.h"

#include <array>

#include "data/FailureBox.h"
#include "data/GenericDAO.h"
#include "data/MainConnection.h"
#include "data/Parameters.h"
#include "platform/screen/Screen.h"

namespace dw {

namespace {

struct RemovalStep {
  const char* statement;  ///< the asset's code follows it
  const char* refusal;
};

// The second and third step name each other's tables. Users know these words, so they stay.
constexpr std::array<RemovalStep, 3> kSteps = {{
    {"DELETE * FROM [Odometer Entries] WHERE [Asset ID] = '",
     "Unable to remove asset's odometer readings. Removal cancelled."},
    {"DELETE * FROM [Maintenance Schedule] WHERE [Asset ID] = '",
     "Unable to remove asset's maintenance entries. Removal cancelled."},
    {"DELETE * FROM [Performed Scheduled Maintenance] WHERE [Asset ID] = '",
     "Unable to remove asset's scheduled maintenance. Removal cancelled."},
}};

bool Agreed(const std::string& question, screen::Icon icon) {
  return screen::MessageBox(question, icon, screen::Buttons::YesNo) == screen::Answer::Yes;
}

/// Asks only if the table has rows of the asset. False for a No, and after the message about a query that
/// fails. The code goes into the query unchanged, as it does in the statements of the removal.
bool AgreedToRows(const AdoConnectionPtr& connection, const std::string& table, const std::string& assetID,
                  const std::string& question) {
  AdoRecordsetPtr rows =
      AdoOpenRecordset(connection, "SELECT * FROM [" + table + "] WHERE [Asset ID] = '" + assetID + "'");
  if (!rows) return false;
  const bool agreed = rows->AtEnd() || Agreed(question, screen::Icon::Question);
  CloseObject(rows);
  return agreed;
}

/// The statements between the beginning of the transaction and its commit; false if it has to be rolled back.
bool RemoveRows(const AdoConnectionPtr& connection, ado::Recordset& asset, const std::string& assetID) {
  for (const RemovalStep& step : kSteps) {
    if (AdoExecute(connection, step.statement + assetID + "'") != 0) {
      screen::MessageBox(step.refusal, screen::Icon::Information);
      return false;
    }
  }
  screen::MessageBox(
      "WARNING: Accumulating rermoved Asset costs into the Deleted Asset in not yet functional. "
      "This data will be permanently lost.",
      screen::Icon::Information);
  // The costs stay under the removed code: the asset for removed ones is looked up, but nothing is moved to
  // it.
  GetDeletedInventoryID();
  if (!AdoDeleteRS(asset, false, false)) return false;
  AdoRefreshCache(connection, true);
  return true;
}

RemovalResult RemoveInTransaction(const AdoConnectionPtr& connection, ado::Recordset& asset,
                                  const std::string& assetID) {
  bool removed = false;
  const auto remove = [&] {
    connection->BeginTrans();
    removed = RemoveRows(connection, asset, assetID);
    if (removed) connection->CommitTrans();
  };
  if (Done(remove, "The asset was not removed.") && removed) return RemovalResult::Removed;
  // If the rollback fails, closing the connection takes everything back.
  Try([&] { connection->RollbackTrans(); });
  return RemovalResult::RolledBack;
}

}  // namespace

RemovalResult RemoveAsset(std::int32_t id, const std::string& assetID, std::int64_t recordCount) {
  if (id == GetDeletedInventoryID()) {
    screen::MessageBox("This ID is reserved for deleted assets.\rIt cannot be removed.",
                       screen::Icon::Information);
    return RemovalResult::Refused;
  }
  const screen::Hourglass hourglass;
  if (recordCount < 1) {
    screen::MessageBox("There are no records for which to display detail.");
    return RemovalResult::Refused;
  }

  const MainConnection main;
  if (!main.IsOpen()) return RemovalResult::Refused;
  const AdoConnectionPtr& connection = main.Connection();
  // Opening a connection has set the pointer back to normal.
  screen::SetPointer(screen::Pointer::Hourglass);
  RemovalResult result = RemovalResult::Refused;
  if (AgreedToRows(connection, "Odometer Entries", assetID, "The item has odometer entries. Continue?") &&
      AgreedToRows(connection, "Maintenance Transactions", assetID,
                   "The item has maintenance entries. Continue?") &&
      Agreed("Are you sure you want to delete this record?", screen::Icon::None)) {
    AdoRecordsetPtr asset = main.Edit("SELECT * FROM [Vehicles] WHERE [ID] = " + std::to_string(id));
    if (asset && asset->AtEnd()) {
      screen::MessageBox("That ID is no longer on file.", screen::Icon::Exclamation);
    } else if (asset) {
      result = RemoveInTransaction(connection, *asset, assetID);
    }
    CloseObject(asset);
  }
  return result;
}

}  // namespace dw
