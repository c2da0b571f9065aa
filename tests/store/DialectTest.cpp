#include "platform/store/Dialect.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "platform/runtime/Clock.h"
#include "platform/store/StoreError.h"
#include "platform/store/sqlite/SqliteSpelling.h"
#include "support/Scenarios.h"

namespace {

using store::ColumnType;
using store::Normalize;
using store::SqliteWords;
using store::StoreError;
using store::Translation;

std::string ScenarioPath() { return DROVEWRIGHT_SCENARIOS "/dialect.scenarios"; }

std::string Joined(const std::vector<std::string>& parts, const char* between) {
  std::string result;
  for (std::size_t i = 0; i < parts.size(); ++i) result += (i ? between : "") + parts[i];
  return result;
}

std::string Shown(const rt::Value& value) {
  switch (value.Type()) {
    case rt::ValueType::Text:
      return "t " + value.AsText();
    case rt::ValueType::Long:
      return "l " + value.AsText();
    case rt::ValueType::Double:
      return "f " + value.AsText();
    case rt::ValueType::Date:
      return "d " + value.AsDate().ToIso();
    default:
      return "a value that no literal has";
  }
}

const char* NameOf(ColumnType type) {
  static constexpr const char* kNames[] = {"Counter",  "Boolean",  "Short", "Long", "Single",    "Double",
                                           "Currency", "DateTime", "Text",  "Memo", "LongBinary"};
  return kNames[static_cast<std::size_t>(type)];
}

std::string Tables(const Translation& t) {
  std::vector<std::string> names;
  for (const auto& table : t.tables) names.push_back(table.alias + (table.optional ? "?" : ""));
  return Joined(names, ", ");
}

std::string Columns(const Translation& t) {
  std::vector<std::string> names;
  for (const auto& column : t.columns) names.push_back(column.name);
  return Joined(names, ", ");
}

std::string Types(const Translation& t) {
  std::vector<std::string> types;
  for (const auto& column : t.columns) types.emplace_back(NameOf(column.type));
  return Joined(types, ", ");
}

std::string Definition(const store::ColumnInfo& column) {
  return column.name + " " + store::DeclaredType(column) + (column.required ? " required" : "");
}

std::string Definitions(const Translation& t) {
  if (t.newColumns.empty()) return Definition(t.column);
  std::vector<std::string> columns;
  for (const auto& column : t.newColumns) columns.push_back(Definition(column));
  return Joined(columns, ", ");
}

std::string Index(const Translation& t) {
  const auto& index = t.index;
  const std::string columns = Joined(index.columns, ", ");
  return (index.primary  ? "primary "
          : index.unique ? "unique "
                         : "") +
         index.name + ":" + (columns.empty() ? "" : " " + columns);
}

// If there are several parts of a kind, any one of them may match.
std::vector<std::string> Parts(const Translation& t, const std::string& which) {
  std::vector<std::string> parts;
  if (which == "from") return {t.from};
  if (which == "where") return {t.where};
  if (which == "groupBy") return {t.groupBy};
  if (which == "having") return {t.having};
  if (which == "orderBy") return {t.orderBy};
  if (which == "select") return {t.insertSelect};
  if (which == "value") return t.insertValues;
  if (which == "expression")
    for (const auto& column : t.columns) parts.push_back(column.expression);
  if (which == "set")
    for (const auto& [column, value] : t.assignments) parts.push_back(column + ": " + value);
  return parts;
}

class Runner {
 public:
  explicit Runner(const test::ScenarioFile& file) : file_(file), database_(file) {}

