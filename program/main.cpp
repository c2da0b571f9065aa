// The program: puts everything in place that the forms rely on, and shows the sign-on window.
#include <QAbstractEventDispatcher>
#include <QThread>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "data/BrackenfelGlobals.h"
#include "data/GenericDAO.h"
#include "platform/controls/Application.h"
#include "platform/controls/DataControl.h"
#include "platform/controls/Form.h"
#include "platform/controls/QtScreen.h"
#include "program/FormTable.h"
#include "shell/forms/AppIcon.h"
#include "shell/forms/BFLogon.h"
#include "shell/forms/CloseChildForm.h"
#include "shell/forms/GetDataPath.h"
#include "shell/forms/HelpKey.h"
#include "shell/forms/ProgramEnd.h"
#include "shell/forms/frmMessage.h"

namespace {

constexpr int kUsage = 3;
constexpr int kNoDesktop = 1;

constexpr const char* kHelp =
    "Usage: drovewright [--help | --version]\n"
    "\n"
    "Starts Drovewright at its sign-on window. If it is running already, its window comes to the front.\n"
    "The data is looked for beside the program, or where it was found before.\n"
    "\n"
    "  DROVEWRIGHT_SETTINGS   environment: the file that keeps this user's settings\n";

bool Given(int argc, char** argv, const char* option) {
  for (int i = 1; i < argc; ++i)
    if (std::strcmp(argv[i], option) == 0) return true;
  return false;
}

bool HasValue(const char* variable) {
  const char* value = std::getenv(variable);
  return value && *value != '\0';
}

/// Without a desktop the toolkit would give up with words for programmers.
bool DesktopIsThere(int argc, char** argv) {
  return HasValue("DISPLAY") || HasValue("WAYLAND_DISPLAY") || HasValue("QT_QPA_PLATFORM") ||
         Given(argc, argv, "-platform");
}

/// Opens files for data controls with the waits and prompts of the data layer. The workspace stays for as
/// long as the database is used.
std::shared_ptr<dao::Database> OpenForDataControl(const std::string& path) {
  struct Opened {
    dw::DaoWorkspacePtr workspace;
    dw::DaoDatabasePtr database;
  };
  auto opened = std::make_shared<Opened>();
  int error = 0;
  if (!dw::DaoOpenDatabase(path, false, dw::DataUserID, dw::DataPassword, opened->workspace, opened->database,
                           error))
    return nullptr;
  return {opened, opened->database.get()};
}

std::shared_ptr<screen::Screen> Desktop() {
  auto desktop = std::make_shared<ui::QtScreen>();
  desktop->showNotice = dw::ShowMessageForm;
  desktop->hideNotice = dw::HideMessageForm;
  return desktop;
}

/// The program is over once no form is left and nothing is being done any more. A form that goes in the
/// middle of some work does not cut it off.
void QuitOnceIdle() {
  QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, qApp, [] {
    if (ui::Forms().empty() && QThread::currentThread()->loopLevel() <= 1) QCoreApplication::exit(0);
  });
}

}  // namespace

int main(int argc, char** argv) {
  if (Given(argc, argv, "--version")) {
    std::puts("Drovewright " DROVEWRIGHT_VERSION);
    return 0;
  }
  if (Given(argc, argv, "--help") || Given(argc, argv, "-h")) {
    std::fputs(kHelp, stdout);
    return 0;
  }
  if (!DesktopIsThere(argc, argv)) {
    std::fputs("Drovewright needs a desktop; there is none here. dwadmin works from a console.\n", stderr);
    return kNoDesktop;
  }

  ui::Application application(argc, argv);
  if (argc > 1) {
    std::fprintf(stderr, "drovewright: '%s' is not understood.\n%s", argv[1], kHelp);
    return kUsage;
  }
  QApplication::setApplicationVersion(DROVEWRIGHT_VERSION);
  QApplication::setWindowIcon(dw::ApplicationIcon());
  screen::Install(Desktop());
  dw::InstallProgramEnd();
  dw::InstallFormEnds();
  ui::InstallLastFormGone(QuitOnceIdle);
  dw::InstallLocators();
  ui::InstallDatabaseOpener(OpenForDataControl);
  dw::InstallHelpKey(application);
  dw::RegisterForms();

  QMetaObject::invokeMethod(
      &application, [] { ui::Guard(dw::ShowLogon); }, Qt::QueuedConnection);
  return QApplication::exec();
}
