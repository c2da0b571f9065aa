// Broken statements: whatever comes in, the dialect either refuses it with an error of its own or returns a
// statement that SQLite accepts.
#include <gtest/gtest.h>

#include <array>
#include <random>

#include "platform/store/Dialect.h"
#include "platform/store/StoreError.h"
#include "platform/store/sqlite/SqliteSpelling.h"
#include "support/Scenarios.h"

namespace {

/// Makes statements from random bytes, from generated syntax and from the scenarios, and breaks most of them
/// a little.
class Maker {
 public:
  Maker(const test::ScenarioFile& file, std::uint32_t seed) : file_(file), random_(seed) {}

  std::string Next() {
    const std::size_t kind = Below(20);
    if (kind == 0) return RandomBytes();
    std::string sql = kind < 10 ? Statement() : Grown();
    for (std::size_t times = kind < 10 ? 1 + Below(3) : Below(8) / 6; times > 0; --times) Change(sql);
    return sql;
  }

 private:
  std::size_t Below(std::size_t end) {
    return std::uniform_int_distribution<std::size_t>(0, end - 1)(random_);
  }
  const std::string& Statement() { return file_.scenarios[Below(file_.scenarios.size())].sql; }

  template <std::size_t Count>
  std::string OneOf(const std::array<const char*, Count>& choices) {
    return choices[Below(Count)];
  }

  std::string RandomBytes() {
    std::string bytes(Below(60), ' ');
    for (char& byte : bytes) byte = static_cast<char>(Below(256));
    return bytes;
  }

  // Expressions by their type, so that most make sense; now and then one has the wrong type.
  enum class Kind { Number, Text, Date, Condition };

  std::string Value(Kind kind, std::size_t depth) {
    if (Below(60) == 0) kind = static_cast<Kind>(Below(4));
    if (Below(80) == 0) return "MAX(" + Value(kind, depth / 2) + ")";
    if (depth > 0 && Below(10) == 0) return Choice(kind, depth - 1);
    switch (kind) {
      case Kind::Number:
        return Number(depth);
      case Kind::Text:
        return Text(depth);
      case Kind::Date:
        return OneOf(kDates);
      default:
        return Condition(depth);
    }
  }

  std::string Choice(Kind kind, std::size_t depth) {
    const std::string first = Value(kind, depth);
    const std::string second = Value(kind, depth);
    return Below(2) ? "NZ(" + first + ", " + second + ")"
                    : "IIF(" + Value(Kind::Condition, depth) + ", " + first + ", " + second + ")";
  }

  std::string Number(std::size_t depth) {
    if (depth == 0) return OneOf(kNumbers);
    const std::string first = Value(Kind::Number, Below(depth));
    switch (Below(6)) {
      case 0:
        return first + OneOf(kSigns) + Value(Kind::Number, Below(depth));
      case 1:
        return "(" + first + OneOf(kSigns) + Value(Kind::Number, Below(depth)) + ")";
      case 2:
        return OneOf(kNumberFunctions) + first + ")";
      case 3:
        return "LEN(" + Value(Kind::Text, depth - 1) + ")";
      case 4:
        return "YEAR(" + Value(Kind::Date, 0) + ")";
      default:
        return OneOf(kNumbers) + OneOf(kSigns) + first;
    }
  }

  std::string Text(std::size_t depth) {
    if (depth == 0) return OneOf(kTexts);
    const std::string first = Value(Kind::Text, Below(depth));
    switch (Below(4)) {
      case 0:
        return OneOf(kTextFunctions) + first + ")";
      case 1:
        return OneOf(kCuts) + first + ", " + Value(Kind::Number, Below(depth)) + ")";
      case 2:
        return "(" + first + " & " + Value(Kind::Number, Below(depth)) + ")";
      default:
        return first + " & " + Value(Kind::Text, Below(depth));
    }
  }

