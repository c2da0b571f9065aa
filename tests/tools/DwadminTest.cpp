// The work of each command, and the exit codes and texts that scripts rely on.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tools/Dwadmin.h"

namespace {

namespace fs = std::filesystem;
using test::Json;
using test::Outcome;

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

int CountOf(const std::string& text, const std::string& part) {
  int count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) ++count;
  return count;
}

/// Records of comma-separated values. Quoted fields begin with a '"' here, which distinguishes "" from an
/// empty field.
std::vector<std::vector<std::string>> ParseCsv(const std::string& text) {
  std::vector<std::vector<std::string>> records(1);
  records.back().emplace_back();
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::string& field = records.back().back();
    if (text[i] == '"' && !quoted) {
      // The second of two quotation marks opens the field again.
      if (!field.empty())
        field += '"';
      else
        field = "\"";
      quoted = true;
    } else if (text[i] == '"') {
      quoted = false;
      // After a quotation mark, a quoted field ends, unless the mark is doubled.
      EXPECT_TRUE(i + 1 == text.size() || std::string(",\r\"").find(text[i + 1]) != std::string::npos);
    } else if (quoted) {
      field += text[i];
    } else if (text[i] == ',') {
      records.back().emplace_back();
    } else if (text.compare(i, 2, "\r\n") == 0) {
      ++i;
      records.emplace_back(1);
    } else {
      EXPECT_NE(text[i], '\n');
      EXPECT_NE(text[i], '\r');
      field += text[i];
    }
  }
  EXPECT_EQ(records.back(), std::vector<std::string>{""}) << "the last line has no end";
  records.pop_back();
  return records;
}

TEST_F(DwadminTest, ExplainsItselfAndRefusesCommandLinesThatItDoesNotUnderstand) {
  const Outcome help = test::Program({DWADMIN_PROGRAM, "--help"}).Join();
  EXPECT_EQ(help.code, 0);
  for (const char* word :
       {"create", "sample", "post", "unpost", "due", "costs", "who", "compact", "check", "export", "--data",
        "--workstation", "--transaction", "--usage", "--json", "Exit codes"})
    EXPECT_TRUE(Has(help.out, word)) << word;
  const std::vector<std::vector<std::string>> mistakes = {{},
                                                          {"psot"},
                                                          {"costs"},
                                                          {"costs", "--all", "--asset", "X"},
                                                          {"costs", "--all", "--by", "week"},
                                                          {"unpost", "--user", "ADMIN"},
                                                          {"post"},
                                                          {"sample", "--assets", "0"},
                                                          {"export"},
                                                          {"export", "Vehicles", "--csv", "--json"}};
  for (const std::vector<std::string>& mistake : mistakes) {
    std::vector<std::string> command = mistake;
    command.insert(command.begin(), DWADMIN_PROGRAM);
    const Outcome outcome = test::Program(command).Join();
    EXPECT_EQ(outcome.code, 3) << outcome.out;
    EXPECT_NE(outcome.error, "");
  }
}

TEST_F(DwadminTest, CreateMakesWhatTheFirstSignOnNeedsAndTouchesNothingThatIsThere) {
  EXPECT_EQ(Run({"create", "--workstation", "THE-TWENTY-ONE-LETTER"}).code, 1);
  ASSERT_EQ(Run({"create", "--workstation", "Yard"}).code, 0);
  EXPECT_EQ(Run({"check"}).out, "No differences.\n");
  EXPECT_EQ(Ask("SELECT [ID] FROM [Parameters]"), "1");
  EXPECT_EQ(
      Ask("SELECT [Administrator] FROM [Application User List] WHERE [Password] IS NULL", "DW_USERS.MDB"),
      "True");
  // Posting an empty table fails as always, and still closes the session.
  const Outcome post = Run({"post", "--user", "ADMIN", "--workstation", "YARD"}, "\n");
  EXPECT_EQ(post.code, 1);
  EXPECT_TRUE(Has(post.error, "Error # 3021: ")) << post.error;
  EXPECT_EQ(Sessions(), 1);
  EXPECT_EQ(OpenSessions(), 0);
  EXPECT_EQ(Run({"due", "--log", directory_.Path()}).code, 1);
  EXPECT_FALSE(fs::exists(directory_.Path("Maintenance Report.Log")));

  for (const char* command : {"create", "sample"}) {
    const Outcome again = Run({command});
    EXPECT_EQ(again.code, 1);
    EXPECT_TRUE(Has(again.error, "DW.MDB exists already")) << again.error;
  }
  EXPECT_EQ(Sessions(), 1);
  // One file is enough for a refusal, and the attempt leaves nothing.
  for (const char* file : {"DW.MDB", "DW_USERS.MDB", "DW_SANDS.MDB"}) fs::remove(Path(file));
  for (const auto& entry : fs::directory_iterator(Path()))
    if (entry.path().extension() != ".MDB") fs::remove(entry);
  EXPECT_EQ(Run({"sample"}).code, 1);
  EXPECT_EQ(std::distance(fs::directory_iterator(Path()), fs::directory_iterator()), 1);
}

