#include "program/SetUp.h"

#include <QAbstractEventDispatcher>
#include <QThread>
#include <memory>
#include <string>

#include "data/BrackenfelGlobals.h"
#include "data/GenericDAO.h"
#include "platform/controls/Application.h"
#include "platform/controls/DataControl.h"
#include "platform/controls/Form.h"
#include "platform/controls/QtScreen.h"
#include "platform/print/job/CupsQueue.h"
#include "platform/print/job/Destinations.h"
#include "platform/print/job/PrintDialog.h"
#include "platform/print/view/DesktopMailer.h"
#include "platform/print/view/PreviewWindow.h"
#include "platform/print/view/QtPrintDialog.h"
#include "program/FormTable.h"
#include "reports/PrintEngineCalls.h"
#include "shell/forms/AppIcon.h"
#include "shell/forms/CloseChildForm.h"
#include "shell/forms/GetDataPath.h"
#include "shell/forms/HelpKey.h"
#include "shell/forms/ProgramEnd.h"
#include "shell/forms/frmMessage.h"

namespace dw {
namespace {

/// Opens files for data controls with the waits and prompts of the data layer. The workspace stays for as
/// long as the database is used.
std::shared_ptr<dao::Database> OpenForDataControl(const std::string& path) {
  struct Opened {
    DaoWorkspacePtr workspace;
    DaoDatabasePtr database;
  };
  auto opened = std::make_shared<Opened>();
  int error = 0;
  if (!DaoOpenDatabase(path, false, DataUserID, DataPassword, opened->workspace, opened->database, error))
    return nullptr;
  return {opened, opened->database.get()};
}

std::shared_ptr<screen::Screen> Desktop() {
  auto desktop = std::make_shared<ui::QtScreen>();
  desktop->showNotice = ShowMessageForm;
  desktop->hideNotice = HideMessageForm;
  return desktop;
}

/// Reports are made, shown, printed and mailed through these.
void InstallReportEngine() {
  InstallPrintCalls(PrintEngineCalls());
  print::InstallViewer(std::make_shared<print::PreviewViewer>());
  print::InstallPrintDialog(std::make_shared<print::QtPrintDialog>(kApplicationCode));
  print::InstallPrinterQueue(print::MakeCupsQueue());
  print::InstallMailer(std::make_shared<print::DesktopMailer>());
}

/// The program is over once no form is left and no work is going on. A form that closes in the middle of some
/// work does not cut it off.
void QuitOnceIdle() {
  QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, qApp, [] {
    if (ui::Forms().empty() && QThread::currentThread()->loopLevel() <= 1) QCoreApplication::exit(0);
  });
}

}  // namespace

void SetUpProgram(ui::Application& application) {
  QApplication::setWindowIcon(ApplicationIcon());
  screen::Install(Desktop());
  InstallProgramEnd();
  InstallFormEnds();
  ui::InstallLastFormGone(QuitOnceIdle);
  InstallLocators();
  ui::InstallDatabaseOpener(OpenForDataControl);
  InstallReportEngine();
  InstallHelpKey(application);
  RegisterForms();
}

}  // namespace dw
