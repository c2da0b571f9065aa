#include "fleet/AssetChildren.h"

#include <string>

#include "data/BrackenfelGlobals.h"
#include "data/GenericADO.h"
#include "data/GenericDAO.h"
#include "platform/screen/Screen.h"

namespace dw {
namespace {

constexpr const char* kRemove = "Are you sure you want to remove this entry?";
constexpr const char* kDelete = "Are you sure you want to delete this record?";

bool Agreed(const char* question) {
  return screen::MessageBox(question, screen::Icon::Question, screen::Buttons::YesNo) == screen::Answer::Yes;
}

/// Closed on every way out.
struct OwnConnection {
  OwnConnection() { open = AdoOpenConnection(connection, DataConnect, false); }
  ~OwnConnection() { CloseObject(connection); }
  OwnConnection(const OwnConnection&) = delete;
  OwnConnection& operator=(const OwnConnection&) = delete;
  AdoConnectionPtr connection;
  bool open = false;
};

/// Whether nothing was done in the transaction that has to go before it; tells what has. A check that cannot
/// be made stands in the way as well.
bool NothingPerformedIn(const AdoConnectionPtr& connection, const std::string& id) {
  AdoRecordsetPtr performed =
      AdoOpenRecordset(connection, "SELECT * FROM Maintenance_Performed WHERE Maintenance_Entry_ID = " + id);
  if (!performed) return false;
  const bool nothing = performed->AtEnd();
  CloseObject(performed);
  if (!nothing)
    screen::MessageBox(
        "That Maintenance Entry has recurring maintenance entries which must be removed first.",
        screen::Icon::Information);
  return nothing;
}

bool DeleteRow(const AdoConnectionPtr& connection, const std::string& query) {
  AdoRecordsetPtr row = AdoOpenRecordset(connection, query, ado::adOpenKeyset, ado::adLockPessimistic);
  if (!row) return false;
  bool gone = true;
  if (row->AtEnd())
    screen::MessageBox("That ID is no longer on file.", screen::Icon::Exclamation);
  else
    gone = AdoDeleteRS(*row, false, false);
  CloseObject(row);
  AdoRefreshCache(connection, UseAccess);
  return gone;
}

bool AskAndDelete(const char* question, const std::string& query) {
  if (!Agreed(question)) return false;
  const OwnConnection own;
  return own.open && DeleteRow(own.connection, query);
}

}  // namespace

bool RemoveTransaction(std::int32_t id) {
  const std::string number = std::to_string(id);
  const OwnConnection own;
  return own.open && NothingPerformedIn(own.connection, number) && Agreed(kRemove) &&
         DeleteRow(own.connection, "SELECT * FROM [Maintenance Transactions] WHERE ID = " + number);
}

bool RemoveReading(std::int32_t id) {
  return AskAndDelete(kRemove, "SELECT * FROM [Odometer Entries] WHERE [ID] = " + std::to_string(id));
}

bool DeleteScheduleLine(std::int32_t id) {
  return AskAndDelete(kDelete, "SELECT * FROM [Maintenance Schedule] WHERE [ID] = " + std::to_string(id));
}

}  // namespace dw