  std::string Condition(std::size_t depth) {
    const Kind kind = static_cast<Kind>(Below(3));
    const std::size_t less = depth == 0 ? 0 : depth - 1;
    const std::string first = depth < 2 ? Value(kind, 0) : Value(kind, less);
    switch (depth == 0 ? 0 : Below(8)) {
      case 0:
      case 1:
        return first + OneOf(kComparisons) + Value(kind, less);
      case 2:
        return first + (Below(2) ? " IS NULL" : " IS NOT NULL");
      case 3:
        return first + (Below(2) ? " IN (" : " NOT IN (") + Value(kind, less) + ", " + Value(kind, 0) + ")";
      case 4:
        return first + " BETWEEN " + Value(kind, 0) + " AND " + Value(kind, less);
      case 5:
        return Value(Kind::Text, less) + " LIKE " + Value(Kind::Text, 0);
      case 6:
        return "NOT (" + Value(Kind::Condition, less) + ")";
      default:
        return "(" + Value(Kind::Condition, less) + (Below(2) ? " AND " : " OR ") +
               Value(Kind::Condition, less) + ")";
    }
  }

  std::string Grown() {
    const std::size_t depth = 1 + Below(4);
    if (Below(4) == 0)
      return "UPDATE Vehicles SET " + Assignment(depth) + (Below(2) ? " WHERE [ID] = 1" : "");
    std::string sql = "SELECT ";
    const bool grouped = Below(5) == 0;
    const std::string group = Value(Kind::Text, 1);
    if (grouped) {
      sql += group + ", SUM(" + Value(Kind::Number, depth) + "), MIN(" + Value(Kind::Date, 0) + ") AS a";
    } else {
      sql += (Below(8) ? "" : "DISTINCT ") + Value(static_cast<Kind>(Below(4)), depth) +
             " AS a, [Purchase Price]";
    }
    sql += " FROM " + OneOf(kFroms);
    if (Below(2)) sql += " WHERE " + Value(Kind::Condition, depth);
    if (grouped)
      sql += " GROUP BY " + group +
             (Below(2) ? "" : " HAVING COUNT(*) > AVG(" + Value(Kind::Number, depth) + ")");
    if (Below(3) == 0)
      sql += std::string(" ORDER BY ") + (Below(2) ? "[Purchase Price]" : "a") + (Below(2) ? " DESC" : "");
    return sql;
  }

  std::string Assignment(std::size_t depth) {
    switch (Below(4)) {
      case 0:
        return OneOf(kNumberColumns) + " = " + Value(Kind::Number, depth);
      case 1:
        return "Notes = " + Value(Kind::Text, depth) + ", [Asset ID] = [Model Year]";
      case 2:
        return "No_Longer_In_Service = " + Value(Kind::Condition, depth);
      default:
        return "[Purchase Date] = " + Value(Kind::Date, depth);
    }
  }

  static constexpr std::array kNumbers = {
      "1", "2.5", "-3", "NULL", "[Purchase Price]", "Vehicles.ID", "[Vehicles.Fuel Type]", "TRUE"};
  static constexpr std::array kTexts = {
      "'x'", "''", "\"y\"", "NULL", "[Asset ID]", "[Vehicles.Description]", "[Model Year ]"};
  static constexpr std::array kDates = {"#1/1/2026#", "[Purchase Date]", "NOW()", "NULL"};
  static constexpr std::array kSigns = {" + ", " - ", " * ", " / "};
  static constexpr std::array kComparisons = {" = ", " <> ", " < ", " >= "};
  static constexpr std::array kNumberFunctions = {"ABS(", "INT(", "-(", "NZ(", "ISNULL("};
  static constexpr std::array kTextFunctions = {"UCASE(", "LCASE(", "TRIM(", "NZ("};
  static constexpr std::array kCuts = {"LEFT(", "RIGHT(", "MID("};
  static constexpr std::array kNumberColumns = {"[Purchase Price]", "[Fuel Type]", "[Life Fuel Cost]",
                                                "[Vehicles.Notes]"};
  static constexpr std::array kFroms = {"Vehicles", "Vehicles LEFT JOIN Divisions d ON Vehicles.ID = d.ID",
                                        "Divisions d, Vehicles",
                                        "Divisions d RIGHT JOIN (Vehicles INNER JOIN Maintenance_Performed m "
                                        "ON m.ID = Vehicles.ID) ON Vehicles.ID = d.ID"};

