#include "windows/DaoDelete.h"

#include <algorithm>

#include "data/Attempt.h"
#include "data/BrackenfelGlobals.h"
#include "data/GenericDAO.h"

namespace dw {
namespace {

/// The main file, closed on every way out.
struct OwnFile {
  DaoWorkspacePtr workspace;
  DaoDatabasePtr database;
  DaoRecordsetPtr rows;
  OwnFile() = default;
  ~OwnFile() { CloseAll(rows, database, workspace); }
  OwnFile(const OwnFile&) = delete;
  OwnFile& operator=(const OwnFile&) = delete;

  bool Open() {
    int error = 0;
    return DaoOpenDatabase(DataFile, false, DataUserID, DataPassword, workspace, database, error);
  }
  /// False, after a message, where the query cannot be run.
  bool Read(const std::string& query) {
    CloseObject(rows);
    const Failure failure = Try([&] { rows = database->OpenRecordset(query); });
    if (failure)
      screen::MessageBox("Error #" + std::to_string(failure.number) + "\r" + failure.description,
                         screen::Icon::Critical);
    return !failure;
  }
};

}  // namespace

bool DaoDeleteFromList(const std::string& recordQuery, const std::vector<InUseCheck>& checks) {
  if (screen::MessageBox("Are you sure you want to delete this record?", screen::Icon::Question,
                         screen::Buttons::YesNo) != screen::Answer::Yes)
    return false;
  OwnFile file;
  if (!file.Open()) return false;
  for (const InUseCheck& check : checks) {
    // A check that cannot be made stands in the way as well.
    if (!file.Read(check.query)) return false;
    if (file.rows->AtEnd()) continue;
    screen::MessageBox(check.words, check.icon);
    return false;
  }
  if (!file.Read(recordQuery)) return false;
  if (file.rows->AtEnd()) {
    screen::MessageBox("That ID is no longer on file.", screen::Icon::Exclamation);
    return false;
  }
  DaoDeleteRecord(*file.rows);
  // Where the delete failed, which has been told, the record is still there.
  return file.Read(recordQuery) && file.rows->AtEnd();
}

}  // namespace dw
