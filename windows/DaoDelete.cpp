#include "windows/DaoDelete.h"

#include "data/FailureBox.h"
#include "data/GenericDAO.h"
#include "data/MainFile.h"

namespace dw {
namespace {

/// The checks and the delete. False if the record stays.
bool DeleteChecked(MainFile& file, const std::string& recordQuery, const std::vector<InUseCheck>& checks) {
  for (const InUseCheck& check : checks) {
    if (file.Read(check.query).AtEnd()) continue;
    screen::MessageBox(check.words, check.icon);
    return false;
  }
  dao::Recordset& record = file.Edit(recordQuery);
  if (record.AtEnd()) {
    screen::MessageBox("That ID is no longer on file.", screen::Icon::Exclamation);
    return false;
  }
  DaoDeleteRecord(record);
  // If the delete failed, which has been reported, the record is still there.
  return file.Read(recordQuery).AtEnd();
}

}  // namespace

bool DaoDeleteFromList(const std::string& recordQuery, const std::vector<InUseCheck>& checks) {
  if (screen::MessageBox("Are you sure you want to delete this record?", screen::Icon::Question,
                         screen::Buttons::YesNo) != screen::Answer::Yes)
    return false;
  MainFile file;
  bool gone = false;
  // A check that fails prevents the delete as well.
  return file.IsOpen() && Done([&] { gone = DeleteChecked(file, recordQuery, checks); }) && gone;
}

}  // namespace dw
