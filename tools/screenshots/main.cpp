// Opens every window on a sample fleet, looks for what is cut off or out of reach, and takes its picture:
// screenshots <folder> [dark] [12pt].
#include <QFont>
#include <QPalette>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "data/BrackenfelGlobals.h"
#include "platform/controls/Application.h"
#include "platform/runtime/Clock.h"
#include "platform/screen/ScriptedScreen.h"
#include "platform/system/Settings.h"
#include "program/FormTable.h"
#include "reports/PrintEngineCalls.h"
#include "tools/dwadmin/Sample.h"
#include "tools/screenshots/Shots.h"

namespace {

QPalette Dark() {
  const QColor window(45, 45, 48), base(30, 30, 32), text(225, 225, 225), gray(130, 130, 130);
  QPalette palette(window);
  palette.setColor(QPalette::Window, window);
  palette.setColor(QPalette::WindowText, text);
  palette.setColor(QPalette::Base, base);
  palette.setColor(QPalette::AlternateBase, QColor(38, 38, 41));
  palette.setColor(QPalette::Text, text);
  palette.setColor(QPalette::Button, QColor(60, 60, 64));
  palette.setColor(QPalette::ButtonText, text);
  palette.setColor(QPalette::PlaceholderText, gray);
  palette.setColor(QPalette::ToolTipBase, base);
  palette.setColor(QPalette::ToolTipText, text);
  palette.setColor(QPalette::Highlight, QColor(38, 110, 180));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Link, QColor(110, 170, 240));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(QPalette::Disabled, role, gray);
  return palette;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "screenshots <folder> [dark] [12pt]\n");
    return 2;
  }
  const auto given = [&](const char* option) {
    return std::any_of(argv + 2, argv + argc, [&](const char* one) { return std::strcmp(one, option) == 0; });
  };
  // As on a dark desktop, where the program finds the colors when it starts.
  if (given("dark")) QApplication::setPalette(Dark());
  ui::Application application(argc, argv);
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  if (given("12pt")) {
    QFont font = QApplication::font();
    font.setPointSize(12);
    QApplication::setFont(font);
  }
  // Boxes answer themselves; the windows show the same at each run.
  screen::Install(std::make_shared<screen::ScriptedScreen>());
  const rt::FixedClock clock(rt::DateTime(2026, 3, 2, 9, 30));
  try {
    QTemporaryDir data;
    std::filesystem::create_directories(argv[1]);
    dw::MakeSample(data.path().toStdString(), 60, 3, 7, {});
    dw::SetDataPath(data.path().toStdString());
    sys::UseSettingsFile((data.path() + "/settings").toStdString());
    sys::SaveSetting("Brackenfel Software", "Settings", "Workstation Name", "OFFICE");
    sys::SaveSetting("DW", "Data", "DW Data Path", data.path().toStdString());
    dw::CurrentUserName = "ADMIN";
    dw::IsAdministrator = true;
    dw::RegisterForms();
    dw::InstallPrintCalls(dw::PrintEngineCalls());
    dw::WorkstationName = "OFFICE";
    shots::Album album(argv[1]);
    shots::TakeAll(album);
    for (const std::string& fault : album.Faults()) std::fprintf(stderr, "%s\n", fault.c_str());
    if (!album.Faults().empty()) return 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "screenshots: %s\n", error.what());
    return 1;
  }
  return 0;
}
