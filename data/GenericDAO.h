// Record operations that survive other users: waits, retries and prompts around the DAO objects.
//
// No exception leaves these functions (except the end of the program): they show failures to the user, and
// the caller gets a result or an error number.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/dao/Dao.h"

namespace dw {

using DaoWorkspacePtr = std::shared_ptr<dao::Workspace>;
using DaoDatabasePtr = std::shared_ptr<dao::Database>;
using DaoRecordsetPtr = std::shared_ptr<dao::Recordset>;

/// Grows by one at each DaoOpenDatabase and makes workspace names unique.
extern int DaoWorkspaceCount;

/// Opens a data file. Waits while another user has it exclusively (a question after eleven waits of 5
/// seconds), asks the locator for a missing file and repairs a damaged one. True if open; `error` is 0 then.
bool DaoOpenDatabase(std::string path, bool exclusive, const std::string& user, const std::string& password,
                     DaoWorkspacePtr& workspace, DaoDatabasePtr& database, int& error, bool readOnly = false);

/// AddNew, with a retry prompt after each failure.
void DaoAddRecord(dao::Recordset& recordset);
/// Edit that does not wait for a lock: returns 0 if the record is now held, otherwise 3218, 3260 or 3343 at
/// once.
int DaoGetRecord(dao::Recordset& recordset);
/// Edit that waits for as long as another user's transaction holds the record; returns 0 if it is now held,
/// otherwise the number of the error. A hold of this program's own ends the wait at once, here and in the
/// next two functions, with a message.
int DaoEditRecord(dao::Recordset& recordset);
/// Update that waits for the lock.
void DaoUpdateRecord(dao::Recordset& recordset);
/// Delete that waits for the lock.
void DaoDeleteRecord(dao::Recordset& recordset);

/// Calls Close and clears the reference; ignores failures. Serves ADO and DAO objects alike.
template <class T>
void CloseObject(std::shared_ptr<T>& object) {
  if (!object) return;
  try {
    object->Close();
  } catch (const std::exception&) {
  }
  object.reset();
}

/// CloseObject on each, in this order.
void CloseAll(DaoRecordsetPtr& recordset, DaoDatabasePtr& database, DaoWorkspacePtr& workspace);

/// Exact comparison of names, case included.
bool DaoTableExists(dao::Database& database, std::string_view table);
bool DaoFieldExists(const dao::TableDef& table, std::string_view field);
void AddAutoField(dao::TableDef& table, const std::string& name);
/// `type` is a dao::FieldType; a memo allows empty texts.
void AddField(dao::TableDef& table, const std::string& name, int type);
void AddTextField(dao::TableDef& table, const std::string& name, int size);
/// Replaces the character at `position` (from 1) by its upper case form.
void UppercaseCharAt(int position, std::string& text, int length);

}  // namespace dw
