// Reports on the console, with the definition files and the engine of the program.
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tools/Dwadmin.h"

namespace {

namespace fs = std::filesystem;
using test::Outcome;

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

class ConsoleReport : public DwadminTest {
 protected:
  ConsoleReport() { MakeSample(); }
  /// The lines of a report as comma-separated values.
  int Lines(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "report");
    arguments.insert(arguments.end(), {"--format", "csv"});
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.code, 0) << outcome.error;
    return static_cast<int>(std::count(outcome.out.begin(), outcome.out.end(), '\n'));
  }
  void Refused(std::vector<std::string> arguments, const std::string& words, int code = 1) {
    arguments.insert(arguments.begin(), "report");
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.code, code) << outcome.error;
    EXPECT_TRUE(Has(outcome.error, words)) << outcome.error;
    EXPECT_EQ(outcome.out, "");
  }
  std::string Count(const std::string& from) { return Ask("SELECT COUNT(*) FROM " + from); }
  /// A definition for the transactions with one condition.
  void Definition(const std::string& name, const std::string& field, const std::string& value,
                  bool asked = false) {
    Execute("INSERT INTO [Select and Sort Queries] ([Description], [Primary Table], [Permanent]) VALUES ('" +
                name + "', 'Maintenance Transactions', FALSE)",
            "DW_SANDS.MDB");
    Execute(
        "INSERT INTO [Selection Criteria] ([Query ID], [Line Number], [Field Name], [Comparison Operator], "
        "[Value], [Get Value at Runtime], [Runtime Value Prompt]) VALUES (" +
            Ask("SELECT MAX([ID]) FROM [Select and Sort Queries]", "DW_SANDS.MDB") + ", 1, '" + field +
            "', '=', '" + value + "', " + (asked ? "TRUE, 'Which Asset?'" : "FALSE, NULL") + ")",
        "DW_SANDS.MDB");
  }
};

TEST_F(ConsoleReport, EveryReportIsMadeInEveryFormat) {
  const test::Json list = RunJson({"report", "list"});
  ASSERT_EQ(list.items.size(), 15u);
  for (const test::Json& report : list.items) {
    const std::string number = report.members.at("Number").text;
    const std::string path = Path(number + ".pdf");
    const Outcome outcome = Run({"report", number, "--from", "1/1/2020", "--out", path, "--user", "Zoë"});
    if (report.members.at("Options").text.empty()) {
      EXPECT_EQ(outcome.code, 1) << "it has no dates";
      EXPECT_EQ(Run({"report", number, "--out", path}).code, 0) << number;
    } else {
      EXPECT_EQ(outcome.code, 0) << number << outcome.error;
    }
    std::ifstream file(path, std::ios::binary);
    std::string head(5, ' ');
    file.read(head.data(), 5);
    EXPECT_EQ(head, "%PDF-") << number;
  }
  for (const char* ending : {"rtf", "xlsx", "csv", "html", "txt"}) {
    const std::string path = Path("inventory.") + ending;
    EXPECT_EQ(Run({"report", "3", "--out", path, "--paper", "a4", "--summary"}).code, 0) << ending;
    EXPECT_GT(fs::file_size(path), 0u) << ending;
  }
  const Outcome text = Run({"report", "3", "--user", "Zoë"});
  EXPECT_TRUE(Has(text.out, "Inventory Listing") && Has(text.out, "Zoë")) << text.out;
}

TEST_F(ConsoleReport, DatesAssetsAndDefinitionsNarrowItDown) {
  const std::string all = "1/1/2000";
  const std::string asset = Ask("SELECT TOP 1 [Asset ID] FROM [Maintenance Transactions]");
  Definition("One", "Asset ID", "''" + asset + "''");
  Definition("Asked", "Asset ID", "", true);
  const int every = Lines({"006", "--from", all});
  const int ofAsset = Lines({"006", "--from", all, "--asset", asset});
  EXPECT_GT(every, ofAsset);
  EXPECT_GE(ofAsset, std::stoi(Count("[Maintenance Transactions] WHERE [Asset ID] = '" + asset + "'")));
  EXPECT_EQ(Lines({"006", "--from", all, "--select", "One"}), ofAsset);
  EXPECT_LT(Lines({"006", "--from", all, "--select", "One", "--to", "1/2/2000"}), ofAsset) << "both hold";
  EXPECT_EQ(Ask("SELECT COUNT(*) FROM [Select and Sort Queries] WHERE [Permanent] = FALSE", "DW_SANDS.MDB"),
            "2")
      << "nothing is deleted";

  test::TerminalProgram asked(
      Command({"report", "006", "--from", all, "--select", "Asked", "--out", Path("asked.csv")}));
  ASSERT_TRUE(asked.WaitFor("Which Asset?"));
  asked.Type(asset + "\n");
  EXPECT_EQ(asked.Join().code, 0);
  std::ifstream file(Path("asked.csv"), std::ios::binary);
  EXPECT_EQ(std::count(std::istreambuf_iterator<char>(file), {}, '\n'), ofAsset);
}

TEST_F(ConsoleReport, RefusesWhatItCannotMake) {
  Refused({"005"}, "There is no report '005'.");
  Refused({"003", "--from", "1/1/2026"}, "Report 003 has no dates.");
  Refused({"004", "--asset", "X"}, "Only report 006");
  Refused({"006", "--from", "soon"}, "'soon' of --from is not a valid date");
  Refused({"003", "--out", Path("inventory.doc")}, "names no format");
  Refused({"003", "--out", Path("no such folder/inventory.pdf")}, "inventory.pdf");
  Refused({"006", "--select", "None"}, "There is no select and sort definition 'None' for report 006.");
  for (int i = 0; i < 2; ++i) Definition("Twice", "Asset ID", "''X''");
  Refused({"006", "--select", "Twice"}, "2 select and sort definitions");
  Definition("Wrong", "No Such Field", "1");
  Refused({"006", "--select", "Wrong"}, "No Such Field");
  Refused({"check"}, "name the definition file", 3);
  Refused({"003", "inventory.pdf"}, "--out names the file", 3);
  Refused({"003", "--paper", "a3"}, "--paper", 3);
}

TEST_F(ConsoleReport, CheckNamesTheFaultsOfADefinition) {
  const fs::path program = fs::path(DWADMIN_PROGRAM).parent_path();
  const Outcome good = Run({"report", "check", (program / "dwr006.rpt").string()});
  EXPECT_EQ(good.code, 0) << good.out;
  std::ifstream source(program / "dwr006.rpt");
  std::string text{std::istreambuf_iterator<char>(source), {}};
  const auto place = text.find("Work Order Number");
  ASSERT_NE(place, std::string::npos);
  text.replace(place, 4, "Wrok");
  std::ofstream(Path("dwr006.rpt")) << text;
  fs::copy_file(program / "house.rpt", Path("house.rpt"));
  const Outcome bad = Run({"report", "check", Path("dwr006.rpt")});
  EXPECT_EQ(bad.code, 1);
  const auto line = std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(place), '\n') + 1;
  EXPECT_TRUE(Has(bad.out, "line " + std::to_string(line))) << bad.out;
  EXPECT_TRUE(Has(bad.out, "Wrok Order")) << bad.out;
  EXPECT_EQ(Run({"report", "check", Path("none.rpt")}).code, 1);
}

}  // namespace
