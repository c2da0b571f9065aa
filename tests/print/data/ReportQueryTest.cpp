// From definitions and selections to rows.
#include "platform/print/data/ReportQuery.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <chrono>
#include <fstream>
#include <random>
#include <thread>

#include "platform/print/PrintError.h"
#include "platform/print/definition/DefinitionReader.h"
#include "platform/print/formula/ValueRules.h"
#include "platform/runtime/Clock.h"
#include "platform/store/Cursor.h"
#include "support/SecondProcess.h"
#include "support/SmallFile.h"
#include "support/TempDirectory.h"

namespace print::test {
namespace {

using rt::Currency;
using rt::DateTime;
using rt::Null;
using rt::Value;
using Fields = std::vector<std::pair<std::string, Value>>;

class ReportQueryTest : public ::testing::Test {
 protected:
  ReportQueryTest() { ::test::MakeSmallFile(file_); }

  void Add(const std::string& table, const Fields& fields) {
    auto file = store::Connection::Open({file_});
    Add(file, table, fields);
  }
  static void Add(const std::shared_ptr<store::Connection>& file, const std::string& table,
                  const Fields& fields) {
    auto rows = store::Cursor::OpenTable(file, table, store::Locking::Pessimistic);
    rows->AddNew();
    for (const auto& [name, value] : fields) rows->Set(rows->FieldIndex(name), value);
    rows->Update();
  }
  /// SQL of the file itself, as another program would run it.
  void Raw(const std::string& sql) {
    sqlite3* file = nullptr;
    ASSERT_EQ(sqlite3_open(file_.c_str(), &file), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(file, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(file);
    sqlite3_close(file);
  }

  std::shared_ptr<const ReportDefinition> Define(const std::string& elements) {
    const std::string path = directory_.Path("test.rpt");
    std::ofstream(path) << "<report name=\"Test\">" << elements << "</report>";
    return ReadDefinition(path, file_);
  }
  /// All fields of Assets.
  std::shared_ptr<const ReportDefinition> Assets(const std::string& more = {}) {
    return Define(
        "<data><table name=\"Assets\"/></data><detail><text value=\"{Assets.Code} &amp; {Assets.Cost} &amp; "
        "{Assets.Miles} &amp; {Assets.Bought} &amp; {Assets.Active} &amp; {Assets.Notes} &amp; "
        "{Assets.Year}\"/></detail>" +
        more);
  }
  std::unique_ptr<ReportRows> Read(const ReportDefinition& report, const std::string& selection = {},
                                   const std::vector<SortField>& sort = {}) {
    warnings_.clear();
    return ReadReportRows(report, {file_, selection, sort}, {}, &warnings_);
  }
  /// The first field of each row.
  static std::string Shown(const ReportRows& rows, std::size_t field = 0) {
    std::string shown;
    Row row;
    for (std::int64_t i = 0; i < rows.rows.Count(); ++i) {
      rows.rows.Read(i, row);
      shown += (i == 0 ? "" : ",") + (row[field].IsNull() ? "-" : JoinedText(row[field]));
    }
    return shown;
  }
  std::string Words(const ReportDefinition& report, const std::string& selection,
                    const std::vector<SortField>& sort = {}) {
    try {
      Read(report, selection, sort);
    } catch (const PrintError& error) {
      return error.what();
    }
    return {};
  }

  ::test::TempDirectory directory_;
  std::string file_ = directory_.Path("DATA.MDB");
  std::vector<std::string> warnings_;
};

TEST_F(ReportQueryTest, OrdersNullFirstAndTextsWithoutCase) {
  for (const char* code : {"b", "A", "c", "B2"}) Add("Assets", {{"Code", code}, {"Year", 2000}});
  Add("Assets", {{"Code", Null{}}, {"Year", 1999}});
  const auto report = Assets();
  EXPECT_EQ(Shown(*Read(*report)), "b,A,c,B2,-");
  EXPECT_EQ(Shown(*Read(*report, "", {{"{Assets.Code}"}})), "-,A,b,B2,c");
  EXPECT_EQ(Shown(*Read(*report, "", {{"{[Assets].Code}", true}})), "c,B2,b,A,-");
  // Rows that the sort leaves equal come by their numbers.
  EXPECT_EQ(Shown(*Read(*report, "", {{"{Assets.Year}", true}})), "b,A,c,B2,-");
  EXPECT_EQ(Shown(*Read(*report, "", {{"{Assets.Year}"}, {"{Assets.Code}"}})), "-,A,b,B2,c");
  EXPECT_EQ(Words(*report, "", {{"{Assets.Color}"}}),
            "Sort field {Assets.Color}: there is no such field in the tables of the report.");
}

TEST_F(ReportQueryTest, GroupsComeBeforeTheSortAndFormulasMayBeKeys) {
  Add("Assets", {{"Code", "b"}, {"Year", 2001}, {"Bought", DateTime(2020, 5, 1)}});
  Add("Assets", {{"Code", "a"}, {"Year", 2000}, {"Bought", DateTime(2021, 1, 1)}});
  Add("Assets", {{"Code", "d"}, {"Year", 2001}, {"Bought", DateTime(2019, 1, 1)}});
  Add("Assets", {{"Code", "c"}, {"Year", 2000}, {"Bought", Null{}}});
  const std::string data =
      "<data><table name=\"Assets\"/><order field=\"{Assets.Code}\" descending=\"yes\"/></data>";
  const auto byField =
      Define(data + "<detail><text value=\"{Assets.Code}\"/></detail><group by=\"{Assets.Year}\"/>");
  const auto place = [](const ReportDefinition& report) {
    for (std::size_t i = 0; i < report.fields.size(); ++i)
      if (report.fields[i].column == "Code") return i;
    return std::size_t{0};
  };
  EXPECT_EQ(Shown(*Read(*byField), place(*byField)), "c,a,d,b");
  EXPECT_EQ(Shown(*Read(*byField, "", {{"{Assets.Code}"}}), place(*byField)), "a,c,b,d");
  const auto byFormula = Define(data +
                                "<detail><text value=\"{Assets.Code}\"/></detail>"
                                "<group by=\"Year({Assets.Bought})\" descending=\"yes\"/>");
  EXPECT_EQ(Shown(*Read(*byFormula), place(*byFormula)), "a,b,d,c");
}

TEST_F(ReportQueryTest, LeftJoinsLoseNoRowAndDoubleNone) {
  Add("Assets", {{"Code", "A"}, {"Notes", "one"}});
  Add("Assets", {{"Code", "B"}});
  for (const char* code : {"a", "B", "B", "none"}) Add("Lines", {{"Code", code}, {"Asset", 1}});
  Add("Lines", {{"Code", Null{}}});
  const auto report = Define(
      "<data><table name=\"Lines\"/><table name=\"Assets\" alias=\"Owners\"><join field=\"Code\" "
      "to=\"Lines.Code\"/>"
      "</table></data><detail><text value=\"{Lines.Code} &amp; {Assets.Notes}\"/></detail>");
  EXPECT_EQ(Shown(*Read(*report)), "a,B,B,none,-");
  EXPECT_EQ(Shown(*Read(*report), 1), "one,-,-,-,-");
  EXPECT_EQ(Shown(*Read(*report, "{Owners.Notes} = 'ONE'")), "a");
  EXPECT_EQ(Shown(*Read(*report, "IsNull({Assets.Notes}) AND {Lines.Code} <> 'b'")), "none");

  // Several rows of a joined table for one row of the primary one: its costs must not be counted twice.
  const auto doubled = Define(
      "<data><table name=\"Assets\"/><table name=\"Lines\"><join field=\"Code\" "
      "to=\"Assets.Code\"/></table></data>"
      "<detail><text value=\"{Assets.Code} &amp; {Lines.ID}\"/></detail>");
  EXPECT_EQ(Shown(*Read(*doubled)), "A,B");
  ASSERT_EQ(warnings_.size(), 1U);
  EXPECT_NE(warnings_[0].find("1 row was found more than once"), std::string::npos) << warnings_[0];
}

TEST_F(ReportQueryTest, ATableOfOneRowServesWithoutRowsToo) {
  Add("Assets", {{"Code", "HEAD"}, {"Notes", "The organization"}});
  const auto report = Define(
      "<data><table name=\"Lines\"/><table name=\"Assets\"><join field=\"ID\" equals=\"1\"/></table></data>"
      "<detail><text value=\"{Lines.Code} &amp; {Assets.Notes}\"/></detail>");
  const auto rows = Read(*report);
  EXPECT_EQ(rows->rows.Count(), 0);
  EXPECT_EQ(rows->blank, (Row{Null{}, "The organization"}));
}

TEST_F(ReportQueryTest, SelectionsOfUsersAreTakenAsTheyAre) {
  Add("Assets",
      {{"Code", "TRK"}, {"Bought", DateTime(1999, 1, 1)}, {"Year", 1999}, {"Cost", Currency::FromWhole(5)}});
  Add("Assets", {{"Code", "O'Neil"}, {"Bought", DateTime(1998, 12, 31, 23, 59, 59)}, {"Miles", 0.1F}});
  Add("Assets", {{"Code", "5% M\xC3\xBCller"}, {"Active", true}});
  const auto report = Assets();
  const auto selected = [&](const std::string& selection) { return Shown(*Read(*report, selection)); };
  EXPECT_EQ(selected("{Assets.Code} = 'trk' AND ({Assets.Bought} >= Date(1999,1,1))  "), "TRK");
  EXPECT_EQ(selected("{Assets.Code} = 'O''Neil'  "), "O'Neil");
  EXPECT_EQ(selected("{Assets.Code} = \"O'Neil\""), "O'Neil");
  EXPECT_EQ(selected("{Assets.Code} = '5% M\xC3\xBCller'"), "5% M\xC3\xBCller");
  EXPECT_EQ(selected("{Assets.Bought} < Date(1999,1,1)"), "O'Neil");
  EXPECT_EQ(selected("{Assets.Bought} > Date(1998,12,31)"), "TRK,O'Neil");
  EXPECT_EQ(selected("{Assets.Miles} = 0.1"), "O'Neil");
  EXPECT_EQ(selected("{Assets.Active} = True"), "5% M\xC3\xBCller");
  EXPECT_EQ(selected("{Assets.Cost} = 5.0000 or {assets.miles} > 0"), "TRK,O'Neil");
  EXPECT_EQ(selected("NOT ({Assets.Year} = 1999)"), "");
  EXPECT_EQ(selected("   "), "TRK,O'Neil,5% M\xC3\xBCller");
  EXPECT_EQ(selected("In({Assets.Code}, 'trk', 'x') OR Between({Assets.Bought}, Date(1998,1,1), Today)"),
            "TRK,O'Neil");
  std::string nested(200, '(');
  EXPECT_EQ(selected(nested + "{Assets.Code} = 'TRK'" + std::string(200, ')')), "TRK");
  std::string chain = "{Assets.Code} = 'TRK'";
  while (chain.size() < 40'000) chain += " OR {Assets.Code} = 'O''Neil'";
  EXPECT_EQ(selected(chain), "TRK,O'Neil");

  EXPECT_EQ(Words(*report, "{Assets.Year} =  "), "Selection, column 15: A value is missing after \"=\".");
  EXPECT_EQ(SelectionFault(*report, file_, "{Assets.Year} =  "),
            "Selection, column 15: A value is missing after \"=\".");
  EXPECT_EQ(SelectionFault(*report, file_, "{Assets.Code} & 'x'"),
            "Selection, column 1: The selection is a text and no condition.");
  EXPECT_EQ(SelectionFault(*report, file_, "{Assets.Code} = 'x'  "), "");
  EXPECT_EQ(SelectionFault(*report, file_, ""), "");
  EXPECT_NE(SelectionFault(*report, directory_.Path("gone.mdb"), "1=1").find("gone.mdb"), std::string::npos);
}

// Small joined tables are held in memory, large ones are joined by the engine: the rows are the same.
TEST_F(ReportQueryTest, HeldTablesGiveTheRowsOfAJoin) {
  Raw("INSERT INTO Assets (Code, Notes, Year, Cost) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 "
      "FROM n WHERE i < 40) SELECT 'c' || i, 'note ' || i, i % 7 + 1, i * 10000 FROM n;"
      "UPDATE Assets SET Year = 'odd' WHERE ID = 5; UPDATE Assets SET Cost = 1e300 WHERE ID = 6;"
      "INSERT INTO Lines (Asset, Code) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE "
      "i < "
      "300) SELECT i % 9, CASE WHEN i % 11 = 0 THEN NULL ELSE 'C' || (i % 45) END FROM n");
  // The second joined table is found by a field of the first.
  const auto report = Define(
      "<data><table name=\"Lines\"/>"
      "<table name=\"Assets\" alias=\"First\"><join field=\"Code\" to=\"Lines.Code\"/></table>"
      "<table name=\"Assets\" alias=\"Next\"><join field=\"ID\" to=\"First.Year\"/></table></data>"
      "<detail><text value=\"{Lines.ID} &amp; {First.Notes} &amp; {First.Cost} &amp; "
      "{Next.Code}\"/></detail>");
  const std::vector<std::string> selections{"", "{Next.Code} = 'C3'", "IsNull({First.Notes})",
                                            "{First.Year} > 2 AND {Lines.Asset} = 4 AND {Next.Notes} <> 'x'"};
  const auto all = [&] {
    std::string shown;
    for (const auto& selection : selections) {
      const auto rows = Read(*report, selection, {{"{Next.Code}", true}});
      for (std::size_t field = 0; field < report->fields.size(); ++field) shown += Shown(*rows, field) + ";";
      // Odd rows that the engine leaves out already are not heard of.
      for (const auto& warning : warnings_) shown += selection.empty() ? warning + ";" : "";
    }
    return shown;
  };
  const std::string held = all();
  EXPECT_NE(held.find("note 39"), std::string::npos);
  // A cost beyond the range and a year that is none count for each row that finds them.
  EXPECT_NE(held.find("6 values of First.Cost"), std::string::npos) << held;
  Raw("INSERT INTO Assets (Code) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < "
      "60000) SELECT 'X' || i FROM n");
  EXPECT_EQ(all(), held);
}

// A random selection over random rows gives the rows that it gives when each row is tested by itself.
class PushdownTest : public ReportQueryTest {
 protected:
  std::size_t Below(std::size_t most) {
    return std::uniform_int_distribution<std::size_t>(0, most - 1)(random_);
  }
  template <typename List>
  auto One(const List& list) {
    return list[Below(list.size())];
  }

  std::string Comparison() {
    static const std::vector<std::string> kTexts{"'a'", "'B'", "''", "'_'", "'O''N'", "'\xC3\xBC'", "'ab'"};
    static const std::vector<std::string> kNumbers{"0",
                                                   "1",
                                                   "-1",
                                                   "0.1",
                                                   "0.3",
                                                   "2.5",
                                                   "16777217",
                                                   "1E300",
                                                   "-0.5",
                                                   "1234.5678",
                                                   "900000000000.5",
                                                   "3E38",
                                                   "0.00005"};
    static const std::vector<std::string> kDates{"Date(2026,3,1)", "Date(1899,12,30)", "Date(2026,3,1) + 0.5",
                                                 "Date(999,1,1)", "Today"};
    static const std::vector<std::string> kSigns{"=", "<>", "<", "<=", ">", ">="};
    std::string field;
    std::string value;
    switch (Below(3)) {
      case 0:
        field = One(std::vector<std::string>{"{Assets.Code}", "{Assets.Notes}"});
        value = One(kTexts);
        break;
      case 1:
        field =
            One(std::vector<std::string>{"{Assets.Cost}", "{Assets.Miles}", "{Assets.Year}", "{Assets.ID}"});
        value = One(kNumbers);
        break;
      default:
        field = "{Assets.Bought}";
        value = One(kDates);
    }
    switch (Below(8)) {
      case 0:
        return "IsNull(" + field + ")";
      case 1:
        return "In(" + value + ", " + field + ", Null)";
      case 2:
        return "In(" + field + ", " + value + ", " + value + ")";
      case 3:
        return "Between(" + field + ", " + value + ", " + value + ")";
      case 4:
        return value + " " + One(kSigns) + " " + field;
      default:
        return field + " " + One(kSigns) + " " + value;
    }
  }

  std::string Condition(int depth) {
    if (depth == 0 || Below(4) == 0) return Comparison();
    switch (Below(3)) {
      case 0:
        return "(" + Condition(depth - 1) + " AND " + Condition(depth - 1) + ")";
      case 1:
        return "(" + Condition(depth - 1) + " OR " + Condition(depth - 1) + ")";
      default:
        return "NOT (" + Condition(depth - 1) + ")";
    }
  }

  std::mt19937 random_{20261122};
};

/// One row by itself.
class OneRow : public FormulaValues {
 public:
  Row row;
  const Value& Field(int place) const override { return row[static_cast<std::size_t>(place)]; }
  Value Neighbor(int, int) const override { return {}; }
  Value TotalOf(int) const override { return {}; }
  bool FirstInGroup(int) const override { return false; }
  bool LastInGroup(int) const override { return false; }
  std::int64_t RowNumber() const override { return 0; }
  int PageNumber() const override { return 0; }
  Value PageCount() const override { return {}; }
  bool Continued() const override { return false; }
  std::string ReportName() const override { return {}; }
  std::string User() const override { return {}; }
  DateTime PrintTime() const override { return {2026, 3, 1}; }
};

/// The fields of a definition by name.
class ReportScope : public FormulaScope {
 public:
  explicit ReportScope(const ReportDefinition& report) : report_(report) {}
  std::optional<int> FieldPlace(std::string_view name) const override {
    for (std::size_t i = 0; i < report_.fields.size(); ++i)
      if ("Assets." + report_.fields[i].column == name) return static_cast<int>(i);
    return std::nullopt;
  }
  rt::ValueType FieldType(int place) const override {
    return report_.fields[static_cast<std::size_t>(place)].type;
  }
  std::shared_ptr<const FormulaNode> NamedFormula(std::string_view) const override { return nullptr; }
  std::optional<int> GroupOf(std::string_view) const override { return std::nullopt; }

 private:
  const ReportDefinition& report_;
};

TEST_F(PushdownTest, EqualsTestingEachRow) {
  static const std::vector<Value> kTexts{"a", "A", "b", "", "_", "O'n", "\xC3\xBC", "\xC3\x9C", "AB", Null{}};
  static const std::vector<Value> kAmounts{Currency(),
                                           Currency::FromUnits(1),
                                           Currency::FromUnits(-5000),
                                           Currency::FromUnits(12'345'678),
                                           Currency::FromUnits(9'000'000'000'005'000),
                                           Currency::FromUnits(INT64_MAX),
                                           Currency::FromWhole(1),
                                           Null{}};
  static const std::vector<Value> kSingles{0.0F, 0.1F,        0.3F,       1.0F,  -1.0F,
                                           2.5F, 16777216.0F, 1234.5678F, 3e38F, Null{}};
  static const std::vector<Value> kDates{DateTime(2026, 3, 1),
                                         DateTime(2026, 3, 1, 12, 0, 0),
                                         DateTime(2026, 2, 28, 23, 59, 59),
                                         DateTime(),
                                         DateTime(999, 1, 1),
                                         Null{}};
  static const std::vector<Value> kYears{0, 1, -1, 2, 1999, Null{}};
  rt::FixedClock clock(DateTime(2026, 3, 1));
  {
    auto file = store::Connection::Open({file_});
    file->Execute("DROP INDEX [Code] ON [Assets]");
    file->BeginTrans();
    for (int i = 0; i < 300; ++i)
      Add(file, "Assets",
          {{"Code", One(kTexts)},
           {"Notes", One(kTexts)},
           {"Cost", One(kAmounts)},
           {"Miles", One(kSingles)},
           {"Bought", One(kDates)},
           {"Year", One(kYears)},
           {"Active", Below(2) == 0}});
    file->CommitTrans();
  }
  // What other programs leave behind.
  Raw("UPDATE Assets SET Miles = 0.1 WHERE ID % 23 = 1; UPDATE Assets SET Bought = '2026-03-01' WHERE ID % "
      "29 = 1;"
      "UPDATE Assets SET Year = 'abc' WHERE ID % 31 = 1; UPDATE Assets SET Cost = 'x' WHERE ID % 37 = 1;"
      "UPDATE Assets SET Bought = 'soon' WHERE ID % 41 = 1; UPDATE Assets SET Miles = 1e300 WHERE ID % 43 = "
      "1;"
      "UPDATE Assets SET Cost = 1e300 WHERE ID % 47 = 1; UPDATE Assets SET Notes = x'00ff' WHERE ID % 53 = 1;"
      "UPDATE Assets SET Cost = 25000.4 WHERE ID % 59 = 1");

  const auto report = Define(
      "<data><table name=\"Assets\"/></data><detail><text value=\"{Assets.ID} &amp; {Assets.Code} &amp; "
      "{Assets.Cost} "
      "&amp; {Assets.Miles} &amp; {Assets.Bought} &amp; {Assets.Notes} &amp; {Assets.Year}\"/></detail>");
  const auto all = Read(*report);
  ASSERT_EQ(all->rows.Count(), 300);
  EXPECT_EQ(warnings_.size(), 5U);
  const ReportScope scope(*report);
  int pushed = 0;
  for (int round = 0; round < 600; ++round) {
    const std::string selection = Condition(3);
    const auto formula = Formula::Read(selection, scope);
    std::string expected;
    OneRow one;
    for (std::int64_t i = 0; i < all->rows.Count(); ++i) {
      all->rows.Read(i, one.row);
      if (formula.Holds(one)) expected += (expected.empty() ? "" : ",") + one.row[0].AsText();
    }
    const auto rows = Read(*report, selection);
    ASSERT_EQ(Shown(*rows), expected) << selection;
    if (!expected.empty()) ++pushed;
  }
  EXPECT_GT(pushed, 200);
}

TEST_F(ReportQueryTest, HostileRowsCostOnlyThemselves) {
  for (const char* code : {"A", "B", "C"})
    Add("Assets", {{"Code", code}, {"Year", 2000}, {"Cost", Currency::FromWhole(1)}});
  Raw("UPDATE Assets SET Year = 'nineteen' WHERE Code = 'B'; UPDATE Assets SET Cost = 1e300 WHERE Code = "
      "'C'");
  const auto report = Assets();
  const auto rows = Read(*report, "{Assets.Code} >= 'A'");
  EXPECT_EQ(Shown(*rows), "A,B,C");
  EXPECT_EQ(Shown(*rows, 6), "2000,-,2000");
  ASSERT_EQ(warnings_.size(), 2U);
  EXPECT_NE(warnings_[0].find("Assets.Cost"), std::string::npos) << warnings_[0];
  EXPECT_EQ(warnings_[1],
            "1 value of Assets.Year cannot be read as a number and is left blank; the first is \"nineteen\" "
            "in the row with the ID 2 of Assets.");
  // A calculation that one row cannot stand leaves out that row.
  Raw("UPDATE Assets SET Cost = 9223372036854775807 WHERE Code = 'A'");
  EXPECT_EQ(Shown(*Read(*report, "{Assets.Cost} * 2 > 0 OR {Assets.Code} = 'C'")), "B,C");
  EXPECT_NE(warnings_.back().find("1 row could not be tested"), std::string::npos) << warnings_.back();
}

TEST_F(ReportQueryTest, SubreportsHaveTheirRowsByTheLink) {
  for (int i = 1; i <= 5; ++i) Add("Assets", {{"Code", std::string(1, static_cast<char>('A' + i - 1))}});
  {
    auto file = store::Connection::Open({file_});
    file->BeginTrans();
    for (int i = 0; i < 400; ++i) Add(file, "Lines", {{"Asset", 5 - i % 4}, {"Code", std::to_string(i)}});
    Add(file, "Lines", {{"Asset", Null{}}, {"Code", "none"}});
    file->CommitTrans();
  }
  for (const std::string link : {"{Lines.Asset} = {Assets.ID}", "{Assets.ID} = {Lines.Asset}"}) {
    const auto report = Define(
        "<data><table name=\"Assets\"/></data><detail><text value=\"{Assets.Code}\"/><subreport "
        "name=\"L\"/></detail>"
        "<subreport name=\"L\" link=\"" +
        link +
        "\"><data><table name=\"Lines\"/><order field=\"{Lines.Code}\" "
        "descending=\"yes\"/><select>{Lines.Code} &lt;> '399'</select></data>"
        "<detail><text value=\"{Lines.Code}\"/></detail></subreport>");
    const auto rows = Read(*report, "{Assets.Code} <= 'C'");
    ASSERT_EQ(rows->subreports.size(), 1U);
    const auto& inner = rows->subreports[0];
    EXPECT_EQ(inner.find(std::int32_t{1}), (std::pair<std::int64_t, std::int64_t>{0, 0}));
    EXPECT_EQ(inner.find(std::int32_t{2}).second, 99);
    EXPECT_EQ(inner.find(std::int32_t{3}).second, 100);
    EXPECT_EQ(inner.find(std::int32_t{4}).second, 0);  // not among the outer rows
    EXPECT_EQ(inner.find(Null{}).second, 0);
    Row row;
    const auto& fields = report->subreports[0].report->fields;
    const std::size_t code = fields[0].column == "Code" ? 0 : 1;
    inner.rows->rows.Read(inner.find(std::int32_t{3}).first, row);
    EXPECT_EQ(row[code], Value("98"));
  }
}

TEST_F(ReportQueryTest, CancelsAndNamesWhatIsWrongWithTheFile) {
  {
    auto file = store::Connection::Open({file_});
    file->BeginTrans();
    for (int i = 0; i < 2'000; ++i) Add(file, "Lines", {{"Asset", i}});
    file->CommitTrans();
  }
  const auto report =
      Define("<data><table name=\"Lines\"/></data><detail><text value=\"{Lines.Asset}\"/></detail>");
  std::int64_t last = 0;
  EXPECT_EQ(ReadReportRows(
                *report, {file_, "", {}}, [&](std::int64_t rows) { return (last = rows) < 1'000; }, nullptr),
            nullptr);
  EXPECT_EQ(last, 1'024);
  // The file was let go of.
  Add("Lines", {{"Asset", 1}});

  const auto words = [&](const std::string& file) -> std::string {
    try {
      ReadReportRows(*report, {file, "", {}}, {}, nullptr);
    } catch (const PrintError& error) {
      return error.what();
    }
    return {};
  };
  EXPECT_NE(words(directory_.Path("none.mdb")).find("none.mdb"), std::string::npos);
  const std::string other = directory_.Path("OTHER.MDB");
  store::Connection::Create(other);
  EXPECT_NE(words(other).find("has no table 'Lines'"), std::string::npos);
  {
    auto file = store::Connection::Open({other});
    file->Execute("CREATE TABLE [Lines] ([ID] COUNTER, [Code] TEXT(10))");
  }
  EXPECT_NE(words(other).find("has no field 'Asset'"), std::string::npos);
  {
    const auto exclusive = store::Connection::Open({file_, store::Share::Exclusive});
    EXPECT_NE(words(file_).find(file_), std::string::npos);
  }
  // Damage in the middle of the file.
  {
    std::fstream damage(file_, std::ios::in | std::ios::out | std::ios::binary);
    damage.seekp(4096 * 6);
    damage << std::string(4096 * 12, 'x');
  }
  const std::string damaged = words(file_);
  EXPECT_NE(damaged.find("The data file '" + file_ + "' cannot be read: "), std::string::npos) << damaged;
}

// Eight other processes write while a report is read: all of it is of one moment, and they go on at once.
TEST_F(ReportQueryTest, ShowsOneMomentBesideEightWriters) {
  // More rows than are read in the time for which others may be kept waiting.
  Raw("INSERT INTO Assets (Code, Cost) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE "
      "i < "
      "20000) SELECT 'A' || i, 1000000 FROM n");
  std::vector<std::unique_ptr<::test::SecondProcess>> writers;
  for (int writer = 0; writer < 8; ++writer) {
    writers.push_back(std::make_unique<::test::SecondProcess>([&, writer](
                                                                  ::test::SecondProcess::Channel& channel) {
      auto file = store::Connection::Open({file_});
      channel.Say("ready");
      channel.Hear();
      // Moves a dollar from one row to another, so that the sum of each moment is the same.
      std::mt19937 random(static_cast<unsigned>(writer));
      for (int i = 0; i < 60; ++i) {
        const auto row = [&] { return std::to_string(1 + writer * 600 + static_cast<int>(random() % 600)); };
        file->BeginTrans();
        file->Execute("UPDATE [Assets] SET [Cost] = [Cost] - 1 WHERE [ID] = " + row());
        file->Execute("UPDATE [Assets] SET [Cost] = [Cost] + 1 WHERE [ID] = " + row());
        file->CommitTrans();
      }
      channel.Say("done");
      channel.Hear();
    }));
    ASSERT_EQ(writers.back()->Talk().Hear(), "ready");
  }
  for (auto& writer : writers) writer->Talk().Say("go");
  const auto report = Assets();
  bool changed = false;
  std::string before;
  for (int i = 0; i < 12; ++i) {
    const auto rows = Read(*report, "", {{"{Assets.Cost}"}});
    ASSERT_EQ(rows->rows.Count(), 20'000);
    Value sum;
    Row row;
    std::string costs;
    for (std::int64_t place = 0; place < 20'000; ++place) {
      rows->rows.Read(place, row);
      sum = AddToTotal(sum, row[1]);
      costs += row[1].AsText() + " ";
    }
    EXPECT_EQ(sum, Value(Currency::FromWhole(2'000'000)));
    changed = changed || (!before.empty() && costs != before);
    before = costs;
  }
  EXPECT_TRUE(changed);
  for (auto& writer : writers) {
    EXPECT_EQ(writer->Talk().Hear(), "done");
    writer->Talk().Say("end");
    EXPECT_EQ(writer->Join(), 0);
  }
}

}  // namespace
}  // namespace print::test