  void Run(const test::Scenario& scenario) {
    Translation translation;
    store::Normalized statement;
    int number = 0;
    std::string words;
    try {
      statement = Normalize(scenario.sql);
      translation = Translate(statement, file_.schema, SqliteWords());
    } catch (const StoreError& error) {
      number = error.Number();
      words = error.what();
    }
    EXPECT_EQ(number, scenario.refusal) << words;
    if (number != 0 || scenario.refusal != 0) return;
    ASSERT_FALSE(scenario.expectations.empty()) << "nothing is expected";
    std::vector<std::string> values;
    for (const auto& value : statement.parameters) values.push_back(Shown(value));
    for (const auto& [keyword, expected] : scenario.expectations) {
      if (keyword == "tables")
        EXPECT_EQ(Tables(translation), expected);
      else if (keyword == "columns")
        CheckColumns(translation, expected);
      else if (keyword == "types")
        EXPECT_EQ(Types(translation), expected);
      else if (keyword == "values")
        EXPECT_EQ(Joined(values, ", "), expected);
      else if (keyword == "column")
        EXPECT_EQ(Definitions(translation), expected);
      else if (keyword == "index")
        EXPECT_EQ(Index(translation), expected);
      else if (keyword == "part")
        CheckPart(translation, expected);
      else if (keyword != "show" && keyword != "rows" && keyword != "count" && keyword != "after")
        FAIL() << keyword;
    }
    CheckRows(scenario, translation, statement);
  }

 private:
  static std::string Find(const test::Scenario& scenario, const std::string& keyword) {
    for (const auto& [found, rest] : scenario.expectations)
      if (found == keyword) return rest;
    return {};
  }

  static void CheckColumns(const Translation& translation, const std::string& expected) {
    if (expected.find_first_not_of("0123456789") == std::string::npos) {
      EXPECT_EQ(translation.columns.size(), std::stoul(expected));
    } else {
      EXPECT_EQ(Columns(translation), expected);
    }
  }

  static void CheckPart(const Translation& translation, const std::string& expected) {
    const std::size_t blank = expected.find(' ');
    const auto parts = Parts(translation, expected.substr(0, blank));
    EXPECT_NE(std::find(parts.begin(), parts.end(), expected.substr(blank + 1)), parts.end())
        << expected << "\nfound: " << Joined(parts, "\n       ");
  }

  // Runs the statement, and rolls back what it writes.
  void CheckRows(const test::Scenario& scenario, const Translation& translation,
                 const store::Normalized& statement) {
    const std::string sql = test::WholeStatement(translation);
    if (sql.empty()) return;
    database_.Run("SAVEPOINT scenario");
    auto found = database_.Run(sql, statement.parameters);
    const std::string after = Find(scenario, "after");
    if (!after.empty()) found = database_.Run(after);
    for (std::size_t i = 0; i < translation.columns.size(); ++i) found.names[i] = translation.columns[i].name;
    const std::string count = Find(scenario, "count");
    if (count.empty()) {
      EXPECT_EQ(ShownRows(found, Find(scenario, "show")), Find(scenario, "rows")) << sql;
    } else {
      EXPECT_EQ(found.rows.size(), std::stoul(count)) << sql;
    }
    database_.Run("ROLLBACK TO scenario");
    database_.Run("RELEASE scenario");
  }

  static std::string ShownRows(const test::ScenarioDatabase::Rows& found, const std::string& show) {
    std::vector<std::string> rows;
    for (const auto& row : found.rows) {
      std::vector<std::string> cells;
      for (std::size_t i = 0; i < row.size(); ++i)
        if (show.empty()) cells.push_back(row[i]);
      for (std::size_t from = 0; from < show.size();) {
        const std::size_t end = std::min(show.find(", ", from), show.size());
        const auto at = std::find(found.names.begin(), found.names.end(), show.substr(from, end - from));
        cells.push_back(at == found.names.end() ? "no such column"
                                                : row[static_cast<std::size_t>(at - found.names.begin())]);
        from = end + 2;
      }
      rows.push_back(Joined(cells, "|"));
    }
    return Joined(rows, " ; ");
  }

