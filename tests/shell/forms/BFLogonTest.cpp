#include "shell/forms/BFLogon.h"

#include <QApplication>

#include "ShellTest.h"
#include "platform/controls/Application.h"
#include "platform/controls/Later.h"
#include "shell/DataLocation.h"
#include "shell/forms/GetDataPath.h"
#include "shell/forms/ProgramEnd.h"

namespace {

using screen::Icon;

constexpr const char* kIncorrect =
    "Your User Name/Password combination is incorrect.\nPlease re-enter the correct combination or see your\n"
    "System Administrator for assistance.";
constexpr const char* kNotAuthorized =
    "Your User Name/Password combination is not authorized.\nSee your System Administrator.";
constexpr const char* kNotAllowed = "Access not allowed.\nSee your System Administrator.";
constexpr const char* kNamePrompt =
    "Your workstation does not have a Brackenfel name.\r\rYou must provide it a name and report it to "
    "your\rSystem Administrator before access is allowed.";

class BFLogonTest : public test::ShellTest {
 protected:
  dw::BFLogon& Show() {
    dw::ShowLogon();
    test::Settle();
    return static_cast<dw::BFLogon&>(test::Open("BFLogon"));
  }
  /// The window has closed, and the program has ended without another window.
  void ExpectOver() {
    test::Settle();
    EXPECT_TRUE(ui::Forms().empty());
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM [Access Log]"), "0");
  }
};

TEST_F(BFLogonTest, TriesAgainUntilNameAndPasswordFitAndWritesTheLog) {
  NameWorkstation("Front Desk");
  dw::BFLogon& form = Show();
  EXPECT_EQ(form.windowTitle(), "Brackenfel for Windows Logon");
  EXPECT_EQ(form.workstation.text(), "Front Desk");
  EXPECT_EQ(dw::WorkstationName, "Front Desk");
  EXPECT_FALSE(dw::FirstRunPending);
  EXPECT_EQ(sys::GetSetting("DW", "Control", "Initialized"), "Yes");
  EXPECT_TRUE(form.userName.hasFocus());

  // While the box is open, the user cannot click anything a second time.
  screen_->onBox = [&](const screen::Box&) {
    EXPECT_FALSE(form.userName.isEnabled() || form.password.isEnabled() || form.okButton.isEnabled() ||
                 form.cancelButton.isEnabled());
  };
  screen_->Expect(kIncorrect, Icon::Critical);
  test::Type(form, "Text1", "nobody");
  test::Press(form.userName, Qt::Key_Return);
  EXPECT_TRUE(form.okButton.isEnabled() && form.password.isEnabled() && form.cancelButton.isEnabled());
  EXPECT_TRUE(form.userName.hasFocus());
  EXPECT_EQ(form.userName.selectedText(), "nobody");
  QTest::keyClicks(&form.userName, "mcarthur");
  EXPECT_EQ(form.userName.Text(), "mcarthur");

  screen_->Expect(kNotAuthorized, Icon::Critical);
  test::Type(form, "Text2", "wrong");
  EXPECT_EQ(form.password.displayText(), "*****");
  test::Click(form, "OKButton");
  EXPECT_EQ(form.Attempts, 2);
  test::Enter(form, "Text2");
  EXPECT_TRUE(form.password.hasSelectedText());

  test::Type(form, "Text2", "sECRET");
  test::Press(form.password, Qt::Key_Return);
  EXPECT_EQ(ui::FindForm("BFLogon"), nullptr);
  EXPECT_EQ(dw::CurrentUserName, "McArthur");
  EXPECT_EQ(Ask("SELECT [Computer ID] FROM [Access Log] WHERE [User ID] = 3 AND [Time Out] IS NULL"), "11");
  EXPECT_TRUE(test::Open("Startup").isVisible());
  EXPECT_EQ(ui::Forms().size(), 1U);
}

TEST_F(BFLogonTest, ARefusalOrCancelEndsTheProgram) {
  NameWorkstation("Front Desk");
  dw::BFLogon& refused = Show();
  screen_->Expect(kNotAllowed, Icon::Critical);
  test::Type(refused, "Text1", "Former");
  test::Click(refused, "OKButton");
  ExpectOver();

  // A workstation that nobody has entered: the same message, and no second try either.
  NameWorkstation("Attic");
  dw::BFLogon& unknown = Show();
  screen_->Expect(kNotAllowed, Icon::Critical);
  test::Type(unknown, "Text1", "Clerk");
  test::Click(unknown, "OKButton");
  ExpectOver();

  test::Press(Show().userName, Qt::Key_Escape);
  ExpectOver();
}

TEST_F(BFLogonTest, AsksForTheNameOfTheWorkstation) {
  const std::string longest = "Twenty letters 67890";
  screen_->ExpectInput(kNamePrompt, longest + "1");
  screen_->Expect("The workstation name should be 20 characters or less. Please re-enter.",
                  Icon::Information);
  screen_->ExpectInput(kNamePrompt, longest);
  dw::BFLogon& named = Show();
  EXPECT_EQ(named.workstation.text().toStdString(), longest);
  EXPECT_EQ(sys::GetSetting("Brackenfel Software", "Settings", "Workstation Name"), longest);
  // The workstation has a name, but no administrator has entered it yet: nobody gets in.
  screen_->Expect(kNotAllowed, Icon::Critical);
  test::Type(named, "Text1", "Clerk");
  test::Click(named, "OKButton");
  ExpectOver();

  sys::DeleteSetting("Brackenfel Software", "Settings", "Workstation Name");
  screen_->ExpectInput(kNamePrompt, "");
  dw::ShowLogon();
  ExpectOver();
  EXPECT_EQ(sys::GetSetting("Brackenfel Software", "Settings", "Workstation Name", "none"), "none");
}

TEST_F(BFLogonTest, WhoFindsTheDataAfterACancelSignsOnAnew) {
  sys::SaveSetting("DW", "Data", "DW Data Path", directory_.Path());
  dw::InstallLocators();
  int ends = 0;
  const auto earlier = ui::InstallUncaught([&](const std::exception_ptr& error) {
    EXPECT_THROW(std::rethrow_exception(error), dw::WindowsClosed);
    ++ends;
  });
  ui::Later(*qApp, [this] {
    ui::Later(*qApp, [this] {
      auto& again = static_cast<dw::GetDataPath&>(test::Open("GetDataPath"));
      EXPECT_EQ(ui::Forms().size(), 1U) << "the sign-on window has been closed";
      again.directories.SetPath(files_.Path({}));
      again.okButton.click();
    });
    test::Find<QPushButton>(test::Open("GetDataPath"), "cmdCancel").click();
  });
  screen_->Expect("This must be set up before you may use the application.", Icon::Critical,
                  screen::Buttons::Ok, screen::Answer::Ok, "Brackenfel Software Solutions Setup");
  dw::ShowLogon();
  ExpectOver();
  EXPECT_EQ(ends, 1);
  ui::InstallUncaught(earlier);
  dw::InstallFileLocator({});
  dw::InstallServerLoginForm({});
}

}  // namespace