  void Change(std::string& sql) {
    static constexpr std::array kWords = {" AND ",
                                          " OR ",
                                          " NOT ",
                                          "(",
                                          ")",
                                          "((",
                                          "))",
                                          ",",
                                          ".",
                                          "*",
                                          " + ",
                                          " - ",
                                          "--",
                                          " / ",
                                          " & ",
                                          " = ",
                                          " <> ",
                                          "<",
                                          "#1/1/2026#",
                                          "'x'",
                                          "\"y\"",
                                          "5",
                                          "2.5",
                                          " NULL",
                                          " TRUE",
                                          " IS ",
                                          " IN (",
                                          " LIKE ",
                                          " BETWEEN ",
                                          "[ID]",
                                          "[",
                                          "]",
                                          "'",
                                          "#",
                                          "[Purchase Price]",
                                          "[Purchase Date]",
                                          "Description",
                                          "COUNT(",
                                          "SUM(",
                                          "MAX(",
                                          "LEFT(",
                                          "IIF(",
                                          "NZ(",
                                          "RIGHT(",
                                          "DISTINCT ",
                                          "TOP 3 ",
                                          " AS a",
                                          " GROUP BY ",
                                          " HAVING ",
                                          " ORDER BY ",
                                          " WHERE ",
                                          " FROM ",
                                          "SELECT ",
                                          " LEFT JOIN Divisions ON ",
                                          " RIGHT JOIN [Fuel Types] ON ",
                                          "Vehicles",
                                          ", Divisions",
                                          ";",
                                          "\r\n",
                                          "?t"};
    const std::size_t at = Below(sql.size() + 1);
    switch (Below(6)) {
      case 0:
        sql.insert(at, OneOf(kWords));
        break;
      case 1:
        sql.erase(at, 1 + Below(6));
        break;
      case 2:
        if (at < sql.size()) sql[at] = static_cast<char>(Below(256));
        break;
      case 3: {
        const std::string other = Statement();
        const std::size_t from = Below(other.size() + 1);
        sql.insert(at, other, from, Below(30));
        break;
      }
      case 4:
        sql.insert(at, sql.substr(at, Below(20)));
        break;
      default:
        ReplaceWord(sql, at, OneOf(kWords));
    }
  }

  // Replaces the text between two blanks, which leaves more statements whole than changes of single bytes do.
  void ReplaceWord(std::string& sql, std::size_t at, const std::string& word) {
    const std::size_t begin = at == 0 ? 0 : sql.rfind(' ', at - 1) + 1;
    const std::size_t end = std::min(sql.find(' ', begin), sql.size());
    sql.replace(begin, end - begin, word);
  }

  const test::ScenarioFile& file_;
  std::mt19937 random_;
};

TEST(DialectFuzz, RefusesOrTranslatesToWhatTheEngineTakes) {
  const auto file = test::ReadScenarios(DROVEWRIGHT_SCENARIOS "/dialect.scenarios");
  test::ScenarioDatabase database(file);
  constexpr int kCases = 200000;
  int translated = 0;
  int refused = 0;
  Maker maker(file, 20260301);
  for (int i = 0; i < kCases; ++i) {
    const std::string sql = maker.Next();
    try {
      const auto statement = store::Normalize(sql);
      const auto translation = store::Translate(statement, file.schema, store::SqliteWords());
      ++translated;
      const std::string whole = test::WholeStatement(translation);
      ASSERT_EQ(whole.empty() ? "" : database.Refusal(whole), "") << "case " << i << ": " << sql << "\n"
                                                                  << whole;
    } catch (const store::StoreError& error) {
      ++refused;
      const int number = error.Number();
      ASSERT_TRUE(number == store::kSyntax || number == store::kTooFewParameters ||
                  number == store::kTableNotFound || number == store::kAmbiguousColumn)
          << number << " for case " << i << ": " << sql;
    } catch (const std::exception& error) {
      FAIL() << error.what() << " for case " << i << ": " << sql;
    }
  }
  // Unless both results were frequent, the cases prove little.
  EXPECT_GT(translated, kCases / 5);
  EXPECT_GT(refused, kCases / 5);
}

}  // namespace