  const test::ScenarioFile& file_;
  test::ScenarioDatabase database_;
};

TEST(Dialect, Scenarios) {
  const rt::FixedClock clock(rt::DateTime(2026, 3, 1, 14, 5, 9));
  const auto file = test::ReadScenarios(ScenarioPath());
  ASSERT_GT(file.scenarios.size(), 200u);
  Runner runner(file);
  for (const auto& scenario : file.scenarios) {
    SCOPED_TRACE(scenario.place + ": " + scenario.sql);
    try {
      runner.Run(scenario);
    } catch (const std::runtime_error& error) {
      FAIL() << error.what();
    }
  }
}

TEST(Dialect, KeysSeparateShapesAndNotValues) {
  const auto key = [](const char* sql) { return Normalize(sql).key; };
  EXPECT_EQ(key("SELECT * FROM t WHERE a = 1 AND b = 'x'"),
            key(" SELECT  * FROM\r\nt WHERE a = 22 AND b = 'it''s' "));
  EXPECT_EQ(key("a = #1/1/2026#"), key("a = #12/31/1999#"));
  // The translation may depend on a literal's type, on names and on the number after TOP.
  EXPECT_NE(key("a = 1"), key("a = 1.5"));
  EXPECT_NE(key("a = 1"), key("a = '1'"));
  EXPECT_NE(key("a = 'x'"), key("A = 'x'"));
  EXPECT_NE(key("[Table Name] = 1"), key("[Table Name ] = 1"));
  EXPECT_NE(key("SELECT TOP 1 * FROM t"), key("SELECT TOP 2 * FROM t"));
  EXPECT_NE(key("ALTER TABLE t ADD c TEXT(5)"), key("ALTER TABLE t ADD c TEXT(6)"));
  // A character that looks like the mark of a removed literal is not allowed in a statement.
  EXPECT_THROW(key("a = ?l"), StoreError);

  const auto limits = Normalize("2147483647 2147483648 0.5 7.");
  ASSERT_EQ(limits.parameters.size(), 4u);
  EXPECT_EQ(limits.parameters[0], rt::Value(std::int32_t{2147483647}));
  EXPECT_EQ(limits.parameters[1], rt::Value(2147483648.0));
  EXPECT_EQ(limits.parameters[2], rt::Value(0.5));
  EXPECT_EQ(limits.parameters[3], rt::Value(7.0));
}

TEST(Dialect, RefusesWhatIsNestedTooDeeply) {
  const auto file = test::ReadScenarios(ScenarioPath());
  test::ScenarioDatabase database(file);
  const auto repeated = [](const std::string& text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i) result += text;
    return result;
  };
  const std::string select = "SELECT ID FROM Vehicles WHERE ";
  // For each shape at every depth, the dialect either refuses with 3075 or SQLite accepts the statement.
  const std::vector<std::array<std::string, 3>> shapes = {
      {"(", "ID = 1", ")"},
      {"NOT ", "ID = 1", ""},
      {"ID = 1 OR (ID = 2 AND NOT (", "ID = 3", "))"},
      {"ID = 1 AND ", "ID = 1", ""},
      {"- ", "ID", ""},
      {"'a' = ('b' & ", "[Purchase Price]", ")"},
      {"1 < 2 + 3 * (", "ID", ")"},
      {"", "ID", " + 1"},
      {"IIF(ID = 1, 1, ", "ID = 2", ")"},
      {"IIF(", "ID = 2", ", 1, 2)"},
      {"NZ(", "ID", ", 1)"},
      {"RIGHT('abc', ", "ID", ") = 'c'"},
      {"ID IN (1, 2, ", "3", ")"},
      {"ID BETWEEN 1 AND (", "3", ")"},
  };
  for (const auto& [open, middle, close] : shapes) {
    bool refused = false;
    for (int depth = 1; depth <= 400 && !refused; ++depth) {
      const std::string sql = select + repeated(open, depth) + middle + repeated(close, depth);
      SCOPED_TRACE(open + " x " + std::to_string(depth));
      try {
        const auto translation = Translate(Normalize(sql), file.schema, SqliteWords());
        ASSERT_EQ(database.Refusal(test::WholeStatement(translation)), "");
      } catch (const StoreError& error) {
        ASSERT_EQ(error.Number(), store::kSyntax);
        ASSERT_GT(depth, 4) << error.what();
        refused = true;
      }
    }
    EXPECT_TRUE(refused) << open;
    // Far deeper than any stack: still an error and not a crash.
    EXPECT_THROW(Translate(Normalize(select + repeated(open, 20000) + middle + repeated(close, 20000)),
                           file.schema, SqliteWords()),
                 StoreError);
  }
  // The statements that people write are well within the limits.
  std::string wide = "ID = 0";
  for (int i = 1; i < 100; ++i) wide += " OR ID = " + std::to_string(i);
  EXPECT_NO_THROW(Translate(Normalize(select + wide), file.schema, SqliteWords()));
  EXPECT_NO_THROW(Translate(Normalize(select + repeated("(", 20) + "ID = 1" + repeated(")", 20)), file.schema,
                            SqliteWords()));
}