TEST_F(DwadminTest, SignOnRefusesInTheSystemsWordsAndLeavesNoTrace) {
  MakeSample();
  struct Case {
    const char* user;
    const char* password;
    const char* workstation;
    const char* words;
  };
  const char* const kNoAccess = "Drovewright: Access not allowed.\nSee your System Administrator.\n";
  const Case cases[] = {
      {"NOBODY", "\n", "OFFICE", "Your User Name/Password combination is incorrect.\n"},
      {"ADMIN", "guess\n", "OFFICE", "Your User Name/Password combination is not authorized.\n"},
      {"CLERK", "", "OFFICE", "Your User Name/Password combination is not authorized.\n"},
      {"SEASONAL", "SUMMER\n", "OFFICE", kNoAccess},
      {"ADMIN", "\n", "LAPTOP", kNoAccess},
      {"ADMIN", "\n", "ELSEWHERE", kNoAccess},
      {"ADMIN", "\n", "", "This machine has no workstation name yet."},
  };
  const int before = Sessions();
  for (const Case& c : cases) {
    for (std::vector<std::string> command :
         {std::vector<std::string>{"post", "--clear"},
          std::vector<std::string>{"unpost", "--transaction", "1"}, std::vector<std::string>{"compact"}}) {
      command.insert(command.end(), {"--user", c.user, "--workstation", c.workstation});
      const Outcome outcome = Run(command, c.password);
      EXPECT_EQ(outcome.code, 1) << c.user;
      EXPECT_TRUE(Has(outcome.error, c.words)) << outcome.error;
      EXPECT_EQ(outcome.out, "");
    }
  }
  EXPECT_EQ(Sessions(), before);
  EXPECT_EQ(Ask("SELECT [ID] FROM [Maintenance Transactions] WHERE [When Posted] IS NOT NULL"), "none");

  // Without an option, the name in the settings is used; passwords ignore case.
  sys::SaveSetting("Brackenfel Software", "Settings", "Workstation Name", "shop");
  EXPECT_EQ(Run({"post", "--user", "clerk"}, "fleet\r\n").code, 0);
  EXPECT_EQ(
      Ask("SELECT TOP 1 [Workstation Name] FROM [Access Log] INNER JOIN [Application Workstation List] ON "
          "[Access Log].[Computer ID] = [Application Workstation List].[ID] ORDER BY [Access Log].[ID] DESC",
          "DW_USERS.MDB"),
      "SHOP");
}

