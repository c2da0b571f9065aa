#include <QAction>
#include <QMenu>
#include <QPushButton>
#include <chrono>
#include <future>
#include <set>

#include "ShellTest.h"
#include "platform/runtime/Clock.h"
#include "platform/system/SingleInstance.h"
#include "shell/forms/MenuTree.h"
#include "shell/forms/SingleInstance.h"
#include "shell/forms/Startup.h"
#include "shell/forms/TechSupport.h"
#include "shell/forms/mnuDW.h"

namespace {

using screen::Answer;
using screen::Buttons;
using screen::Icon;

constexpr const char* kQuestion = "Would you like to see a Maintenance Due report now?";

class MainMenuTest : public test::ShellTest {
 protected:
  MainMenuTest() {
    dw::InstallMenuTarget("frmMaintenanceDueReport", [this] { ++reports_; });
    dw::InstallMenuTarget("frmDivisionList", [] { (new ui::Form("frmDivisionList"))->ShowForm(); });
  }
  ~MainMenuTest() override {
    dw::InstallMenuTarget("frmMaintenanceDueReport", {});
    dw::InstallMenuTarget("frmDivisionList", {});
  }
  void Parameters(const char* internalFuel) {
    files_.Run(std::string("INSERT INTO [Parameters] ([ID], [Organization Name], [Address Line 1], [Date "
                           "Installed], [Internal_Fuel_Available]) VALUES (1, 'Marlow Bend', '1200 Depot "
                           "Road', #6/30/2020#, ") +
               internalFuel + ")");
  }
  /// Goes from the About box to the menu, and answers the question.
  dw::mnuDW& Start(Answer answer = Answer::No) {
    auto& startup = ui::The<dw::Startup>();
    startup.ShowForm();
    test::Settle();
    screen_->Expect(kQuestion, Icon::None, Buttons::YesNo, answer);
    test::Click(startup, "OKButton");
    return static_cast<dw::mnuDW&>(test::Open("mnuDW"));
  }
  static QAction& Item(QWidget& menu, const char* name) {
    auto* item = menu.findChild<QAction*>(name);
    if (!item) throw std::runtime_error(std::string("no item ") + name);
    return *item;
  }
  static void Choose(QWidget& menu, const char* name) {
    Item(menu, name).trigger();
    test::Settle();
  }

