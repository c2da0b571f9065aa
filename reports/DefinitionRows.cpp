#include "reports/DefinitionRows.h"

#include "data/BrackenfelGlobals.h"
#include "data/FailureBox.h"
#include "data/GenericADO.h"
#include "data/GenericDAO.h"
#include "platform/screen/Screen.h"

namespace dw {
namespace {

bool Sure() {
  return screen::MessageBox("Are you sure you want to delete this record?", screen::Icon::Question,
                            screen::Buttons::YesNo) == screen::Answer::Yes;
}

/// Reads a row again and deletes it, after `before` and together with what that has deleted.
template <class Before>
bool DeleteRow(const std::string& table, std::int32_t id, Before before) {
  AdoConnectionPtr connection;
  if (!AdoOpenConnection(connection, SandsConnect, false)) return false;
  AdoRecordsetPtr row =
      AdoOpenRecordset(connection, "SELECT * FROM [" + table + "] WHERE [ID] = " + std::to_string(id),
                       ado::adOpenKeyset, ado::adLockPessimistic);
  bool gone = false;
  if (row && row->AtEnd()) {
    screen::MessageBox("That ID is no longer on file.", screen::Icon::Exclamation);
  } else if (row) {
    connection->BeginTrans();
    gone = before(connection) && AdoDeleteRS(*row, false, true);
    if (gone)
      gone = Done([&] { connection->CommitTrans(); });
    else
      connection->RollbackTrans();
    AdoRefreshCache(connection, true);
  }
  CloseObject(row);
  CloseObject(connection);
  return gone;
}

}  // namespace

bool DeleteDefinition(std::int32_t queryID) {
  if (!Sure()) return false;
  return DeleteRow("Select and Sort Queries", queryID, [queryID](const AdoConnectionPtr& connection) {
    for (const char* table : {"Selection Criteria", "Sort Criteria"}) {
      const std::int32_t error = AdoExecute(connection, std::string("DELETE * FROM [") + table +
                                                            "] WHERE [Query ID] =" + std::to_string(queryID));
      if (error == 0) continue;
      screen::MessageBox("Error #" + std::to_string(error) +
                             "\r\rThe lines of this definition are being updated elsewhere. It has not been "
                             "deleted.",
                         screen::Icon::Exclamation);
      return false;
    }
    return true;
  });
}

bool DeleteLine(const std::string& table, std::int32_t id) {
  return Sure() && DeleteRow(table, id, [](const AdoConnectionPtr&) { return true; });
}

std::int32_t NextLineNumber(const std::string& table, std::int32_t queryID) {
  AdoConnectionPtr connection;
  std::int32_t next = 1;
  if (!AdoOpenConnection(connection, SandsConnect, false)) return next;
  AdoRecordsetPtr rows = AdoOpenRecordset(connection, "SELECT * FROM [" + table +
                                                          "] WHERE [Query ID] = " + std::to_string(queryID) +
                                                          " ORDER BY [Line Number] DESC");
  if (rows && !rows->AtEnd())
    if (const rt::Value highest = rows->Get("Line Number"); !highest.IsNull()) next = highest.AsLong() + 1;
  CloseObject(rows);
  CloseObject(connection);
  return next;
}

}  // namespace dw
