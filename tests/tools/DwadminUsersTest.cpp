// The console program among other users, under signals and at a terminal.
#include <signal.h>

#include <cctype>
#include <filesystem>

#include "support/OtherUser.h"
#include "tools/Dwadmin.h"

namespace {

using test::Json;
using test::Outcome;

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST_F(DwadminTest, WhoShowsOthersAndTheirRecords) {
  test::OtherUser other;
  MakeSample();
  EXPECT_EQ(Run({"who"}).out, "Nobody has a data file open.\nNo record is held.\n");
  other.Hold(Path("DW.MDB"), "SELECT * FROM [Vehicles] WHERE [ID] = 4");
  const Json who = RunJson({"who"});
  ASSERT_EQ(who["users"].items.size(), 1U);
  EXPECT_EQ(who["users"][0]["File"].text, "DW.MDB");
  EXPECT_EQ(who["users"][0]["User"].text, "admin");
  EXPECT_NE(who["users"][0]["Computer"].text, "");
  ASSERT_EQ(who["held"].items.size(), 1U);
  const Json& held = who["held"][0];
  EXPECT_EQ(held["Table"].text, "Vehicles");
  EXPECT_EQ(held["Record"].text, "4");
  EXPECT_EQ(held["User"].text, "admin");
  EXPECT_EQ(held["Held By"].text, "window");
  EXPECT_TRUE(Has(Run({"who"}).out, "Vehicles  4 "));

  // A file in use is not compacted; the others are.
  const Outcome compact = RunAsAdmin({"compact"});
  EXPECT_EQ(compact.code, 1);
  EXPECT_TRUE(Has(compact.error, "Cannot compact at this time. Currently in use.")) << compact.error;
  EXPECT_TRUE(Has(compact.out, "DW.MDB: not compacted.\n"));
  EXPECT_TRUE(Has(compact.out, " bytes now.\n"));
  other.Leave();
  EXPECT_EQ(RunAsAdmin({"compact"}).code, 0);
  EXPECT_EQ(Run({"check"}).code, 0);
  EXPECT_EQ(OpenSessions(), 0);
}

TEST_F(DwadminTest, AFileThatAnotherKeepsToHimselfIsTold) {
  test::SecondProcess other([](test::SecondProcess::Channel& talk) {
    const auto alone = store::Connection::Open({.path = talk.Hear(), .share = store::Share::Exclusive});
    talk.Say("alone");
    talk.Hear();
  });
  MakeSample();
  other.Talk().Say(Path("DW.MDB"));
  ASSERT_EQ(other.Talk().Hear(), "alone");
  const Json who = RunJson({"who"});
  ASSERT_EQ(who["users"].items.size(), 1U);
  EXPECT_EQ(who["users"][0]["File"].text, "DW.MDB");
  EXPECT_EQ(who["users"][0]["Exclusive"].kind, Json::Kind::True);
  EXPECT_TRUE(Has(Run({"costs", "--all"}).error, "Error # 3356: "));
  EXPECT_EQ(RunAsAdmin({"compact"}).code, 1);
  other.Talk().Say("leave");
  EXPECT_EQ(other.Join(), 0);
  EXPECT_EQ(OpenSessions(), 0);
}

TEST_F(DwadminTest, WorkThatAHeldRecordKeptOutIsNotDone) {
  test::OtherUser other;
  MakeSample();
  ASSERT_EQ(RunAsAdmin({"post"}).code, 0);
  const std::string id = Ask("SELECT TOP 1 [ID] FROM [Maintenance Transactions]");
  ASSERT_EQ(RunAsAdmin({"unpost", "--transaction", id}).code, 0);
  const std::string asset = Ask("SELECT [Asset ID] FROM [Maintenance Transactions] WHERE [ID] = " + id);
  other.Hold(Path("DW.MDB"), "SELECT * FROM [Assets Lifetime Costs] WHERE [Asset ID] = '" + asset + "'");

  // The row is posted except for one sum, which check then names; with --clear, the whole run is refused.
  const Outcome post = RunAsAdmin({"post"});
  EXPECT_EQ(post.code, 1);
  EXPECT_TRUE(Has(post.error, "Posting is Complete."));
  const Outcome clear = RunAsAdmin({"post", "--clear"});
  EXPECT_EQ(clear.code, 1);
  EXPECT_TRUE(Has(clear.error, "Error # 32")) << clear.error;
  EXPECT_NE(Ask("SELECT [When Posted] FROM [Maintenance Transactions] WHERE [ID] = " + id), "Null");
  other.Leave();
  const Json findings = RunJson({"check"}, 1);
  ASSERT_FALSE(findings.items.empty());
  EXPECT_EQ(OpenSessions(), 0);
}

/// Another user whose transaction has changed a record and is still open.
class OpenTransaction {
 public:
  OpenTransaction()
      : process_([](test::SecondProcess::Channel& talk) {
          const std::string path = talk.Hear();
          const std::string sql = talk.Hear();
          const auto connection = store::Connection::Open({.path = path});
          connection->BeginTrans();
          connection->Execute(sql);
          store::YieldFiles();
          talk.Say("held");
          talk.Hear();
          connection->RollbackTrans();
        }) {}
  void Run(const std::string& path, const std::string& sql) {
    process_.Talk().Say(path);
    process_.Talk().Say(sql);
    ASSERT_EQ(process_.Talk().Hear(), "held");
  }
  void Leave() {
    process_.Talk().Say("leave");
    EXPECT_EQ(process_.Join(), 0);
  }