TEST_F(DwadminTest, PostsUnpostsAndShowsCosts) {
  MakeSample();
  const int before = Sessions();
  const std::string count = Ask("SELECT COUNT(*) FROM [Maintenance Transactions]");
  const std::string whole = count + " transactions seen, " + count + " posted; ";
  EXPECT_EQ(Run({"costs", "--all"}).out, "No costs have been posted.\n");
  const Outcome post = RunAsAdmin({"post"});
  EXPECT_EQ(post.code, 0) << post.error;
  EXPECT_TRUE(post.out.starts_with(whole)) << post.out;
  // In a pipe, progress comes in lines.
  EXPECT_TRUE(Has(post.error, "Posting. Please stand by... 100%\n"));
  EXPECT_FALSE(Has(post.error, "\r"));
  EXPECT_TRUE(Has(RunAsAdmin({"post"}).out, " 0 posted; 0 cost rows added, 0 changed."));
  EXPECT_TRUE(RunAsAdmin({"post", "--clear"}).out.starts_with(whole));
  EXPECT_EQ(Run({"check"}).code, 0);

  // The costs must equal the sums of the transactions.
  const std::string asset =
      Ask("SELECT TOP 1 [Asset ID] FROM [Maintenance Transactions] WHERE [Outside Cost] > 0");
  const auto lifetime = [&](const char* column) {
    return RunJson({"costs", "--asset", asset})[0][column].text;
  };
  const std::string sum = Ask(
      "SELECT SUM([Total Outside Cost]) FROM [Maintenance Transactions] WHERE [Asset ID] = '" + asset + "'");
  EXPECT_EQ(lifetime("Total Outside Cost"), sum);
  EXPECT_EQ(RunJson({"costs", "--all"}).items.size(),
            static_cast<std::size_t>(std::stoi(Ask("SELECT COUNT(*) FROM [Assets Lifetime Costs]"))));
  const std::string ofAsset = " WHERE [Asset ID] = '" + asset + "'";
  for (const auto& [by, table] : {std::pair{"year", "Annual"}, std::pair{"period", "Period"}}) {
    const Json rows = RunJson({"costs", "--asset", asset, "--by", by});
    ASSERT_EQ(std::to_string(rows.items.size()),
              Ask("SELECT COUNT(*) FROM [Assets " + std::string(table) + " Costs]" + ofAsset));
    for (const Json& row : rows.items) EXPECT_EQ(row["Asset ID"].text, asset);
  }
  EXPECT_TRUE(Has(Run({"costs", "--asset", asset}).out, "\n" + asset + " "));
  EXPECT_EQ(Run({"costs", "--asset", "NO'SUCH"}).code, 1);

  const std::string id =
      Ask("SELECT TOP 1 [ID] FROM [Maintenance Transactions]" + ofAsset + " AND [Total Outside Cost] > 0");
  const std::string one =
      Ask("SELECT [Total Outside Cost] FROM [Maintenance Transactions] WHERE [ID] = " + id);
  EXPECT_EQ(RunAsAdmin({"unpost", "--transaction", id}).code, 0);
  EXPECT_EQ(*rt::Currency::Parse(lifetime("Total Outside Cost")) + *rt::Currency::Parse(one),
            *rt::Currency::Parse(sum));
  EXPECT_EQ(Ask("SELECT [Updated By] FROM [Maintenance Transactions] WHERE [When Posted] IS NULL"), "ADMIN");
  EXPECT_EQ(Run({"check"}).code, 0);
  const Outcome twice = RunAsAdmin({"unpost", "--transaction", id});
  EXPECT_EQ(twice.code, 1);
  EXPECT_TRUE(Has(twice.error, "Transaction " + id + " is not posted.\n")) << twice.error;
  EXPECT_EQ(RunAsAdmin({"unpost", "--transaction", "2000000000"}).code, 1);
  EXPECT_EQ(Run({"check"}).code, 0);

  // However fast the sessions followed each other, each has a row of its own and an end.
  EXPECT_EQ(Sessions(), before + 6);
  EXPECT_EQ(OpenSessions(), 0);
}

TEST_F(DwadminTest, DueGivesTheReportForTheFleetAndTheTextForAnAsset) {
  MakeSample();
  const std::vector<std::string> fleet = {"due",  "--by",  "1/1/2200",       "--usage",
                                          "1000", "--log", directory_.Path()};
  const Outcome report = Run(fleet);
  ASSERT_EQ(report.code, 0) << report.error;
  EXPECT_TRUE(Has(report.out, "\nItems due in the next 1000 mile(s) or by 1/1/2200\n"));
  EXPECT_TRUE(report.out.ends_with("--- End of Schedule ---\n-----------------------\n"));
  EXPECT_EQ(std::to_string(CountOf(report.out, "\nAsset ID: ")),
            Ask("SELECT COUNT(*) FROM [Vehicles] WHERE [No_Longer_In_Service] = FALSE"));
  std::ifstream log(directory_.Path("Maintenance Report.Log"), std::ios::binary);
  const std::string written(std::istreambuf_iterator<char>(log), {});
  EXPECT_EQ(CountOf(written, "\r\n"), CountOf(report.out, "\n"));

  const Json items = RunJson(fleet);
  ASSERT_FALSE(items.items.empty());
  EXPECT_EQ(static_cast<int>(items.items.size()), CountOf(report.out, " due on "));
  for (const Json& item : items.items) EXPECT_NE(item["Due Date"].IsNull(), item["Due Mileage"].IsNull());

  const std::string asset = items[0]["Asset ID"].text;
  const std::vector<std::string> single = {"due", "--asset", asset, "--by", "1/1/2200", "--usage", "1000"};
  const auto ofAsset = std::count_if(items.items.begin(), items.items.end(),
                                     [&](const Json& item) { return item["Asset ID"].text == asset; });
  EXPECT_EQ(CountOf(Run(single).out, " due on "), ofAsset);
  EXPECT_EQ(static_cast<std::ptrdiff_t>(RunJson(single).items.size()), ofAsset);

  EXPECT_EQ(Run({"due", "--asset", "NONE"}).code, 1);
  EXPECT_EQ(Run({"due", "--asset", "NONE", "--json"}).code, 1);
  EXPECT_EQ(Run({"due", "--by", "13/32/2026", "--log", directory_.Path()}).code, 1);
  EXPECT_EQ(Run({"due", "--usage", "far", "--log", directory_.Path()}).code, 1);
  const Outcome nowhere = Run({"due", "--log", directory_.Path("missing")});
  EXPECT_EQ(nowhere.code, 1);
  EXPECT_TRUE(Has(nowhere.error, "No maintenance report was written.")) << nowhere.error;
}

