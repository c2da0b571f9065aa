#include "shell/forms/frmGetSQLInfo.h"

#include <gtest/gtest.h>

#include "data/BrackenfelGlobals.h"
#include "platform/system/Settings.h"
#include "support/ScreenScript.h"
#include "support/TempDirectory.h"
#include "support/desktop/FormDriver.h"

namespace {

using screen::Icon;

class GetSQLInfoTest : public testing::Test {
 protected:
  GetSQLInfoTest() { sys::UseSettingsFile(directory_.Path("settings.ini")); }
  ~GetSQLInfoTest() override {
    dw::UseAccess = true;
    sys::UseSettingsFile({});
  }
  static void Keep(const char* key, const char* value) { sys::SaveSetting("RZ", "Data", key, value); }
  static std::string Kept(const char* key) { return sys::GetSetting("RZ", "Data", key, "nothing"); }
  static dw::frmGetSQLInfo& Open() {
    auto& form = ui::The<dw::frmGetSQLInfo>();
    form.AppID = "RZ";
    form.SQLDB = "Ostrandry";
    form.ShowForm();
    test::Settle();
    return form;
  }
  void ExpectBox(const char* text) { user_->Expect(text, Icon::Information); }
  static bool IsOpen() { return ui::Existing<dw::frmGetSQLInfo>() != nullptr; }

  test::TempDirectory directory_;
  test::ScreenScript user_;
  test::FormsEnd end_;
};

TEST_F(GetSQLInfoTest, ALoginIsKept) {
  Keep("Server Name", "OLD");
  Keep("Server User ID", "anna");
  Keep("Server Password", "secret");
  auto& form = Open();
  EXPECT_EQ(form.Text1.Text() + form.Text2.Text() + form.Text3.Text() + form.Text4.Text(),
            "OLDannasecretsecret");
  EXPECT_FALSE(form.chkTrusted.isChecked());
  test::Type(form, "Text1", "HAULER");
  test::Type(form, "Text3", "Secret");
  // The passwords are compared exactly.
  ExpectBox("Passwords do not match. Please try again.");
  test::Press(form.Text3, Qt::Key_Return);
  EXPECT_TRUE(form.Text3.hasFocus());
  test::Type(form, "Text4", "Secret");
  test::Press(form.Text4, Qt::Key_Return);
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(
      Kept("Server Name") + Kept("Trusted Connection") + Kept("Server User ID") + Kept("Server Password"),
      "HAULERNoannaSecret");
}

TEST_F(GetSQLInfoTest, ATrustedConnectionForgetsTheLogin) {
  Keep("Server User ID", "anna");
  Keep("Server Password", "secret");
  auto& form = Open();
  test::Type(form, "Text1", "HAULER");
  test::Click(form, "chkTrusted");
  EXPECT_FALSE(form.Text2.isEnabled() || form.Text3.isEnabled() || form.Text4.isEnabled());
  test::Click(form, "OKButton");
  EXPECT_EQ(Kept("Trusted Connection") + Kept("Server User ID") + Kept("Server Password"),
            "Yesnothingnothing");

  auto& again = Open();
  EXPECT_TRUE(again.chkTrusted.isChecked());
  test::Click(again, "chkTrusted");
  EXPECT_TRUE(again.Text2.isEnabled());
  ExpectBox("You cannot have a blank user name. Please try again.");
  test::Click(again, "OKButton");
  EXPECT_TRUE(again.Text2.hasFocus());
  // Nobody has to fill in a field in order to cancel.
  test::Click(again, "CancelButton");
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(Kept("Trusted Connection"), "Yes");
}

TEST_F(GetSQLInfoTest, LeavingAFieldChecksIt) {
  auto& form = Open();
  test::Enter(form, "Text2");
  ExpectBox("You cannot have a blank user name. Please try again.");
  test::Enter(form, "Text3");
  EXPECT_TRUE(form.Text2.hasFocus());
  test::Type(form, "Text2", "anna");
  test::Type(form, "Text3", "one");
  test::Type(form, "Text4", "two");
  ExpectBox("Passwords do not match. Please try again.");
  test::Enter(form, "TestButton");
  EXPECT_TRUE(form.Text3.hasFocus());
  test::Type(form, "Text3", "two");
  test::Enter(form, "Text1");
  EXPECT_TRUE(form.Text1.hasFocus());
}

TEST_F(GetSQLInfoTest, ALoginCanBeTried) {
  dw::UseAccess = false;
  Keep("Server Name", "HAULER");
  Keep("Server User ID", "anna");
  Keep("Server Password", "secret");
  auto& form = Open();
  user_->ExpectPart("trying to open connection.", Icon::Critical);
  ExpectBox("Test Failed. Verify name and password and test again.");
  test::Click(form, "TestButton");
  EXPECT_EQ(user_->Shown().front().text.find("secret"), std::string::npos) << "a password on the screen";
  EXPECT_TRUE(IsOpen());

  EXPECT_EQ(dw::TestConnect({"HAULER", true, "", "", ""}, "Ostrandry"),
            "Provider=SQLOLEDB.1;Data Source=HAULER;Persist Security Info=False;Initial Catalog=Ostrandry;"
            "Integrated Security=SSPI;");
  EXPECT_EQ(dw::TestConnect({"HAULER", false, "anna", "secret", "secret"}, "Ostrandry"),
            "Provider=SQLOLEDB.1;Data Source=HAULER;Persist Security Info=False;Initial Catalog=Ostrandry;"
            "User ID=anna;Password=secret;");
  EXPECT_EQ(dw::DriverConnect("HAULER", "anna", "secret"),
            "Driver={SQL Server};Server=HAULER;Database=Keelwatch;Uid=anna;Pwd=secret;");
}

}  // namespace
