#include "fleet/AssetRename.h"

#include <array>

#include "data/Attempt.h"
#include "data/GenericTools.h"
#include "data/MainConnection.h"
#include "platform/screen/Screen.h"

namespace dw {

namespace {

// Every table that has the code, the asset's own last.
constexpr std::array<const char*, 10> kTables = {
    "Assets Annual Costs",
    "Assets Lifetime Costs",
    "Assets Period Costs",
    "Maintenance Schedule",
    "Maintenance Transactions",
    "Odometer Entries",
    "Odometer Entry Work Table",
    "Performed Maintenance Work Table",
    "Performed Scheduled Maintenance",
    "Vehicles",
};

bool RenameRows(const AdoConnectionPtr& connection, const std::string& oldID, const std::string& newID) {
  for (const char* table : kTables) {
    const std::string statement = "UPDATE [" + std::string(table) + "] " + " SET [Asset ID] = '" + newID +
                                  "'" + " WHERE [Asset ID] = '" + oldID + "'";
    if (AdoExecute(connection, statement) != 0) return false;
  }
  return true;
}

/// All ten tables or none. A failure is rolled back silently: the user sees the old code again.
bool RenameInTransaction(const AdoConnectionPtr& connection, const std::string& oldID,
                         const std::string& newID) {
  bool renamed = false;
  const Failure failure = Try([&] {
    connection->BeginTrans();
    renamed = RenameRows(connection, oldID, newID);
    if (renamed) connection->CommitTrans();
  });
  if (renamed && !failure) return true;
  // If the rollback fails, closing the connection takes everything back.
  Try([&] { connection->RollbackTrans(); });
  return false;
}

}  // namespace

RenameResult RenameAsset(const std::string& assetID) {
  return RenameAssetTo(assetID, screen::InputBox("Enter New Asset ID:"));
}

RenameResult RenameAssetTo(const std::string& assetID, const std::string& newID) {
  const std::string oldText = QuoteSQL(assetID);
  if (newID.empty()) {
    screen::MessageBox("Rename cancelled. No new ID given.", screen::Icon::Information);
    return RenameResult::Canceled;
  }

  const std::string newText = QuoteSQL(newID);
  {
    const MainConnection asked;
    if (!asked.IsOpen()) return RenameResult::RolledBack;
    const auto taken = asked.Finds("SELECT * FROM Vehicles WHERE [Asset ID] = '" + newText + "'");
    // Whether the code is free could not be read; a message has said so.
    if (!taken) return RenameResult::RolledBack;
    if (*taken) {
      screen::MessageBox("The new Asset ID is already in use.", screen::Icon::Information);
      return RenameResult::InUse;
    }
  }

  const MainConnection main;
  if (!main.IsOpen()) return RenameResult::RolledBack;
  const screen::Hourglass hourglass;
  const bool renamed = RenameInTransaction(main.Connection(), oldText, newText);
  return renamed ? RenameResult::Renamed : RenameResult::RolledBack;
}

}  // namespace dw