TEST_F(DwadminTest, CheckNamesEachRowAndColumnThatDiffers) {
  MakeSample();
  ASSERT_EQ(RunAsAdmin({"post"}).code, 0);
  const std::string asset = Ask("SELECT TOP 1 [Asset ID] FROM [Assets Lifetime Costs] ORDER BY [ID] DESC");
  const std::string stored =
      Ask("SELECT [Oil Cost] FROM [Assets Lifetime Costs] WHERE [Asset ID] = '" + asset + "'");
  Execute("UPDATE [Assets Lifetime Costs] SET [Oil Cost] = [Oil Cost] + 1 WHERE [Asset ID] = '" + asset +
          "'");
  Execute("DELETE * FROM [Assets Annual Costs] WHERE [Asset ID] = '" + asset + "'");
  Execute("DROP INDEX [User Name] ON [Application User List]", "DW_USERS.MDB");
  Execute("ALTER TABLE [Lists] DROP COLUMN [Abbreviation]", "DW_LISTS.MDB");

  const Outcome text = Run({"check"});
  EXPECT_EQ(text.code, 1);
  EXPECT_TRUE(Has(text.out, "DW.MDB, costs: [Assets Lifetime Costs] " + asset + ": Oil Cost is "))
      << text.out;
  EXPECT_TRUE(Has(text.out, "DW_USERS.MDB, structure: index [User Name]"));
  EXPECT_TRUE(Has(text.out, "DW_LISTS.MDB, structure: column [Lists].[Abbreviation] is missing"));
  const Json findings = RunJson({"check"}, 1);
  EXPECT_EQ(static_cast<int>(findings.items.size()), CountOf(text.out, "\n") - 1);
  const auto costs = std::find_if(findings.items.begin(), findings.items.end(),
                                  [](const Json& f) { return f["Table"].text == "Assets Lifetime Costs"; });
  ASSERT_NE(costs, findings.items.end());
  EXPECT_EQ((*costs)["Row"].text, asset);
  EXPECT_EQ((*costs)["Column"].text, "Oil Cost");
  EXPECT_EQ((*costs)["Expected"].text, stored);

  // Posting again with --clear repairs the sums.
  EXPECT_EQ(RunAsAdmin({"post", "--clear"}).code, 0);
  EXPECT_FALSE(Has(Run({"check"}).out, ", costs: "));
}