TEST(Dialect, LikePatterns) {
  struct Case {
    const char* pattern;
    const char* text;
    bool fits;
  };
  const Case cases[] = {
      {"", "", true},
      {"", "a", false},
      {"*", "", true},
      {"abc", "ABC", true},
      {"a*c", "abbbc", true},
      {"a*c", "abcd", false},
      {"*b*d*", "abcd", true},
      {"a?c", "abc", true},
      {"a?c", "ac", false},
      {"##", "42", true},
      {"##", "4x", false},
      {"[a-c]x", "BX", true},
      {"[a-c]x", "dx", false},
      {"[!a-c]x", "dx", true},
      {"[!a-c]x", "ax", false},
      {"[*]", "*", true},
      {"[*]", "a", false},
      {"[?]#", "?7", true},
      {"[a-]", "-", true},
      {"[!]", "!", true},
      {"a[]b", "ab", true},
      {"[a", "[a", false},
      {"%", "a", false},
      {"?", "\xc3\xa4", true},
      {"\xc3\x84*", "\xc3\xa4x", true},
      {"*a", "aaaaab", false},
      {"?", "\xff", true},
      {"[", "", false},
  };
  for (const auto& one : cases)
    EXPECT_EQ(store::LikeMatch(one.pattern, one.text), one.fits) << one.pattern << " : " << one.text;
  // Patterns that would take forever if every * tried everything.
  std::string pattern;
  for (int i = 0; i < 50; ++i) pattern += "*a";
  EXPECT_FALSE(store::LikeMatch(pattern + "b", std::string(5000, 'a')));
}

TEST(Schema, DeclaredTypesAreReadBack) {
  for (int type = 0; type <= static_cast<int>(ColumnType::LongBinary); ++type) {
    store::ColumnInfo column;
    column.type = static_cast<ColumnType>(type);
    column.size = column.type == ColumnType::Text ? 20 : 0;
    // The declared type of the column, as SQLite returns it.
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(":memory:", &db), SQLITE_OK);
    const std::string sql = "CREATE TABLE t (\"c\" " + store::DeclaredType(column) + ")";
    ASSERT_EQ(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sql;
    std::string shown;
    sqlite3_exec(
        db, "SELECT type FROM pragma_table_info('t')",
        [](void* to, int, char** cells, char**) {
          *static_cast<std::string*>(to) = cells[0];
          return 0;
        },
        &shown, nullptr);
    sqlite3_close(db);
    for (const auto& text : {shown, store::DeclaredType(column)}) {
      const auto read = store::ParseDeclaredType(text);
      ASSERT_TRUE(read) << text;
      EXPECT_EQ(read->type, column.type) << text;
      EXPECT_EQ(read->size, column.size) << text;
    }
  }
  for (const char* foreign :
       {"", "TEXT()", "TEXT(0)", "TEXT(256)", "TEXT(5", "TEXT(5)x", "BLOB", "INT", "NUMERIC"})
    EXPECT_FALSE(store::ParseDeclaredType(foreign)) << foreign;
  EXPECT_EQ(store::QuoteName("a\"b"), "\"a\"\"b\"");
}

}  // namespace
