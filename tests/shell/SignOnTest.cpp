#include "shell/SignOn.h"

#include <gtest/gtest.h>

#include <fstream>

#include "data/BrackenfelGlobals.h"
#include "platform/runtime/Clock.h"
#include "platform/store/Connection.h"
#include "support/OtherUser.h"
#include "support/ScreenScript.h"
#include "support/SmallFleet.h"

namespace {

using dw::SignOnResult;
using screen::Icon;

constexpr const char* kIncorrect =
    "Your User Name/Password combination is incorrect.\nPlease re-enter the correct combination or see your\n"
    "System Administrator for assistance.";
constexpr const char* kNotAuthorized =
    "Your User Name/Password combination is not authorized.\nSee your System Administrator.";
constexpr const char* kNotAllowed = "Access not allowed.\nSee your System Administrator.";

class SignOnTest : public testing::Test {
 protected:
  SignOnTest() {
    User(3, "McArthur", "'Secret'", "TRUE", "TRUE");
    User(4, "Blank", "NULL", "TRUE", "FALSE");
    User(5, "Former", "'x'", "FALSE", "TRUE");
    Workstation(11, "Front Desk", "TRUE", "TRUE");
    Workstation(12, "Attic", "FALSE", "TRUE");
    Workstation(13, "Cellar", "TRUE", "FALSE");
    dw::WorkstationName = "FRONT desk";
    dw::CurrentUserName.clear();
    dw::CurrentUserID = 0;
    dw::WorkstationID = 0;
    dw::IsAdministrator = false;
    dw::SignedOn = false;
  }
  void User(int id, const std::string& name, const std::string& password, const std::string& access,
            const std::string& administrator) {
    Do("INSERT INTO [Application User List] ([ID], [User Name], [Password], [Allow Access], "
       "[Administrator]) VALUES (" +
       std::to_string(id) + ", '" + name + "', " + password + ", " + access + ", " + administrator + ")");
  }
  void Workstation(int id, const std::string& name, const std::string& active, const std::string& access) {
    Do("INSERT INTO [Application Workstation List] ([ID], [Workstation Name], [Active], [Allow Access]) "
       "VALUES (" +
       std::to_string(id) + ", '" + name + "', " + active + ", " + access + ")");
  }
  void Do(const std::string& sql) { files_.Run(sql, "DW_USERS.MDB"); }
  std::string Ask(const std::string& sql) { return files_.Ask(sql, "DW_USERS.MDB"); }
  void ExpectBox(const char* text) { screen_->Expect(text, Icon::Critical); }