TEST_F(DwadminTest, MissingAndDamagedFilesAreToldAndLeftAsTheyAre) {
  const Outcome nowhere = Run({"costs", "--all"});
  EXPECT_EQ(nowhere.code, 1);
  EXPECT_TRUE(Has(nowhere.error, "DW.MDB was not found in " + Path())) << nowhere.error;
  EXPECT_TRUE(Has(nowhere.error, "--data"));

  MakeSample();
  const std::string rubbish(20000, 'x');
  std::ofstream(Path("DW_LISTS.MDB"), std::ios::binary) << rubbish;
  fs::remove(Path("DW_SANDS.MDB"));
  const Outcome check = Run({"check"});
  EXPECT_EQ(check.code, 1);
  EXPECT_TRUE(Has(check.out, "DW_LISTS.MDB, integrity: Error # 3049: ")) << check.out;
  EXPECT_TRUE(Has(check.out, "DW_SANDS.MDB, structure: the file is missing\n")) << check.out;
  EXPECT_TRUE(Has(check.out, "\n2 differences.\n"));

  std::ofstream(Path("DW_SANDS.MDB"), std::ios::binary) << rubbish;
  const Outcome compact = RunAsAdmin({"compact"});
  EXPECT_EQ(compact.code, 2);
  EXPECT_TRUE(Has(compact.error, "Application terminated.")) << compact.error;
  EXPECT_TRUE(Has(compact.out, "DW.MDB: "));
  EXPECT_EQ(OpenSessions(), 0);
  std::ifstream list(Path("DW_LISTS.MDB"), std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(list), {}), rubbish);

  std::ofstream(Path("DW.MDB"), std::ios::binary) << rubbish;
  EXPECT_EQ(RunAsAdmin({"post"}).code, 2);
  EXPECT_TRUE(Has(Run({"costs", "--all"}).error, "Error # 3049: "));
  EXPECT_EQ(OpenSessions(), 0);
  std::ofstream(Path("DW_USERS.MDB"), std::ios::binary) << rubbish;
  EXPECT_EQ(RunAsAdmin({"post"}).code, 1);
}

TEST_F(DwadminTest, ExportQuotesWhatItMustAndKeepsNullsApart) {
  ASSERT_EQ(Run({"create"}).code, 0);
  const std::string fields = "[Division ID], [Description], [Notes], [Date Created]";
  Execute("INSERT INTO [Divisions] (" + fields +
          ") VALUES ('a,b', 'He said \"no\"', '', #3/1/2026 2:05:09 PM#)");
  Execute("INSERT INTO [Divisions] (" + fields + ") VALUES ('\xC3\x84MT', 'one\r\ntwo', NULL, #3/1/2026#)");
  const std::string query = "SELECT " + fields + " FROM [Divisions] ORDER BY [ID]";

  const Outcome csv = Run({"export", query, "--csv"});
  ASSERT_EQ(csv.code, 0) << csv.error;
  const std::vector<std::vector<std::string>> expected = {
      {"Division ID", "Description", "Notes", "Date Created"},
      {"\"a,b", "\"He said \"no\"", "\"", "2026-03-01 14:05:09"},
      {"\xC3\x84MT", "\"one\r\ntwo", "", "2026-03-01"}};
  EXPECT_EQ(ParseCsv(csv.out), expected) << csv.out;
  const Json json = RunJson({"export", query});
  ASSERT_EQ(json.items.size(), 2U);
  EXPECT_EQ(json[0]["Description"].text, "He said \"no\"");
  EXPECT_EQ(json[1]["Description"].text, "one\r\ntwo");
  EXPECT_EQ(json[1]["Division ID"].text, "\xC3\x84MT");
  EXPECT_EQ(json[0]["Notes"].kind, Json::Kind::Text);
  EXPECT_TRUE(json[1]["Notes"].IsNull());

  // Tables of all files by their names; an empty one still has its columns.
  for (const char* name : {"[Divisions]", "divisions", " Divisions "})
    EXPECT_EQ(ParseCsv(Run({"export", name}).out).size(), 3U) << name;
  EXPECT_TRUE(Has(Run({"export", "Application User List"}).out, "\r\n1,ADMIN,,True,True,ADMIN,"));
  EXPECT_TRUE(Run({"export", "Sort Criteria"}).out.starts_with("ID,Query ID,"));
  EXPECT_TRUE(RunJson({"export", "Vehicles"}).items.empty());

  // Export refuses statements that change data, and fails if it cannot write.
  for (const char* source :
       {"DELETE * FROM [Divisions]", "No Such Table", "SELECT [Nothing] FROM [Divisions]"}) {
    const Outcome refused = Run({"export", source});
    EXPECT_EQ(refused.code, 1) << source;
    EXPECT_TRUE(Has(refused.error, "Error # 30")) << refused.error;
    EXPECT_EQ(refused.out, "");
  }
  EXPECT_EQ(Ask("SELECT COUNT(*) FROM [Divisions]"), "2");
  const Outcome full =
      test::Program(
          {"/bin/sh", "-c", "exec \"$0\" export Divisions --data \"$1\" >/dev/full", DWADMIN_PROGRAM, Path()})
          .Join();
  EXPECT_EQ(full.code, 1);
}

}  // namespace
