// Connections and record operations around the ADO objects, with their messages, prompts and waits.
//
// No exception leaves these functions (except the end of the program).
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/ado/Ado.h"

namespace dw {

using AdoConnectionPtr = std::shared_ptr<ado::Connection>;
using AdoRecordsetPtr = std::shared_ptr<ado::Recordset>;

/// Opens a connection on one of the global strings (which the file locator may correct). True if open.
bool AdoOpenConnection(AdoConnectionPtr& connection, const std::string& connectionString, bool exclusive);
/// Runs a statement; returns 0 or the last error number. A time-out is tried once more.
std::int32_t AdoExecute(const AdoConnectionPtr& connection, const std::string& sql);
/// Opens a recordset on a connection; returns null after the "Unknown error" box if it cannot.
AdoRecordsetPtr AdoOpenRecordset(const AdoConnectionPtr& connection, const std::string& sql,
                                 int cursor = ado::adOpenKeyset, int lock = ado::adLockReadOnly);
bool AdoAutoAddRS(ado::Recordset& recordset);
/// Adds a row with a chosen ID; with an ID below 1 the database chooses one. False if the row cannot be read
/// back.
bool AdoAddRecordWithID(const std::string& databaseType, const AdoConnectionPtr& connection,
                        ado::Recordset& recordset, const std::string& table, std::int32_t id);
bool AdoUpdateRS(ado::Recordset& recordset, bool refreshAfter, bool jetRefresh);
/// Deletes the row, waiting for as long as another user holds it. If this program itself holds it, reports
/// that at once and returns false.
bool AdoDeleteRS(ado::Recordset& recordset, bool refreshAfter, bool jetRefresh);
bool AdoCancelUpdateRS(ado::Recordset& recordset);
/// 0 free, 1 locked by someone else, 2 other error.
int AdoTestRecordLock(ado::Field field, bool showMessage, const AdoConnectionPtr& connection = nullptr);
bool AdoTableExists(const AdoConnectionPtr& connection, std::string_view table);
bool AdoFieldExists(const AdoConnectionPtr& connection, const std::string& table, std::string_view column);
/// The type code of a column, 0 if not found. Nothing if the query itself failed, which is reported.
std::optional<std::int16_t> AdoGetFieldType(const std::string& connectionString, const std::string& table,
                                            const std::string& column);
/// A Boolean column is true in all rows, any other may be Null. Reports a failure.
void AdoAddColumn(ado::Catalog& catalog, const std::string& table, const std::string& name, int typeCode);
/// True for the data control errors 3661 and 16389, whose boxes are not shown.
bool AdoIgnoreDataError(std::int32_t error);
void AdoRefreshCache(const AdoConnectionPtr& connection, bool doIt);
/// NativeError of the last entry of Errors, 0 if there is none; clears them.
std::int32_t AdoLastNativeError(const AdoConnectionPtr& connection);
/// Shows each connected computer once.
void AdoListConnectedComputers(const AdoConnectionPtr& connection);

}  // namespace dw