  test::OtherUser other_;  // forked before any data file is open
  test::SmallFleet files_{"DW_USERS.MDB"};
  test::ScreenScript screen_;
};

TEST_F(SignOnTest, PassesWithoutRegardToCaseAndTakesTheStoredSpelling) {
  EXPECT_EQ(dw::CheckSignOn("mcARTHUR", "sECRET"), SignOnResult::Passed);
  EXPECT_EQ(dw::CurrentUserName, "McArthur");
  EXPECT_EQ(dw::CurrentUserID, 3);
  EXPECT_TRUE(dw::IsAdministrator);
  EXPECT_EQ(dw::WorkstationID, 11);
  EXPECT_TRUE(dw::SignedOn);
  EXPECT_EQ(store::IdentityComputer(), "FRONT desk");
  EXPECT_EQ(store::IdentityUser(), "McArthur");

  EXPECT_EQ(dw::CheckSignOn("BLANK", ""), SignOnResult::Passed);
  EXPECT_EQ(dw::CurrentUserID, 4);
  EXPECT_FALSE(dw::IsAdministrator);
}

TEST_F(SignOnTest, AWrongNameOrPasswordMayTryAgain) {
  ExpectBox(kIncorrect);
  EXPECT_EQ(dw::CheckSignOn("Nobody", "Secret"), SignOnResult::TryAgain);
  ExpectBox(kIncorrect);
  EXPECT_EQ(dw::CheckSignOn("", ""), SignOnResult::TryAgain);
  ExpectBox(kNotAuthorized);
  EXPECT_EQ(dw::CheckSignOn("McArthur", "Secret "), SignOnResult::TryAgain);
  ExpectBox(kNotAuthorized);
  EXPECT_EQ(dw::CheckSignOn("McArthur", ""), SignOnResult::TryAgain);
  ExpectBox(kNotAuthorized);
  EXPECT_EQ(dw::CheckSignOn("Blank", "anything"), SignOnResult::TryAgain);
  // The message for a wrong password says nothing about missing access.
  ExpectBox(kNotAuthorized);
  EXPECT_EQ(dw::CheckSignOn("Former", "y"), SignOnResult::TryAgain);
  // The query contains the apostrophe as typed: it breaks the query and lets nobody in.
  screen_->ExpectPart("Unknown error", Icon::Critical);
  EXPECT_EQ(dw::CheckSignOn("O'Hara", ""), SignOnResult::TryAgain);
  EXPECT_FALSE(dw::SignedOn);
  EXPECT_EQ(dw::CurrentUserID, 0);
}

TEST_F(SignOnTest, MissingAccessEndsTheSignOn) {
  ExpectBox(kNotAllowed);
  EXPECT_EQ(dw::CheckSignOn("Former", "x"), SignOnResult::Refused);
  EXPECT_EQ(dw::CurrentUserName, "");
  for (const char* workstation : {"Attic", "Cellar", "Unknown", ""}) {
    dw::WorkstationName = workstation;
    ExpectBox(kNotAllowed);
    EXPECT_EQ(dw::CheckSignOn("McArthur", "Secret"), SignOnResult::Refused) << workstation;
  }
  EXPECT_FALSE(dw::SignedOn);
  EXPECT_EQ(dw::WorkstationID, 0);

  // If the users file is not a data file, that message comes first.
  const std::string broken = files_.Path("BROKEN.MDB");
  { std::ofstream(broken) << "no data file"; }
  dw::UsersConnect = dw::FileConnect(broken);
  screen_->ExpectPart("trying to open connection.", Icon::Critical);
  screen_->Expect("There is a problem with the registry entry for opening the connection '" +
                      dw::UsersConnect + "'.\rApplication is being terminated.",
                  Icon::Critical);
  EXPECT_EQ(dw::CheckSignOn("McArthur", "Secret"), SignOnResult::Refused);
}

TEST_F(SignOnTest, AccessLogTellsWhenASessionBeganAndEnded) {
  ASSERT_EQ(dw::CheckSignOn("McArthur", "Secret"), SignOnResult::Passed);
  const std::string newest = "FROM [Access Log] WHERE [User ID] = 3 ORDER BY [Time In] DESC";
  {
    const rt::FixedClock morning(rt::DateTime(2026, 3, 15, 8, 0, 0));
    dw::WriteAccessLogIn();
  }
  EXPECT_EQ(Ask("SELECT [Time In] " + newest), "3/15/2026 8:00:00 AM");
  EXPECT_EQ(Ask("SELECT [Computer ID] " + newest), "11");
  EXPECT_EQ(Ask("SELECT [Time Out] " + newest), "Null");
  EXPECT_EQ(Ask("SELECT [Terminated] " + newest), "False");

  // The sign-off closes the latest session of the user, whichever workstation opened it.
  Do("INSERT INTO [Access Log] ([User ID], [Computer ID], [Time In]) VALUES (3, 99, #3/15/2026 9:00:00 "
     "AM#)");
  Do("INSERT INTO [Access Log] ([User ID], [Computer ID], [Time In]) VALUES (4, 11, #3/15/2026 9:30:00 "
     "AM#)");
  const rt::FixedClock evening(rt::DateTime(2026, 3, 15, 17, 30, 0));
  dw::SignOff();
  EXPECT_EQ(Ask("SELECT [Time Out] FROM [Access Log] WHERE [Computer ID] = 99"), "3/15/2026 5:30:00 PM");
  EXPECT_EQ(Ask("SELECT COUNT(*) FROM [Access Log] WHERE [Time Out] IS NULL"), "2");
  EXPECT_EQ(screen_->SleptMilliseconds(), 2000);
  ASSERT_EQ(screen_->Notices().size(), 1U);
  EXPECT_NE(screen_->Notices()[0].find("Logging Off..."), std::string::npos);

  // The latest row is closed already: the open one before it stays open.
  ExpectBox("User #3 cannot be found in Application User List.");
  dw::SignOff();
  dw::CurrentUserID = 77;
  ExpectBox("User #77 cannot be found in Application User List.\rAt beginning of access log.");
  dw::SignOff();
  EXPECT_EQ(Ask("SELECT COUNT(*) FROM [Access Log] WHERE [Time Out] IS NULL"), "2");
  EXPECT_EQ(screen_->SleptMilliseconds(), 2000);
}

TEST_F(SignOnTest, ARowThatAnotherEditsIsLeftOpenWithAMessage) {
  ASSERT_EQ(dw::CheckSignOn("McArthur", "Secret"), SignOnResult::Passed);
  dw::WriteAccessLogIn();
  other_.Hold(files_.Path("DW_USERS.MDB"), "SELECT * FROM [Access Log] WHERE [User ID] = 3");
  screen_->ExpectPart("Unable to write your sign-off into the access log.", Icon::Critical);
  dw::SignOff();
  other_.Leave();
  EXPECT_EQ(Ask("SELECT [Time Out] FROM [Access Log] WHERE [User ID] = 3"), "Null");
}

}  // namespace