 private:
  test::SecondProcess process_;
};

TEST_F(DwadminTest, ASignalEndsPostingWithWholeSumsAndAClosedSession) {
  struct Case {
    int number;
    const char* order;
  };
  // The run waits at a row of sums in another user's transaction. In the first case, the signal stops it
  // within the first transaction; in the second case, wherever it is.
  for (const auto& [number, order] : {Case{SIGTERM, ""}, Case{SIGINT, " DESC"}}) {
    SCOPED_TRACE(number);
    OpenTransaction other;
    if (!std::filesystem::exists(Path())) MakeSample();
    ASSERT_EQ(RunAsAdmin({"post", "--clear"}).code, 0);
    const std::string asset =
        Ask("SELECT TOP 1 [Asset ID] FROM [Maintenance Transactions] ORDER BY [ID]" + std::string(order));
    for (const char* id : {"SELECT MIN([ID]) FROM [Maintenance Transactions]",
                           "SELECT MAX([ID]) FROM [Maintenance Transactions]"})
      ASSERT_EQ(RunAsAdmin({"unpost", "--transaction", Ask(id)}).code, 0);
    other.Run(Path("DW.MDB"),
              "UPDATE [Assets Lifetime Costs] SET [Oil Cost] = 0 WHERE [Asset ID] = '" + asset + "'");
    test::Program post(Command({"post", "--user", "admin", "--workstation", "office"}), "\n");
    ASSERT_TRUE(post.WaitForError("Posting. Please stand by... 0%"));
    post.Signal(number);
    const Outcome stopped = post.Join();
    EXPECT_EQ(stopped.code, 1) << stopped.error;
    EXPECT_TRUE(Has(stopped.error, "Stopped.\n")) << stopped.error;
    other.Leave();
    EXPECT_EQ(OpenSessions(), 0);
    EXPECT_EQ(Run({"check"}).out, "No differences.\n");
    EXPECT_EQ(RunAsAdmin({"post"}).code, 0);
    EXPECT_EQ(Run({"check"}).out, "No differences.\n");
  }
}

TEST_F(DwadminTest, AStoppedSampleLeavesNothingThatLooksLikeData) {
  test::Program sample(Command({"sample", "--assets", "3000", "--years", "30"}));
  ASSERT_TRUE(sample.WaitForError("Making the sample fleet... 0%"));
  sample.Signal(SIGTERM);
  EXPECT_EQ(sample.Join().code, 1);
  EXPECT_TRUE(std::filesystem::is_empty(Path()));
}

TEST_F(DwadminTest, ATerminalAsksForThePasswordWithoutShowingIt) {
  MakeSample();
  test::TerminalProgram post(Command({"post", "--user", "clerk", "--workstation", "office"}));
  ASSERT_TRUE(post.WaitFor("Password: "));
  EXPECT_FALSE(post.Echoes());
  post.Type("fleet\n");
  ASSERT_TRUE(post.WaitFor("Posting is Complete."));
  const Outcome outcome = post.Join();
  EXPECT_EQ(outcome.code, 0) << outcome.out;
  EXPECT_FALSE(Has(outcome.out, "fleet")) << outcome.out;
  // Progress stays on one line.
  EXPECT_TRUE(Has(outcome.out, "\rPosting. Please stand by... 100%"));
  EXPECT_FALSE(Has(outcome.out, "%\r\nPosting"));

  // Canceling at the prompt leaves the terminal as it was.
  test::TerminalProgram given(Command({"post", "--user", "clerk", "--workstation", "office"}));
  ASSERT_TRUE(given.WaitFor("Password: "));
  EXPECT_FALSE(given.Echoes());
  given.Type("\x03");
  EXPECT_EQ(given.Join().code, 1);
  EXPECT_TRUE(given.Echoes());
}

TEST_F(DwadminTest, RowsThatStayUnpostedAreNamedWithTheirReason) {
  test::OtherUser other;
  MakeSample();
  ASSERT_EQ(RunAsAdmin({"post"}).code, 0);
  const std::string held = Ask("SELECT MIN([ID]) FROM [Maintenance Transactions]");
  ASSERT_EQ(RunAsAdmin({"unpost", "--transaction", held}).code, 0);
  Execute(
      "INSERT INTO [Maintenance Transactions] ([Asset ID], [Transaction Date], [Type_ID]) VALUES ('SOLD', "
      "#3/1/2026#, 0)");
  const std::string sold = Ask("SELECT MAX([ID]) FROM [Maintenance Transactions]");
  other.Hold(Path("DW.MDB"), "SELECT * FROM [Maintenance Transactions] WHERE [ID] = " + held);
  const Outcome post = RunAsAdmin({"post"});
  EXPECT_EQ(post.code, 4) << post.error;
  EXPECT_TRUE(Has(post.error, "Not posted (asset 'SOLD' is not on file): transaction " + sold + ".\n"))
      << post.error;
  EXPECT_TRUE(Has(post.error, "Not posted (held by user 'admin' on machine '")) << post.error;
  EXPECT_TRUE(Has(post.error, "): transaction " + held + ".\n")) << post.error;
  other.Leave();
  Execute("DELETE FROM [Maintenance Transactions] WHERE [ID] = " + sold);
  EXPECT_EQ(RunAsAdmin({"post"}).code, 0);
}

TEST_F(DwadminTest, UnpostSaysWhatTheFileSays) {
  test::OtherUser other;
  MakeSample();
  ASSERT_EQ(RunAsAdmin({"post"}).code, 0);
  const std::string id = Ask("SELECT MAX([ID]) FROM [Maintenance Transactions]");
  const std::string asset = Ask("SELECT [Asset ID] FROM [Maintenance Transactions] WHERE [ID] = " + id);
  other.Hold(Path("DW.MDB"), "SELECT * FROM [Assets Lifetime Costs] WHERE [Asset ID] = '" + asset + "'");
  const Outcome part = RunAsAdmin({"unpost", "--transaction", id});
  EXPECT_EQ(part.code, 1);
  EXPECT_EQ(part.out,
            "Transaction " + id + " is unposted, but not all of its sums were changed: see `check`.\n");
  other.Leave();

  // A second row by the same user violates this index, so every update of a transaction fails.
  Execute("UPDATE [Maintenance Transactions] SET [Updated By] = Null");
  store::Connection::Open({.path = Path("DW.MDB")})
      ->CreateIndex("Maintenance Transactions",
                    {.name = "Hostile", .columns = {"Updated By"}, .unique = true});
  Execute("UPDATE [Maintenance Transactions] SET [Updated By] = 'ADMIN' WHERE [ID] = " + id);
  const std::string next = Ask("SELECT MIN([ID]) FROM [Maintenance Transactions]");
  const Outcome none = RunAsAdmin({"unpost", "--transaction", next});
  EXPECT_EQ(none.code, 1);
  EXPECT_EQ(none.out, "");
  EXPECT_TRUE(Has(none.error, "Transaction " + next + " is still posted.")) << none.error;
  EXPECT_NE(Ask("SELECT [When Posted] FROM [Maintenance Transactions] WHERE [ID] = " + next), "Null");
  EXPECT_EQ(OpenSessions(), 0);
}

TEST_F(DwadminTest, NoWorkIsDoneWithoutARowInTheAccessLog) {
  MakeSample();
  Execute(
      "INSERT INTO [Access Log] ([User ID], [Time Out]) SELECT [ID], #1/1/2026# FROM [Application User List]",
      "DW_USERS.MDB");
  Execute("DELETE FROM [Access Log] WHERE [Time In] IS NOT Null", "DW_USERS.MDB");
  store::Connection::Open({.path = Path("DW_USERS.MDB")})
      ->CreateIndex("Access Log", {.name = "Hostile", .columns = {"User ID"}, .unique = true});
  const int sessions = Sessions();
  const Outcome post = RunAsAdmin({"post"});
  EXPECT_EQ(post.code, 1);
  EXPECT_TRUE(Has(post.error, "Nothing has been done.")) << post.error;
  EXPECT_EQ(Sessions(), sessions);
  EXPECT_EQ(Ask("SELECT COUNT(*) FROM [Maintenance Transactions] WHERE [When Posted] IS NOT NULL"), "0");
}

TEST_F(DwadminTest, OneUserMayRunSeveralCommandsAtATime) {
  OpenTransaction other;
  MakeSample();
  ASSERT_EQ(RunAsAdmin({"post"}).code, 0);
  const std::string id = Ask("SELECT MIN([ID]) FROM [Maintenance Transactions]");
  const std::string asset = Ask("SELECT [Asset ID] FROM [Maintenance Transactions] WHERE [ID] = " + id);
  ASSERT_EQ(RunAsAdmin({"unpost", "--transaction", id}).code, 0);
  other.Run(Path("DW.MDB"),
            "UPDATE [Assets Lifetime Costs] SET [Oil Cost] = 0 WHERE [Asset ID] = '" + asset + "'");
  test::Program post(Command({"post", "--user", "admin", "--workstation", "office"}), "\n");
  ASSERT_TRUE(post.WaitForError("Posting. Please stand by... 0%"));
  EXPECT_EQ(RunAsAdmin({"unpost", "--transaction", "999999"}).code, 1);
  EXPECT_EQ(OpenSessions(), 1) << "the session that goes on has its own row";
  other.Leave();
  const Outcome outcome = post.Join();
  EXPECT_EQ(outcome.code, 0) << outcome.error;
  EXPECT_EQ(OpenSessions(), 0);
}

TEST_F(DwadminTest, FilesAreFoundWhateverTheCaseOfTheirNamesAndTheBytesOfTheirPath) {
  MakeSample();
  for (const char* name : {"DW", "DW_USERS", "DW_LISTS", "DW_SANDS"}) {
    std::string lower(name);
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    std::filesystem::rename(Path(name + std::string(".MDB")), Path(lower + ".mdb"));
  }
  EXPECT_EQ(RunAsAdmin({"post"}).code, 0);
  EXPECT_EQ(Run({"check"}).out, "No differences.\n");
  EXPECT_EQ(Run({"sample"}).code, 1) << "nothing is made beside them";

  const std::string odd = directory_.Path("data, \xfcnsere");
  std::filesystem::rename(Path(), odd);
  EXPECT_EQ(test::Program({DWADMIN_PROGRAM, "check", "--data", odd}).Join().out, "No differences.\n");
}

}  // namespace
