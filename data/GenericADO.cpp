#include "data/GenericADO.h"

#include <algorithm>
#include <array>
#include <vector>

#include "data/Application.h"
#include "data/Attempt.h"
#include "data/BrackenfelGlobals.h"
#include "data/GenericDAO.h"
#include "data/GenericTools.h"
#include "data/OwnHold.h"
#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"
#include "platform/screen/Screen.h"

namespace dw {

using screen::Answer;
using screen::Buttons;
using screen::Icon;
using screen::Pointer;

namespace {

constexpr int kBooleanCode = 11;
constexpr int kTextCode = 202;
constexpr int kLongestText = 255;

/// Native numbers of an open that failed for a reason the caller deals with, so that no box is shown.
constexpr std::array<std::int32_t, 5> kSilentOpenErrors = {ado::kNativeFileNotFound, -536937472, -66913278,
                                                           ado::kErrorsOccurred, -544083682};

std::string Number(std::int32_t number) { return std::to_string(number); }

ado::Connection& Given(const AdoConnectionPtr& connection) {
  if (!connection) throw rt::RuntimeError(91, "Object variable not set");
  return *connection;
}

/// The bare file name in a connection string; empty if the string names none.
std::string FileNameIn(const std::string& connectionString) {
  static const std::string kKey = ";Data Source=";
  const auto key = connectionString.find(kKey);
  if (key == std::string::npos) return {};
  const auto begin = key + kKey.size();
  return BareFileName(connectionString.substr(begin, connectionString.find(';', begin) - begin));
}

/// Why an open was refused: the engine's own number if the error has one.
std::int32_t OpenErrorNumber(const AdoConnectionPtr& connection, const Failure& failure) {
  const std::int32_t native = AdoLastNativeError(connection);
  return native != 0 ? native : failure.number;
}

/// A lock, or the unspecified error that the provider reports for one.
bool IsDeleteLock(std::int32_t number) {
  return number == store::kSaveLocked || number == store::kSessionLocked || number == store::kRecordLocked ||
         number == ado::kUnspecified || number == ado::kErrorsOccurred;
}

void RefreshAfterChange(ado::Recordset& recordset, bool refreshAfter, bool jetRefresh) {
  if (refreshAfter) AdoRefreshCache(recordset.ActiveConnection(), jetRefresh);
}

}  // namespace

bool AdoOpenConnection(AdoConnectionPtr& connection, const std::string& connectionString, bool exclusive) {
  screen::SetPointer(Pointer::Hourglass);
  bool opened = true;
  for (;;) {
    opened = true;
    std::string text = connectionString;
    if (!text.ends_with(';')) text += ';';
    if (UseAccess) text += exclusive ? "Mode=Share Exclusive;" : "Mode=Share Deny None;";
    const Failure failure = Try([&] {
      if (!connection) connection = std::make_shared<ado::Connection>();
      connection->CommandTimeout = 15;
      connection->ConnectionTimeout = 2;
      connection->Open(text);
    });
    if (!failure) break;

    opened = false;
    const std::int32_t number = OpenErrorNumber(connection, failure);
    if (std::find(kSilentOpenErrors.begin(), kSilentOpenErrors.end(), number) == kSilentOpenErrors.end())
      screen::MessageBox("Unknown error #" + Number(number) + " trying to open connection." + "\r\r" +
                             failure.description + "\n\n" +
                             "Contact your System Administrator if this continues.",
                         Icon::Critical);
    if (number != ado::kNativeFileNotFound) break;
    const std::string name = FileNameIn(connectionString);
    if (name.empty()) break;
    LocateFile(name);
  }
  screen::SetPointer(Pointer::Normal);
  return opened;
}

std::int32_t AdoExecute(const AdoConnectionPtr& connection, const std::string& sql) {
  const auto execute = [&] { Given(connection).Execute(sql); };
  Failure failure = Try(execute);
  if (failure.number == ado::kTimeout) failure = Try(execute);
  return failure.number;
}

AdoRecordsetPtr AdoOpenRecordset(const AdoConnectionPtr& connection, const std::string& sql, int cursor,
                                 int lock) {
  auto recordset = std::make_shared<ado::Recordset>();
  const Failure failure = Try([&] {
    Given(connection);
    recordset->Open(sql, connection, cursor, lock);
  });
  if (!failure) return recordset;
  screen::MessageBox("Unknown error #" + Number(failure.number) + " trying to open recordset." + "\r\r" +
                         failure.description + "\n\n" +
                         "Contact your System Administrator if this continues.",
                     Icon::Critical);
  return nullptr;
}

bool AdoAutoAddRS(ado::Recordset& recordset) {
  const Failure failure = Try([&] { recordset.AddNew(); });
  if (failure)
    screen::MessageBox("Error #" + Number(failure.number) + "\r\r" + failure.description + "\r\r" +
                           "Add failed in AdoAutoAddRS.",
                       Icon::Critical);
  return !failure;
}

bool AdoAddRecordWithID(const std::string& databaseType, const AdoConnectionPtr& connection,
                        ado::Recordset& recordset, const std::string& table, std::int32_t id) {
  if (id < 1) return !Try([&] { recordset.AddNew(); });

  const bool onServer = databaseType == "SQL Server";
  std::string sql = onServer ? "SET IDENTITY_INSERT " + table + " ON; " : "";
  sql += "INSERT INTO " + table + " (ID) VALUES (" + Number(id) + "); ";
  if (onServer) sql += "SET IDENTITY_INSERT " + table + " OFF";

  // Each step is tried even if the one before it failed: what counts is whether the row can be read back.
  AdoExecute(connection, sql);
  Try([&] { recordset.Close(); });
  Try([&] {
    recordset.Open("SELECT * FROM " + table + " WHERE ID = " + Number(id), connection, ado::adOpenKeyset,
                   ado::adLockPessimistic);
  });
  bool found = false;
  Try([&] { found = recordset.IsOpen() && !recordset.AtEnd(); });
  return found;
}

bool AdoUpdateRS(ado::Recordset& recordset, bool refreshAfter, bool jetRefresh) {
  bool stored = true;
  for (;;) {
    const Failure failure = Try([&] { recordset.Update(); });
    stored = !failure;
    if (stored) break;
    if (failure.number != ado::kUnspecified && failure.number != ado::kErrorsOccurred) {
      screen::MessageBox("Unknown error #" + Number(failure.number) + " during record update." +
                             failure.description + "\n\n" + "** Update Failed **" + "\n" +
                             "Contact your System Administrator if this continues.",
                         Icon::Critical);
      break;
    }
    screen::SetPointer(Pointer::Hourglass);
    const Answer answer =
        screen::MessageBox(failure.description + "\n\n" +
                               "Contact your System Administrator about performing this function."
                               "Then click OK to continue or click Cancel to quit.",
                           Icon::Information, Buttons::OkCancel);
    // The pointer stays an hourglass: callers restore it once they know of the cancellation.
    if (answer == Answer::Cancel) return false;
    screen::SetPointer(Pointer::Normal);
  }
  RefreshAfterChange(recordset, refreshAfter, jetRefresh);
  return stored;
}

bool AdoDeleteRS(ado::Recordset& recordset, bool refreshAfter, bool jetRefresh) {
  bool deleted = true;
  LockWait wait;
  for (;;) {
    const Failure failure = Try([&] { recordset.Delete(); });
    deleted = !failure;
    if (deleted) break;
    if (!IsDeleteLock(failure.number)) {
      screen::MessageBox("Unknown error #" + Number(failure.number) + " during record delete." +
                             failure.description + "\n\n" + "** Delete Failed **" + "\n" +
                             "Contact your System Administrator if this continues.",
                         Icon::Critical);
      break;
    }
    if (ReportOwnHold(recordset.Cursor())) break;
    wait.Pause(failure.description + "\n" + "Check other " + screen::ApplicationTitle() +
               " workstations to make sure they exit their update." + "Then click OK to continue.");
  }
  RefreshAfterChange(recordset, refreshAfter, jetRefresh);
  return deleted;
}

bool AdoCancelUpdateRS(ado::Recordset& recordset) {
  const Failure failure = Try([&] { recordset.CancelUpdate(); });
  if (failure)
    screen::MessageBox("Unknown error #" + Number(failure.number) + " during CancelUpdate." + "\r" +
                           failure.description + "\r" +
                           "Contact your System Administrator if this continues.",
                       Icon::Information);
  return !failure;
}

int AdoTestRecordLock(ado::Field field, bool showMessage, const AdoConnectionPtr& connection) {
  const Failure failure = Try([&] { field.SetValue(field.Value()); });
  if (!failure) return 0;
  if (failure.number == ado::kProviderFailure) {
    if (showMessage)
      screen::MessageBox(
          "This record is apparently being updated elsewhere. "
          "You will not be able to change any information at this time.",
          Icon::Information);
    if (connection && UseAccess) AdoListConnectedComputers(connection);
    return 1;
  }
  screen::MessageBox("Error " + Number(failure.number) + "\r\r" + failure.description);
  if (connection) screen::MessageBox(Number(AdoLastNativeError(connection)), Icon::Information);
  return 2;
}

bool AdoTableExists(const AdoConnectionPtr& connection, std::string_view table) {
  bool found = false;
  Try([&] {
    Given(connection);
    for (const std::string& name : ado::Catalog(connection).Tables()) found = found || name == table;
  });
  return found;
}

bool AdoFieldExists(const AdoConnectionPtr& connection, const std::string& table, std::string_view column) {
  bool tableFound = false;
  bool columnFound = false;
  Try([&] {
    Given(connection);
    ado::Catalog catalog(connection);
    // The catalog finds a table by its name in any case; the column name must match exactly.
    for (const std::string& name : catalog.Tables()) tableFound = tableFound || rt::EqualNoCase(name, table);
    if (!tableFound) return;
    for (const ado::Column& candidate : catalog.Columns(table))
      columnFound = columnFound || candidate.name == column;
  });
  if (!tableFound) screen::MessageBox("Table '" + table + "' not found in database.", Icon::Information);
  return columnFound;
}

std::optional<std::int16_t> AdoGetFieldType(const std::string& connectionString, const std::string& table,
                                            const std::string& column) {
  std::int16_t fieldType = 0;
  AdoConnectionPtr connection;
  if (!AdoOpenConnection(connection, connectionString, false)) return std::nullopt;
  const Failure failure = Try([&] {
    for (const ado::Column& candidate : ado::Catalog(connection).Columns(table))
      if (candidate.name == column) fieldType = static_cast<std::int16_t>(candidate.type);
  });
  CloseObject(connection);
  if (!failure) return fieldType;
  screen::MessageBox("Error " + Number(failure.number) + " getting type of field for " + table + "." +
                         column + "\r" + failure.description,
                     Icon::Information);
  return std::nullopt;
}

void AdoAddColumn(ado::Catalog& catalog, const std::string& table, const std::string& name, int typeCode) {
  const bool isBoolean = typeCode == kBooleanCode;
  if (isBoolean) screen::DoEvents();
  const ado::Column column{name, typeCode, typeCode == kTextCode ? kLongestText : 0};
  const Failure failure = Try([&] { catalog.AppendColumn(table, column, !isBoolean, isBoolean); });
  if (failure)
    screen::MessageBox("Error #" + Number(failure.number) + "\r\r" + failure.description + "\r\r" +
                           "Add failed in AdoAddColumn.",
                       Icon::Critical);
}

bool AdoIgnoreDataError(std::int32_t error) { return error == 3661 || error == 16389; }

void AdoRefreshCache(const AdoConnectionPtr& connection, bool doIt) {
  if (!doIt) return;
  // A failure does no harm: the next query sees what others wrote.
  Try([&] { ado::JetEngine::RefreshCache(Given(connection)); });
}

std::int32_t AdoLastNativeError(const AdoConnectionPtr& connection) {
  if (!connection) return 0;
  const std::int32_t native = connection->Errors.empty() ? 0 : connection->Errors.back().nativeError;
  connection->Errors.clear();
  return native;
}

void AdoListConnectedComputers(const AdoConnectionPtr& connection) {
  if (!connection || !UseAccess) return;
  std::vector<std::string> computers;
  const Failure failure = Try([&] {
    for (const ado::SchemaRow& row : connection->OpenUserRoster()) {
      if (!row.connected) continue;
      std::string name = rt::Trim(row.computerName);
      if (!name.empty()) name.pop_back();  // the NUL that ends it
      if (std::find(computers.begin(), computers.end(), name) == computers.end())
        computers.push_back(std::move(name));
    }
  });
  if (failure) return;
  std::string text = "Current Computers In Use:\r";
  for (const std::string& name : computers) text += name + "\r";
  screen::MessageBox(text, Icon::Information);
}

}  // namespace dw