  int reports_ = 0;
};

TEST_F(MainMenuTest, TheAboutBoxFillsItselfAndLeadsToTheMenu) {
  SignOn();
  const rt::FixedClock clock(rt::DateTime(2026, 3, 15, 9, 30, 0));
  // A new file has no row of parameters.
  auto& startup = ui::The<dw::Startup>();
  startup.ShowForm();
  EXPECT_EQ(startup.windowTitle(), "About Drovewright");
  EXPECT_EQ(startup.dateInstalled.text(), "3/15/2026");
  EXPECT_EQ(startup.version.text(), "Version 2.12.4");
  EXPECT_EQ(startup.currentUser.text(), "McArthur");
  EXPECT_EQ(files_.Ask("SELECT [Date Installed] FROM [Parameters] WHERE [ID] = 1"), "3/15/2026");
  EXPECT_EQ(files_.Ask("SELECT [Organization Name] FROM [Parameters]"), "");
  files_.Run("UPDATE [Parameters] SET [Organization Name] = 'Marlow Bend', [Address Line 3] = 'Bend'");

  // Only its button closes the About box.
  startup.close();
  EXPECT_TRUE(startup.isVisible());
  screen_->Expect(kQuestion, Icon::None, Buttons::YesNo, Answer::No);
  screen_->onBox = [&](const screen::Box&) {
    EXPECT_FALSE(startup.isVisible());
    EXPECT_TRUE(dw::MenuActivated);
  };
  test::Click(startup, "OKButton");
  dw::mnuDW& menu = static_cast<dw::mnuDW&>(test::Open("mnuDW"));
  EXPECT_TRUE(dw::HelpReady);
  EXPECT_EQ(reports_, 0);

  // The About box reads the parameters again; the question does not come again.
  Choose(menu, "DW_About");
  auto& again = static_cast<dw::Startup&>(test::Open("Startup"));
  EXPECT_EQ(again.organization[0].text(), "Marlow Bend");
  EXPECT_EQ(again.organization[3].text(), "Bend");
  EXPECT_EQ(dw::OrganisationName, "Marlow Bend");
  test::Press(again.okButton, Qt::Key_Return);
  EXPECT_EQ(ui::ActiveForm(), &menu);
  EXPECT_EQ(ui::Forms().size(), 1U);
}

TEST_F(MainMenuTest, YesShowsTheReport) {
  SignOn();
  Parameters("TRUE");
  Start(Answer::Yes);
  EXPECT_EQ(reports_, 1);
}

TEST_F(MainMenuTest, OffersWhatTheUserMayUse) {
  SignOn(false);
  Parameters("FALSE");
  dw::mnuDW& menu = Start();
  for (const char* name : {"DW_ApplicationSetup", "DW_Options", "DW_Lists", "DW_Users", "DW_Workstations",
                           "DW_InvPricing", "DW_FuelLog", "DW_ProcingLabor"})
    EXPECT_FALSE(Item(menu, name).isEnabled()) << name;
  for (const char* name : {"DW_AuxiliaryTables", "DW_Divisions", "Utilities", "CompactDB", "DW_About"})
    EXPECT_TRUE(Item(menu, name).isEnabled()) << name;
  menu.Unload();
  test::Settle();

  SignOn(true);
  files_.Run("UPDATE [Parameters] SET [Internal_Fuel_Available] = TRUE");
  dw::InstallMenuTarget("UserList", [] {});
  dw::mnuDW& all = Start();
  dw::InstallMenuTarget("UserList", {});
  for (const char* name : {"DW_ApplicationSetup", "DW_Users", "DW_InvPricing"})
    EXPECT_TRUE(Item(all, name).isEnabled()) << name;
}

TEST_F(MainMenuTest, EntriesOpenWindowsOrSayWhyNot) {
  SignOn();
  Parameters("TRUE");
  dw::mnuDW& menu = Start();
  Choose(menu, "DW_Divisions");
  EXPECT_TRUE(test::Open("frmDivisionList").isVisible());
  EXPECT_TRUE(menu.isVisible());
  Choose(menu, "DW_TechSupport");
  test::Press(static_cast<dw::TechSupport&>(test::Open("TechSupport")).okButton, Qt::Key_Return);
  EXPECT_EQ(ui::FindForm("TechSupport"), nullptr);

  // No entry is there twice, and each has a text in the status bar that says what it is for.
  std::set<QString> names;
  for (const dw::MenuEntry& entry : dw::MenuTree()) {
    EXPECT_TRUE(names.insert(entry.name).second) << entry.name;
    const QAction& item = Item(menu, entry.name);
    EXPECT_EQ(item.text(), entry.caption);
    EXPECT_EQ(item.statusTip().isEmpty(), item.isSeparator() || entry.level == 1) << entry.name;
  }
  EXPECT_EQ(names.size(), 54U);

  // With the keys: F10, then the reports, then an entry whose window is missing.
  auto& status = test::Find<QStatusBar>(menu, "stsBar");
  menu.activateWindow();
  test::Settle();
  test::Press(menu, Qt::Key_F10);
  ASSERT_NE(menu.menuBar.activeAction(), nullptr);
  EXPECT_EQ(menu.menuBar.activeAction()->objectName(), "cptFile");
  QMenu* reporting = Item(menu, "cptReporting").menu();
  reporting->popup(QPoint(10, 10));
  QTest::keyClick(reporting, Qt::Key_Up);
  QTest::keyClick(reporting, Qt::Key_Up);
  EXPECT_EQ(reporting->activeAction(), &Item(menu, "DW_RptInventory"));
  EXPECT_EQ(status.currentMessage(), "Listing of the assets (not available in this version)");
  reporting->close();
  EXPECT_EQ(status.currentMessage(), "");
}

TEST_F(MainMenuTest, ASecondStartBringsItForward) {
  ASSERT_FALSE(dw::ActivatePreviousInstance());
  SignOn();
  Parameters("TRUE");
  dw::mnuDW& menu = Start();
  menu.setWindowState(menu.windowState() | Qt::WindowMinimized);
  test::Settle();
  ASSERT_TRUE(menu.isMinimized());
  auto answered = std::async(std::launch::async, sys::SingleInstance::CallFirstForward);
  while (answered.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready) test::Settle();
  EXPECT_TRUE(answered.get());
  EXPECT_FALSE(menu.isMinimized());
  EXPECT_TRUE(menu.isMaximized());
}

TEST_F(MainMenuTest, CompactsTheMainFile) {
  SignOn();
  Parameters("TRUE");
  dw::mnuDW& menu = Start();
  screen_->Expect("Compacting complete.", Icon::Information);
  screen_->onBox = [&](const screen::Box&) {
    EXPECT_EQ(screen_->CurrentPointer(), screen::Pointer::Hourglass);
  };
  Choose(menu, "CompactDB");
  EXPECT_EQ(screen_->Notices(), std::vector<std::string>{"Compacting Drovewright Data Base: Please wait..."});
  EXPECT_EQ(screen_->CurrentPointer(), screen::Pointer::Normal);
  EXPECT_EQ(files_.Ask("SELECT [Organization Name] FROM [Parameters]"), "Marlow Bend");
}

TEST_F(MainMenuTest, ExitLeavesOtherWindowsAndTheLastOneSignsOff) {
  SignOn();
  Parameters("TRUE");
  dw::mnuDW& menu = Start();
  Choose(menu, "DW_Divisions");
  Choose(menu, "cptExit");
  EXPECT_EQ(ui::FindForm("mnuDW"), nullptr);
  EXPECT_FALSE(dw::MenuActivated);
  EXPECT_EQ(OpenSessions(), "1");
  EXPECT_TRUE(screen_->Notices().empty());

  // Hidden windows do not keep the program running.
  auto* hidden = new ui::Form("frmHidden");
  hidden->LoadForm();
  test::Open("frmDivisionList").close();
  test::Settle();
  EXPECT_TRUE(ui::Forms().empty());
  EXPECT_EQ(OpenSessions(), "0");
  EXPECT_EQ(screen_->Notices(), std::vector<std::string>{"Brackenfel for Windows: Logging Off..."});
  EXPECT_FALSE(dw::HelpReady);
}

TEST_F(MainMenuTest, ASessionThatWasClosedElsewhereEndsAllTheSame) {
  SignOn();
  Parameters("TRUE");
  dw::mnuDW& menu = Start();
  Do("UPDATE [Access Log] SET [Time Out] = #3/15/2026 8:30:00 AM#");
  screen_->Expect("User #3 cannot be found in Application User List.", Icon::Critical);
  menu.close();
  test::Settle();
  EXPECT_TRUE(ui::Forms().empty());
}

TEST_F(MainMenuTest, EndApplicationClosesEverythingAndGoesNoFurther) {
  SignOn();
  Parameters("TRUE");
  dw::mnuDW& menu = Start();
  Choose(menu, "DW_Divisions");
  Choose(menu, "DW_About");
  const int slept = screen_->SleepCount();
  EXPECT_THROW(dw::EndApplication(), dw::ApplicationEnd);
  test::Settle();
  // The About box does not open a second menu.
  EXPECT_TRUE(ui::Forms().empty());
  EXPECT_EQ(OpenSessions(), "0");
  EXPECT_GT(screen_->SleepCount(), slept);
}

}  // namespace
