#include "shell/forms/frmGetSQLInfo.h"

#include <gtest/gtest.h>

#include "platform/system/Settings.h"
#include "support/ScreenScript.h"
#include "support/TempDirectory.h"
#include "support/desktop/FormDriver.h"

namespace {

using screen::Icon;

class GetSQLInfoTest : public testing::Test {
 protected:
  GetSQLInfoTest() { sys::UseSettingsFile(directory_.Path("settings.ini")); }
  ~GetSQLInfoTest() override { sys::UseSettingsFile({}); }
  static std::string Kept() {
    std::string all;
    for (const char* key : {"Server Name", "Trusted Connection", "Server User ID", "Server Password"})
      all += sys::GetSetting("RZ", "Data", key, "-") + ' ';
    return all;
  }
  static dw::frmGetSQLInfo& Open() {
    auto& form = ui::The<dw::frmGetSQLInfo>();
    form.AppID = "RZ";
    form.SQLDB = "Ostrandry";
    form.ShowForm();
    test::Settle();
    return form;
  }
  void ExpectBox(const char* text) { user_->Expect(text, Icon::Information); }

  test::TempDirectory directory_;
  test::ScreenScript user_;
  test::FormsEnd end_;
};

TEST_F(GetSQLInfoTest, ALoginIsCheckedAndKept) {
  auto& form = Open();
  test::Type(form, "Text1", "HAULER");
  test::Enter(form, "Text2");
  ExpectBox("You cannot have a blank user name. Please try again.");
  test::Enter(form, "Text3");
  EXPECT_TRUE(form.userId.hasFocus());
  test::Type(form, "Text2", "anna");
  test::Type(form, "Text3", "secret");
  // The passwords are compared exactly.
  test::Type(form, "Text4", "Secret");
  ExpectBox("Passwords do not match. Please try again.");
  test::Press(form.confirmedPassword, Qt::Key_Return);
  EXPECT_TRUE(form.password.hasFocus());
  test::Type(form, "Text3", "Secret");
  user_->ExpectPart("trying to open connection.", Icon::Critical);
  ExpectBox("Test Failed. Verify name and password and test again.");
  test::Click(form, "TestButton");
  EXPECT_EQ(user_->Shown()[2].text.find("Secret"), std::string::npos) << "a password on the screen";
  test::Click(form, "OKButton");
  EXPECT_EQ(Kept(), "HAULER No anna Secret ");

  // A trusted connection removes the login.
  auto& again = Open();
  EXPECT_EQ(again.confirmedPassword.Text(), "Secret");
  test::Click(again, "chkTrusted");
  EXPECT_FALSE(again.userId.isEnabled() || again.password.isEnabled() || again.confirmedPassword.isEnabled());
  test::Click(again, "OKButton");
  EXPECT_EQ(Kept(), "HAULER Yes - - ");
}

TEST_F(GetSQLInfoTest, NobodyHasToFillInAFieldToCancel) {
  auto& form = Open();
  test::Enter(form, "Text2");
  test::Click(form, "CancelButton");
  EXPECT_EQ(ui::Existing<dw::frmGetSQLInfo>(), nullptr);
  EXPECT_EQ(Kept(), "- - - - ");
}

}  // namespace
