// The language: texts to values, texts to faults with their places.
#include "platform/print/formula/Formula.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>

#include "platform/print/formula/FormulaFunctions.h"
#include "platform/print/formula/FormulaNode.h"
#include "platform/print/formula/ValueRules.h"
#include "print/formula/FormulaFixture.h"

namespace print::test {
namespace {

using rt::Currency;
using rt::DateTime;
using rt::Null;
using rt::Value;

std::string Show(const Value& value) {
  static constexpr const char* kNames[] = {"Null",   "Boolean",  "Integer", "Long", "Single",
                                           "Double", "Currency", "Date",    "Text", "Binary"};
  return std::string(kNames[static_cast<int>(value.Type())]) + " " + JoinedText(value);
}

struct Case {
  const char* text;
  Value expected;
};

void ExpectValues(const std::vector<Case>& cases) {
  const TestScope scope = FleetScope();
  TestValues values(scope);
  values.pages = std::int32_t{12};
  for (const auto& [text, expected] : cases) {
    try {
      const Value got = Formula::Read(text, scope).Evaluate(values);
      EXPECT_EQ(Show(got), Show(expected)) << text;
    } catch (const std::exception& error) {
      ADD_FAILURE() << text << ": " << error.what();
    }
  }
}

Currency Money(double amount) { return Currency::RoundedToEven(amount); }
Value Whole(int number) { return std::int32_t{number}; }

TEST(FormulaTest, LiteralsFieldsAndOperators) {
  ExpectValues({
      {"12", Whole(12)},
      {"-12", Whole(-12)},
      {".5", 0.5},
      {"1.5E2", 150.0},
      {"2147483648", 2147483648.0},
      {"'it''s'", "it's"},
      {"\"a \"\"b\"\" 'c'\"", "a \"b\" 'c'"},
      {"''", ""},
      {"'M\xC3\xBCller 100%'", "M\xC3\xBCller 100%"},
      {"{Vehicles.Asset ID}", "BUS-001"},
      {"{vehicles.asset id}", "BUS-001"},
      {"{[Vehicles].[Asset ID]}", "BUS-001"},
      {"{ Vehicles . Asset ID }", "BUS-001"},
      {"{Vehicles.VIN/Serial Number} & ''", "1O'Neil"},
      {"{@Twice}", Money(200.001)},
      {"1 + 2 * 3", Whole(7)},
      {"(1 + 2) * 3", Whole(9)},
      {"10 - 4 - 3", Whole(3)},
      {"-2 * -3", Whole(6)},
      {"7 / 2", 3.5},
      {"1 + 2 & 3", "33"},
      {"'a' & 1 & Null & 2.5", "a12.5"},
      {"2147483647 + 1", 2147483648.0},
      {"65536 * 65536", 4294967296.0},
      {"1 = 1.0", true},
      {"'abc' = 'ABC'", true},
      {"'\xC3\xBC' = '\xC3\x9C'", false},
      {"'abc' < 'ABD'", true},
      {"'ab' < 'abc'", true},
      {"'Z' > '_'", true},  // A to Z count as a to z, and "_" comes before these
      {"1 < 2 AND 2 < 3 or false", true},
      {"not 1 = 2", true},
      {"NOT NOT True", true},
      {"True or 1 = 2 and False", true},
      {"{Vehicles.No_Longer_In_Service} = 0", true},
      {"{Vehicles.No_Longer_In_Service} = -1", false},
      {"{Vehicles.No_Longer_In_Service} = No", true},
      {"{Costs.Units} = 0.1", true},  // although the Single is not the Double
      {"{Costs.Cost} = 100.0005", true},
      {"{Vehicles.Purchase Date} >= Date(1999,1,1)", true},
      {"{Vehicles.Purchase Date} = Date(1999,5,31)", true},
      {" {Vehicles.Class ID} = 'TRK' AND ({Vehicles.Purchase Date} >= Date(1999,1,1))  ", true},
      {"{Vehicles.Purchase Date} + 1", DateTime(1999, 6, 1)},
      {"{Vehicles.Purchase Date} - 0.5", DateTime(1999, 5, 30, 12, 0, 0)},
      {"{Vehicles.Purchase Date} - Date(1999,5,1)", 30.0},
  });
}

TEST(FormulaTest, MoneyIsExact) {
  ExpectValues({
      {"{Costs.Cost} + {Costs.Cost}", Money(200.001)},
      {"{Costs.Cost} + 1", Money(101.0005)},
      {"{Costs.Cost} - 0.0005", Money(100)},
      {"{Costs.Cost} * 3", Money(300.0015)},
      // 100.0005 * 0.1 is 10.00005, a tie, which goes to the even ten-thousandth.
      {"{Costs.Cost} * 0.1", Money(10)},
      {"{Costs.Cost} * 0.3", Currency::FromUnits(300'002)},
      {"{Costs.Cost} * {Costs.Cost}", Currency::FromUnits(100'001'000)},
      {"{Costs.Cost} / 2", 50.00025},
      {"{Costs.Cost} / {Costs.Cost}", 1.0},
      {"-{Costs.Cost}", Money(-100.0005)},
  });
  EXPECT_EQ(AddToTotal(Null{}, Money(1)), Value(Money(1)));
  EXPECT_EQ(AddToTotal(Money(1), Null{}), Value(Money(1)));
}

TEST(FormulaTest, NullInEveryOperator) {
  std::vector<Case> cases;
  static const std::string kNull = "{Costs.Nothing}";
  std::vector<std::string> texts;
  for (const char* sign : {"+", "-", "*", "/", "=", "<>", "<", "<=", ">", ">="}) {
    texts.push_back(kNull + sign + "1");
    texts.push_back("1" + std::string(sign) + kNull);
    texts.push_back(kNull + sign + kNull);
  }
  for (const char* text : {"-{Costs.Nothing}",
                           "NOT ({Costs.Nothing} = 1)",
                           "1 / 0",
                           "{Costs.Cost} / 0",
                           "{Costs.No Date} + 1",
                           "Ratio(1, 0)",
                           "Ratio({Costs.Nothing}, 1)",
                           "{Costs.Nothing} = 1 AND True",
                           "{Costs.Nothing} = 1 OR False",
                           "Abs({Costs.Nothing})",
                           "Round({Costs.Nothing}, 2)",
                           "Int({Costs.Nothing})",
                           "Upper({Costs.No Text})",
                           "Left({Costs.No Text}, 2)",
                           "Length({Costs.No Text})",
                           "Year({Costs.No Date})",
                           "DateAdd('d', 1, {Costs.No Date})",
                           "DateDiff('d', {Costs.No Date}, Today)",
                           "MonthName({Costs.No Date})",
                           "In({Costs.Nothing}, 1, 2)",
                           "In(3, 1, {Costs.Nothing})",
                           "Between(1, {Costs.Nothing}, 2)",
                           "If({Costs.Nothing} = 1, 'a')",
                           "Coalesce(Null, {Costs.Nothing})",
                           "Previous({Costs.Cost})",
                           "Null"})
    texts.emplace_back(text);
  for (const auto& text : texts) cases.push_back({text.c_str(), Null{}});
  ExpectValues(cases);
  ExpectValues({
      {"{Costs.Nothing} = 1 AND False", false},
      {"False AND {Costs.Nothing} = 1", false},
      {"{Costs.Nothing} = 1 OR True", true},
      {"{Costs.Nothing} & 'x'", "x"},
      {"If({Costs.Nothing} = 1, 'a', 'b')", "b"},
      {"IsNull({Costs.Nothing})", true},
      {"IsNull({Vehicles.Photograph})", false},
      {"Coalesce({Costs.Nothing}, 5)", Whole(5)},
      {"In(1, 1, {Costs.Nothing})", true},
      {"Between(3, {Costs.Nothing}, 2)", false},
      {"Text({Costs.Nothing}, 'money')", ""},
  });
  const TestScope scope = FleetScope();
  EXPECT_FALSE(Formula::Read("{Costs.Nothing} = 1", scope).Holds(TestValues(scope)));
  EXPECT_FALSE(Formula::Read("NOT ({Costs.Nothing} = 1)", scope).Holds(TestValues(scope)));
}

TEST(FormulaTest, Functions) {
  ExpectValues({
      {"If(1 < 2, 'a', 'b')", "a"},
      {"If(False, 1 / 0, 2)", Whole(2)},
      {"IF(True, {Costs.Cost}, 0)", Money(100.0005)},
      {"In('trk', 'BUS', 'TRK')", true},
      {"In(2, 1, 3)", false},
      {"Between({Vehicles.Model Year}, 1990, 1999)", true},
      {"Abs(-3)", Whole(3)},
      {"Abs(-{Costs.Cost})", Money(100.0005)},
      {"Round(2.5)", Whole(3)},
      {"Round(-2.5)", Whole(-3)},
      {"Round(2.675, 2)", 2.68},
      {"Round(1234, -2)", Whole(1200)},
      {"Round({Costs.Cost}, 3)", Money(100.001)},
      {"Round(-{Costs.Cost}, 3)", Money(-100.001)},
      {"Round({Costs.Cost})", Money(100)},
      {"Int(-2.5)", Whole(-3)},
      {"Int({Costs.Cost})", Whole(100)},
      {"Int(-{Costs.Cost})", Whole(-101)},
      {"Ratio({Costs.Cost}, 2)", 50.00025},
      {"Number('1,234.5')", 1234.5},
      {"Number('x')", Null{}},
      {"Trim('  a b ')", "a b"},
      {"Upper('m\xC3\xBCller')", "M\xC3\x9CLLER"},
      {"Lower('\xC3\x84\x42')", "\xC3\xA4\x62"},
      {"Left('M\xC3\xBCller', 2)", "M\xC3\xBC"},
      {"Left('ab', 9)", "ab"},
      {"Left('ab', -1)", ""},
      {"Right('Gr\xC3\xBC\xC3\x9F', 2)", "\xC3\xBC\xC3\x9F"},
      {"Right('ab', 9)", "ab"},
      {"Mid('abcdef', 2, 3)", "bcd"},
      {"Mid('abcdef', 4)", "def"},
      {"Mid('abc', 9)", ""},
      {"Length('\xC3\xBC\xC3\x9F')", Whole(2)},
      {"Replace('a-b-c', '-', '+')", "a+b+c"},
      {"Replace('abc', '', 'x')", "abc"},
      {"Text({Costs.Cost}, 'money')", "$100.00"},
      {"Text(Date(2026,3,1), 'date')", "3/1/2026"},
      {"Text(5)", "5"},
      {"Today", DateTime(2026, 3, 1)},
      {"Now()", DateTime(2026, 3, 1, 14, 5, 9)},
      {"Year(Today)", Whole(2026)},
      {"Month({Vehicles.Purchase Date})", Whole(5)},
      {"Day({Vehicles.Purchase Date})", Whole(31)},
      {"DateAdd('m', 1, {Vehicles.Purchase Date})", DateTime(1999, 6, 30)},
      {"DateDiff('d', Date(2026,1,1), Today)", Whole(59)},
      {"MonthName(3)", "March"},
      {"MonthName({Vehicles.Purchase Date})", "May"},
      {"MonthName(13)", Null{}},
      {"Next({Costs.Count})", Whole(40)},
      {"FirstInGroup({Vehicles.Class ID})", true},
      {"LastInGroup({@Year})", true},
      {"RowNumber", Whole(7)},
      {"'Page ' & Page & ' of ' & Pages", "Page 3 of 12"},
      {"If(Continued, ReportName & ' (continued)', '')", "Divisions (continued)"},
      {"User", "ANN"},
      {"PrintTime", DateTime(2026, 3, 1, 14, 5, 9)},
  });
}

TEST(FormulaTest, TotalsKeepTheirScopesAndPlaces) {
  const TestScope scope = FleetScope();
  const auto formula = Formula::Read(
      "Ratio(Sum({Costs.Cost}), Sum({Costs.Miles}, {Vehicles.Class ID})) & Count & PageSum({Costs.Cost}) & "
      "Percent({@Twice}, report) & Running({Costs.Count}) & Average({Costs.Miles}, page)",
      scope);
  ASSERT_EQ(formula.Totals().size(), 7U);
  const auto& totals = formula.Totals();
  EXPECT_EQ(totals[0].scope, TotalScope::Band);
  EXPECT_EQ(totals[1].scope, TotalScope::Group);
  EXPECT_EQ(totals[1].group, 0);
  EXPECT_EQ(totals[2].kind, TotalKind::Count);
  EXPECT_EQ(totals[3].scope, TotalScope::Page);
  EXPECT_EQ(totals[4].kind, TotalKind::Percent);
  EXPECT_EQ(totals[4].scope, TotalScope::Report);
  EXPECT_EQ(totals[5].kind, TotalKind::Running);
  EXPECT_EQ(totals[6].scope, TotalScope::Page);
  EXPECT_EQ(EvaluateArgument(totals[4], TestValues(scope)), Value(Money(200.001)));
  EXPECT_EQ(formula.Fields(), (std::vector<int>{7, 9, 10}));
  EXPECT_FALSE(formula.SoleTotal());
  EXPECT_EQ(Formula::Read("Sum({Costs.Cost}, {@Year})", scope).SoleTotal(), 0);

  // The totals of a named formula are those of the formula that uses it, each time anew.
  const auto twice = Formula::Read("Count() + {@Sums} + {@Sums}", scope);
  ASSERT_EQ(twice.Totals().size(), 5U);
  TestValues values(scope);
  values.totals = {Whole(1), Whole(10), Whole(100), Whole(1000), Whole(10000)};
  EXPECT_EQ(twice.Evaluate(values), Whole(11111));
  EXPECT_TRUE(Formula::Read("Pages & ''", scope).NeedsPages());
  EXPECT_FALSE(twice.NeedsPages());
}

// The examples of the page that people learn the language from.
TEST(FormulaTest, TheExamplesOfThePageAreTrue) {
  const TestScope scope = FleetScope();
  TestValues values(scope);
  values.pages = Whole(12);
  std::ifstream page(DROVEWRIGHT_PRINT_CASES "/../../../docs/reports.md");
  ASSERT_TRUE(page);
  std::string seen;
  for (std::string line; std::getline(page, line);) {
    if (line == "## The language") seen = " ";
    if (line == "### Display formats") break;
    // | `formula` | `value` | ...
    if (seen.empty() || !line.starts_with("| `")) continue;
    const auto end = line.find("` | `");
    if (end == std::string::npos) continue;
    const std::string formula = line.substr(3, end - 3);
    const std::string expected = line.substr(end + 5, line.find('`', end + 5) - end - 5);
    const Value value = Formula::Read(formula, scope).Evaluate(values);
    EXPECT_EQ(value.IsNull() ? "Null" : JoinedText(value), expected) << formula;
    seen += formula + " ";
  }
  // None is left out.
  for (const auto name : FunctionNames())
    EXPECT_NE(seen.find(" " + std::string(name) + "("), std::string::npos) << name;
}

struct Fault {
  const char* text;
  int column;
  const char* part;
};

TEST(FormulaTest, FaultsNameTheirPlace) {
  const TestScope scope = FleetScope();
  const std::vector<Fault> faults{
      {"", 1, "empty"},
      {"   ", 4, "empty"},
      {"{Vehicles.Model Year} =  ", 23, "A value is missing after \"=\""},
      {"{Vehicles.Model Year} =  AND {Vehicles.Asset ID} = 'x'", 23, "missing after \"=\""},
      {"{Vehicles.Purchase Date} >= yesterday ", 29, "\"yesterday\" has no meaning"},
      {"{Vehicles.Purchase Date} >= 13/45/1999", 26, "Cannot compare a date with a number"},
      {"{Vehicles.Purchase Date} = '1/1/1999'", 26, "Date(year, month, day)"},
      {"{Vehicles.Model Year} = 'x'", 23, "Cannot compare a number with a text"},
      {"{Vehicles.Asset ID} = O'Neil", 24, "A text begins here and does not end"},
      {"{Vehicles.Asset ID} = 'x", 23, "does not end"},
      {"{Vehicles.Asset ID = 'x'", 1, "no closing brace"},
      {"{Vehicles.Nothing} = 1", 1, "There is no field {Vehicles.Nothing}"},
      {"{Asset ID} = 'x'", 1, "has no table"},
      {"{@Nothing}", 1, "There is no formula {@Nothing}"},
      {"({Costs.Count} = 1", 19, "A \")\" is missing"},
      {"{Costs.Count} = 1)", 18, "without its \"(\""},
      {"{Costs.Count} = 1, 2", 18, "comma outside"},
      {"{Costs.Count} = 1 {Costs.Miles} = 2", 19, "operator, such as AND"},
      {"= 1", 1, "A value is missing before \"=\""},
      {"'M\xC3\xBCller' ? 2", 10, "no meaning for \"?\""},
      {"1\n+ \n 'a'", 1, "Cannot calculate"},
      {"'a' + 'b'", 5, "joined with &"},
      {"'a' * 2", 5, "Number()"},
      {"Today * 2", 7, "a date * a number"},
      {"1 - Today", 3, "a number - a date"},
      {"'a' AND True", 1, "AND needs conditions"},
      {"If('a', 1, 2)", 4, "must be a condition"},
      {"Abs()", 1, "Abs takes 1 argument, not 0"},
      {"Mid('a')", 1, "Mid takes 2 or 3 arguments, not 1"},
      {"In(1)", 1, "at least 2"},
      {"Frobnicate(1)", 1, "no function \"Frobnicate\""},
      {"Year(2026)", 6, "must be a date; this is a number"},
      {"Text(1, 'dollars')", 9, "no display format \"dollars\""},
      {"DateAdd('x', 1, Today)", 9, "not \"x\""},
      {"Date(2026, 2, 30)", 1, "no such date"},
      {"{Vehicles.Photograph} = 1", 23, "picture cannot be compared"},
      {"Sum(Sum({Costs.Cost}))", 5, "cannot stand in a total"},
      {"Sum({@Sums})", 5, "has a total itself"},
      {"Sum(Page)", 5, "cannot stand in a total"},
      {"Sum({Vehicles.Asset ID})", 5, "Sum needs numbers"},
      {"Sum({Costs.Cost}, {Vehicles.Asset ID})", 19, "no group by {Vehicles.Asset ID}"},
      {"Sum({Costs.Cost}, week)", 19, "not \"week\""},
      {"Previous({@Twice})", 10, "is a formula"},
      {"12ab", 1, "is not a number"},
      {"1.2.3", 1, "is not a number"},
      {"1E999", 1, "too large"},
  };
  for (const auto& fault : faults) {
    try {
      Formula::Read(fault.text, scope);
      ADD_FAILURE() << "no fault: " << fault.text;
    } catch (const FormulaError& error) {
      const std::string text = error.what();
      EXPECT_NE(text.find(fault.part), std::string::npos) << fault.text << " -> " << text;
      EXPECT_GE(text.size(), 9U);
      if (std::string(fault.text).find('\n') == std::string::npos)
        EXPECT_EQ(error.Where().column, fault.column) << fault.text << " -> " << text;
      else
        EXPECT_EQ(error.Where().line, 2) << fault.text;
    }
  }
  try {
    Formula::Read("1 +\n  ?", scope);
  } catch (const FormulaError& error) {
    EXPECT_EQ(FaultText("Selection", error),
              "Selection, line 2, column 3: There is no meaning for \"?\" here.");
  }
}

TEST(FormulaTest, SelectionsUseTheRowAlone) {
  const TestScope scope = FleetScope();
  for (const char* text : {"Sum({Costs.Cost}) > 1", "Previous({Costs.Cost}) > 1", "Page = 1", "Pages = 1",
                           "RowNumber < 5", "{@Sums} > 1", "FirstInGroup({Vehicles.Class ID})"})
    EXPECT_THROW(Formula::Read(text, scope, FormulaUse::PerRow), FormulaError) << text;
  EXPECT_NO_THROW(Formula::Read("{@Twice} > 1 AND Today > Date(2000,1,1)", scope, FormulaUse::PerRow));
}

TEST(FormulaTest, WrongValuesOfARowAreErrorsInWords) {
  const TestScope scope = FleetScope();
  const TestValues values(scope);
  for (const char* text :
       {"{Costs.Anything} + 1", "{Costs.Anything} > 1", "Sum({Costs.Cost}) = 0 OR {Costs.Anything}",
        "1E300 * {Costs.Miles} * 1E300", "{Costs.Cost} * 1E18", "Today + 1E9", "Year({Costs.Anything})"}) {
    const auto formula = Formula::Read(text, scope);
    TestValues own(scope);
    own.totals = {Whole(1)};
    EXPECT_THROW(formula.Evaluate(own), PrintError) << text;
  }
}

TEST(FormulaTest, LongTextsAndDeepBracketsAreRefusedInWords) {
  const TestScope scope = FleetScope();
  const TestValues values(scope);
  const auto nested = [](int depth) {
    return std::string(static_cast<std::size_t>(depth), '(') + "1=1" +
           std::string(static_cast<std::size_t>(depth), ')');
  };
  EXPECT_TRUE(Formula::Read(nested(200), scope).Holds(values));
  EXPECT_THROW(Formula::Read(nested(1900), scope), FormulaError);
  for (const char* unit : {"NOT ", "-", "(", "If(", "{@Twice}+", "1&", "Abs("}) {
    std::string text;
    while (text.size() < 90'000) text += unit;
    EXPECT_THROW(Formula::Read(text, scope), FormulaError) << unit;
  }
  std::string sum = "1";
  while (sum.size() < 90'000) sum += "+{Costs.Count}";
  EXPECT_THROW(Formula::Read(sum, scope), FormulaError);
  // Long chains of conditions and texts are no nesting.
  std::string chain = "{Costs.Count} = 0";
  while (chain.size() < 90'000) chain += " OR {Costs.Count} = 40";
  EXPECT_TRUE(Formula::Read(chain, scope).Holds(values));
  const std::string title(4'000, '%');
  EXPECT_EQ(Formula::Read("\"" + title + "\"", scope).Evaluate(values), Value(title));
  EXPECT_THROW(Formula::Read(std::string(100'001, ' '), scope), FormulaError);
}

TEST(FormulaTest, FormulasThatDoubleEachOtherEnd) {
  TestScope scope = FleetScope();
  scope.Define("D0", "{Costs.Count} + 1");
  bool refused = false;
  for (int i = 1; i < 40 && !refused; ++i) {
    const std::string before = "{@D" + std::to_string(i - 1) + "}";
    try {
      scope.Define("D" + std::to_string(i), before + " + " + before);
    } catch (const FormulaError&) {
      refused = true;
    }
  }
  EXPECT_TRUE(refused);
}

TEST(FormatValueTest, EveryFormat) {
  const auto shown = [](const Value& value, const char* format) { return FormatValue(value, format); };
  EXPECT_EQ(shown(Money(1234.5), "money"), "$1,234.50");
  EXPECT_EQ(shown(Money(-1234567.005), "money"), "($1,234,567.01)");
  EXPECT_EQ(shown(Money(0), "money"), "");
  EXPECT_EQ(shown(Money(0.004), "money"), "");
  EXPECT_EQ(shown(1.005, "money"), "$1.01");
  EXPECT_EQ(shown(Money(0.3141), "money4"), "$0.3141");
  EXPECT_EQ(shown(Currency::FromUnits(INT64_MIN), "money4"), "($922,337,203,685,477.5808)");
  EXPECT_EQ(shown(9500.1F, "number1"), "9,500.1");
  EXPECT_EQ(shown(-0.04F, "number1"), "");
  EXPECT_EQ(shown(Whole(-1234567), "number0"), "-1,234,567");
  EXPECT_EQ(shown(2.5, "number0"), "3");
  EXPECT_EQ(shown(Whole(0), "plain0"), "0");
  EXPECT_EQ(shown(Whole(2026), "plain0"), "2026");
  EXPECT_EQ(shown(-0.04, "plain1"), "0.0");
  EXPECT_EQ(shown(0.125, "percent1"), "12.5%");
  EXPECT_EQ(shown(DateTime(2026, 3, 1, 14, 5, 9), "date"), "3/1/2026");
  EXPECT_EQ(shown(DateTime(2026, 3, 1, 14, 5, 9), "datetime"), "3/1/2026 2:05:09 PM");
  EXPECT_EQ(shown(true, "yesno"), "Yes");
  EXPECT_EQ(shown(Money(2.5), ""), "2.5");
  for (const char* format : {"", "money", "number2", "plain0", "date", "datetime", "percent1", "yesno"}) {
    EXPECT_EQ(shown(Null{}, format), "");
    EXPECT_EQ(shown("abc", format), "abc");
    EXPECT_FALSE(shown(1e300, format).empty());
  }
  EXPECT_THROW(FormatValue(Whole(1), "dollars"), PrintError);
}

TEST(ValueRulesTest, SortOrderIsAnOrder) {
  std::vector<Value> values{Null{},
                            true,
                            false,
                            Whole(-3),
                            std::int16_t{3},
                            0.5,
                            1e300,
                            -1e300,
                            2.5F,
                            Money(2.5),
                            Money(-7),
                            DateTime(2026, 1, 1),
                            DateTime(),
                            "a",
                            "B",
                            "b",
                            "",
                            "\xC3\xBC",
                            "12",
                            rt::Binary{1, 2},
                            rt::Binary{}};
  for (const auto& a : values) {
    EXPECT_EQ(SortOrder(a, a), 0);
    for (const auto& b : values) {
      EXPECT_EQ(SortOrder(a, b), -SortOrder(b, a)) << Show(a) << " " << Show(b);
      for (const auto& c : values) {
        if (SortOrder(a, b) <= 0 && SortOrder(b, c) <= 0) {
          EXPECT_LE(SortOrder(a, c), 0) << Show(a) << " " << Show(b) << " " << Show(c);
        }
      }
    }
  }
  EXPECT_TRUE(SameKey("Trk", "TRK"));
  EXPECT_TRUE(SameKey(Null{}, Null{}));
  EXPECT_FALSE(SameKey(Null{}, ""));
}

// Texts made of pieces of the language, mutated: each is read to a formula or refused with a place in it.
TEST(FormulaFuzzTest, AnyTextIsReadOrRefused) {
  const TestScope scope = FleetScope();
  std::vector<std::string> pieces{"{Vehicles.Asset ID}",
                                  "{Costs.Cost}",
                                  "{@Sums}",
                                  "{@Twice}",
                                  "{",
                                  "}",
                                  "'",
                                  "\"",
                                  "'a'",
                                  "\"b\"",
                                  "(",
                                  ")",
                                  ",",
                                  "+",
                                  "-",
                                  "*",
                                  "/",
                                  "&",
                                  "=",
                                  "<>",
                                  "<=",
                                  ">",
                                  " AND ",
                                  " or ",
                                  "NOT ",
                                  "1",
                                  "0.5",
                                  "1E9",
                                  "report",
                                  "page",
                                  "Null",
                                  "Page",
                                  "Sum(",
                                  "Count(",
                                  "Percent(",
                                  "Previous(",
                                  "FirstInGroup(",
                                  "\n",
                                  "\xC3\xBC",
                                  "\xFF",
                                  "@",
                                  "[",
                                  "%",
                                  std::string(1, '\0'),
                                  "Pages",
                                  "Today",
                                  "True"};
  for (const auto name : FunctionNames()) pieces.push_back(std::string(name) + "(");
  std::mt19937 random(20261122);
  const auto below = [&](std::size_t most) {
    return std::uniform_int_distribution<std::size_t>(0, most - 1)(random);
  };
  TestValues values(scope);
  values.totals.assign(10'000, Value(Money(5)));
  int formulas = 0;
  for (int round = 0; round < 30'000; ++round) {
    std::string text;
    if (round % 3 == 0) {
      text = "If({Vehicles.Class ID} = 'TRK' AND ({Vehicles.Purchase Date} >= Date(1999,1,1)), {@Sums}, 0)";
      for (std::size_t i = below(4); i > 0; --i) text[below(text.size())] = static_cast<char>(below(256));
    } else {
      for (std::size_t i = below(12); i > 0; --i) text += pieces[below(pieces.size())];
    }
    try {
      const auto formula = Formula::Read(text, scope);
      ++formulas;
      try {
        formula.Evaluate(values);
        formula.Holds(values);
      } catch (const PrintError& error) {
        EXPECT_GE(std::string(error.what()).size(), 9U) << text;
      }
    } catch (const FormulaError& error) {
      EXPECT_GE(std::string(error.what()).size(), 9U) << text;
      EXPECT_GE(error.Where().column, 1) << text;
      EXPECT_LE(error.Where().column, static_cast<int>(text.size()) + 1) << text;
    }
  }
  EXPECT_GT(formulas, 1'000);
}

}  // namespace
}  // namespace print::test
