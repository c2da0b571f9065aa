#include "data/GenericDAO.h"

#include "data/Application.h"
#include "data/Attempt.h"
#include "data/BrackenfelGlobals.h"
#include "data/GenericTools.h"
#include "data/OwnHold.h"
#include "platform/runtime/Text.h"
#include "platform/screen/Screen.h"

namespace dw {

using screen::Answer;
using screen::Buttons;
using screen::Icon;

int DaoWorkspaceCount = 0;

namespace {

/// The engine could not lock the file.
constexpr int kCouldNotLockFile = 3050;

std::string Number(std::int32_t number) { return std::to_string(number); }

/// Lets the user find a missing file; `path` becomes its path in the directory that was chosen.
void FindAgain(std::string& path) {
  const std::string name = BareFileName(path);
  screen::SetPointer(screen::Pointer::Hourglass);
  LocateFile(path);
  screen::SetPointer(screen::Pointer::Normal);
  const std::string stem = kApplicationCode;
  path = FindFile(rt::EqualNoCase(name.substr(0, stem.size()), stem) ? DataPath : SystemPath, name);
}

/// The notice that is shown while a file is repaired. It closes also if the program ends in the middle.
class RepairNotice {
 public:
  explicit RepairNotice(const std::string& path) {
    screen::ShowNotice(screen::ApplicationTitle() + " Data Base Repair",
                       path + " is corrupt. Repair in progress. Please wait...");
  }
  ~RepairNotice() { screen::HideNotice(); }
  RepairNotice(const RepairNotice&) = delete;
  RepairNotice& operator=(const RepairNotice&) = delete;
};

/// Waits 5 seconds for a file that others have exclusively, and asks first after eleven such waits. False if
/// the user does not want to wait any longer.
bool WaitForFile(const std::string& path, int& waits) {
  if (waits > 10) {
    const Answer answer = screen::MessageBox(
        path + " is in use by another user or application. Answering No will terminate the application." +
            "\r\r" + "Continue waiting?",
        Icon::None, Buttons::YesNo);
    if (answer == Answer::No) return false;
    waits = 0;
  }
  const screen::Hourglass hourglass;
  screen::Sleep(5000);
  ++waits;
  return true;
}

/// Tries `verb` for as long as another user's lock keeps it out. Any other failure is shown and ends the
/// wait, and so does a hold of this program's own, which no wait can end. Returns the last error number, 0
/// for success.
template <class Verb>
std::int16_t WaitForRecord(dao::Recordset& recordset, Verb verb, const char* during,
                           LockWait::Events events) {
  LockWait wait;
  for (;;) {
    const Failure failure = Try(verb);
    const auto number = static_cast<std::int16_t>(failure.number);
    switch (number) {
      case 0:
        return 0;
      case store::kSaveLocked:
      case store::kSessionLocked:
      case store::kRecordLocked:
        if (ReportOwnHold(recordset.Cursor())) return number;
        break;
      default:
        screen::MessageBox("Unknown error #" + Number(number) + during + failure.description + "\n\n" +
                               "** Update Failed **" + "\n" +
                               "Contact your System Administrator if this continues.",
                           Icon::Critical);
        return number;
    }
    wait.Pause(failure.description + "\n" +
                   "Check this person's workstation to make sure they exit their update."
                   "Then click OK to continue.",
               events);
  }
}

/// Definitions have no prompt of their own: a failure is reported, and the caller goes on.
void ShowDefinitionFailure(const Failure& failure, const dao::TableDef& table, const std::string& field) {
  if (!failure) return;
  screen::MessageBox("Error #" + Number(failure.number) + "\r" + failure.description + "\r\r" +
                         "Unable to add the field '" + field + "' to table '" + table.Name() + "'.",
                     Icon::Critical);
}

void AppendField(dao::TableDef& table, const dao::Field& field) {
  ShowDefinitionFailure(Try([&] { table.AppendField(field); }), table, field.name);
}

}  // namespace

bool DaoOpenDatabase(std::string path, bool exclusive, const std::string& user, const std::string& password,
                     DaoWorkspacePtr& workspace, DaoDatabasePtr& database, int& error, bool readOnly) {
  ++DaoWorkspaceCount;
  workspace = dao::DBEngine::CreateWorkspace(screen::ApplicationTitle() + std::to_string(DaoWorkspaceCount),
                                             user, password, dao::dbUseJet);
  database.reset();
  int waits = 0;
  for (;;) {
    const Failure failure = Try([&] { database = workspace->OpenDatabase(path, exclusive, readOnly); });
    error = failure.number;
    switch (error) {
      case 0:
        return true;

      case store::kFileNotFound:
      case store::kPathNotFound:
        FindAgain(path);
        break;

      case store::kBadFormat: {
        const RepairNotice notice(path);
        RepairFile(path);
        break;
      }

      case store::kFileInUse:
      case kCouldNotLockFile:
      case store::kOpenedExclusively:
        if (WaitForFile(path, waits)) break;
        CloseObject(workspace);
        EndApplication();
        return false;

      default:
        screen::MessageBox("Error # " + Number(error) + " while opening " + path + " data base." + "\n" +
                               failure.description + "\n\n\n" +
                               "Contact your Systems Administrator with the error number shown here.",
                           Icon::Critical);
        screen::MessageBox("Error #" + Number(error) + " occurred during open" + "\r" + failure.description +
                               "\r\r" + "Application terminated.",
                           Icon::Critical);
        CloseObject(workspace);
        EndApplication();
        return false;
    }
  }
}

void DaoAddRecord(dao::Recordset& recordset) {
  for (;;) {
    const Failure failure = Try([&] { recordset.AddNew(); });
    if (!failure) break;
    // Also for a lock: the person who adds a record sees it at once and decides. The waits below serve work
    // that must get through.
    screen::MessageBox("Error #" + Number(failure.number) + "\r" + failure.description + "\r\r" +
                           "Unable to add new record. Contact your System Administrator if this continues.",
                       Icon::Critical);
    if (screen::MessageBox("Try again to add record?", Icon::Exclamation, Buttons::RetryCancel) !=
        Answer::Retry)
      break;
  }
  dao::DBEngine::Idle(1);
}

int DaoGetRecord(dao::Recordset& recordset) {
  for (;;) {
    const Failure failure = Try([&] { recordset.Edit(); });
    const int error = failure.number;
    if (error == 0) return error;
    const bool locked = error == store::kEditLocked || error == store::kRecordLocked;
    if (locked)
      screen::MessageBox("Record is currently locked elsewhere.", Icon::Information);
    else
      screen::MessageBox("Error #" + Number(error) + "\r" + failure.description, Icon::Critical);
    if (locked || error == store::kBadFormat) return error;
    if (screen::MessageBox("Try again to get record?", Icon::Exclamation, Buttons::RetryCancel) !=
        Answer::Retry)
      return error;
  }
}

int DaoEditRecord(dao::Recordset& recordset) {
  return WaitForRecord(
      recordset, [&] { recordset.Edit(); }, " during record edit.", LockWait::Events::LetRun);
}

void DaoUpdateRecord(dao::Recordset& recordset) {
  WaitForRecord(
      recordset, [&] { recordset.Update(); }, " during record update.", LockWait::Events::Hold);
  dao::DBEngine::Idle(1);
}

void DaoDeleteRecord(dao::Recordset& recordset) {
  WaitForRecord(
      recordset, [&] { recordset.Delete(); }, " during record delete.", LockWait::Events::Hold);
  dao::DBEngine::Idle(1);
}

void CloseAll(DaoRecordsetPtr& recordset, DaoDatabasePtr& database, DaoWorkspacePtr& workspace) {
  CloseObject(recordset);
  CloseObject(database);
  CloseObject(workspace);
}

bool DaoTableExists(dao::Database& database, std::string_view table) {
  bool found = false;
  Try([&] {
    for (const std::string& name : database.TableNames()) found = found || name == table;
  });
  return found;
}

bool DaoFieldExists(const dao::TableDef& table, std::string_view field) {
  bool found = false;
  Try([&] {
    for (const dao::Field& candidate : table.Fields()) found = found || candidate.name == field;
  });
  return found;
}

void AddAutoField(dao::TableDef& table, const std::string& name) {
  AppendField(table, {.name = name, .type = dao::dbLong, .attributes = dao::dbAutoIncrField});
}

void AddField(dao::TableDef& table, const std::string& name, int type) {
  AppendField(table, {.name = name, .type = type, .allowZeroLength = type == dao::dbMemo});
}

void AddTextField(dao::TableDef& table, const std::string& name, int size) {
  AppendField(table, {.name = name, .type = dao::dbText, .size = size, .allowZeroLength = true});
}

void UppercaseCharAt(int position, std::string& text, int length) {
  if (position < 1 || position > length) return;
  std::size_t begin = 0;
  for (int left = position; begin < text.size(); ++begin)
    if (!rt::IsContinuation(text[begin]) && --left == 0) break;
  if (begin == text.size()) return;
  std::size_t end = begin + 1;
  while (end < text.size() && rt::IsContinuation(text[end])) ++end;
  text.replace(begin, end - begin, rt::UpperCase(std::string_view(text).substr(begin, end - begin)));
}

}  // namespace dw
