#include "support/Scenarios.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "platform/runtime/Text.h"
#include "platform/store/sqlite/Functions.h"

namespace test {
namespace {

std::string LineEnds(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool escape = text[i] == '\\' && i + 1 < text.size() && (text[i + 1] == 'r' || text[i + 1] == 'n');
    result += !escape ? text[i] : text[++i] == 'r' ? '\r' : '\n';
  }
  return result;
}

// "Vehicles = ID INTEGER; Asset ID TEXT(20); …": a name may have blanks; the type is the rest that can be
// parsed as one.
store::TableInfo ReadTable(const std::string& line, int number) {
  store::TableInfo table;
  table.number = number;
  const std::size_t equals = line.find(" = ");
  table.name = line.substr(0, equals);
  std::istringstream columns(line.substr(equals + 3));
  for (std::string one; std::getline(columns, one, ';');) {
    one = rt::Trim(one);
    for (std::size_t blank = one.find(' '); blank != std::string::npos; blank = one.find(' ', blank + 1)) {
      auto column = store::ParseDeclaredType(one.substr(blank + 1));
      if (!column) continue;
      column->name = one.substr(0, blank);
      table.columns.push_back(*column);
      break;
    }
    if (table.columns.empty() || !one.starts_with(table.columns.back().name))
      throw std::runtime_error("No column definition: " + one);
  }
  return table;
}

void Bind(sqlite3_stmt* statement, int at, const rt::Value& value) {
  switch (value.Type()) {
    case rt::ValueType::Long:
      sqlite3_bind_int(statement, at, value.AsLong());
      break;
    case rt::ValueType::Double:
      sqlite3_bind_double(statement, at, value.AsDouble());
      break;
    case rt::ValueType::Date:
      sqlite3_bind_text(statement, at, value.AsDate().ToIso().c_str(), -1, SQLITE_TRANSIENT);
      break;
    default: {
      const std::string text = value.AsText();
      sqlite3_bind_text64(statement, at, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
  }
}

std::string List(const std::vector<std::string>& parts) {
  std::string list;
  for (const auto& part : parts) list += (list.empty() ? "" : ", ") + part;
  return list;
}

std::string Clause(const char* word, const std::string& text) { return text.empty() ? "" : word + text; }

// Returns the first word of a line and leaves the rest in it.
std::string TakeWord(std::string& line) {
  const std::size_t blank = line.find(' ');
  const std::string word = line.substr(0, blank);
  line.erase(0, blank == std::string::npos ? blank : blank + 1);
  return word;
}

void ReadInto(ScenarioFile& file, const std::filesystem::path& path) {
  std::ifstream in(path);
  if (!in) throw std::runtime_error("No such file: " + path.string());
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    line.erase(0, line.find_first_not_of(' '));
    if (line.empty() || line[0] == '#') continue;
    const std::string place = path.filename().string() + ":" + std::to_string(number);
    const std::string keyword = TakeWord(line);
    if (keyword == "include") {
      ReadInto(file, path.parent_path() / line);
    } else if (keyword == "table") {
      file.schema.tables.push_back(ReadTable(line, static_cast<int>(file.schema.tables.size()) + 1));
    } else if (keyword == "data") {
      file.data.push_back(line);
    } else if (keyword == "refused") {
      const int refusal = std::stoi(TakeWord(line));
      file.scenarios.push_back({place, LineEnds(line), refusal, {}});
    } else if (keyword == "sql") {
      file.scenarios.push_back({place, LineEnds(line), 0, {}});
    } else {
      if (file.scenarios.empty() || file.scenarios.back().refusal != 0)
        throw std::runtime_error(place + ": an expectation without a statement");
      file.scenarios.back().expectations.emplace_back(keyword, line);
    }
  }
}

}  // namespace

ScenarioFile ReadScenarios(const std::string& path) {
  ScenarioFile file;
  ReadInto(file, path);
  return file;
}

std::string WholeStatement(const store::Translation& t) {
  switch (t.kind) {
    case store::StatementKind::Select: {
      std::vector<std::string> list;
      for (const auto& column : t.columns) list.push_back(column.expression);
      return std::string("SELECT ") + (t.distinct ? "DISTINCT " : "") + List(list) + " FROM " + t.from +
             Clause(" WHERE ", t.where) + Clause(" GROUP BY ", t.groupBy) + Clause(" HAVING ", t.having) +
             Clause(" ORDER BY ", t.orderBy) + t.limit;
    }
    case store::StatementKind::Insert: {
      std::vector<std::string> columns;
      for (const auto& column : t.insertColumns) columns.push_back(store::QuoteName(column));
      return "INSERT INTO " + store::QuoteName(t.target) + " (" + List(columns) + ") " +
             (t.insertSelect.empty() ? "VALUES (" + List(t.insertValues) + ")" : t.insertSelect);
    }
    case store::StatementKind::Update: {
      std::vector<std::string> sets;
      for (const auto& [column, value] : t.assignments)
        sets.push_back(store::QuoteName(column) + " = " + value);
      return "UPDATE " + store::QuoteName(t.target) + " SET " + List(sets) + Clause(" WHERE ", t.where);
    }
    case store::StatementKind::Delete:
      return "DELETE FROM " + store::QuoteName(t.target) + Clause(" WHERE ", t.where);
    default:
      return {};
  }
}

ScenarioDatabase::ScenarioDatabase(const ScenarioFile& file) {
  if (sqlite3_open(":memory:", &db_) != SQLITE_OK) throw std::runtime_error("No database in memory.");
  store::AddFunctions(db_, refused_);
  for (const auto& table : file.schema.tables) {
    std::vector<std::string> columns;
    for (const auto& column : table.columns)
      columns.push_back(store::QuoteName(column.name) + " " + store::DeclaredType(column));
    Run("CREATE TABLE " + store::QuoteName(table.name) + " (" + List(columns) + ")");
  }
  for (const auto& sql : file.data) Run(sql);
}

ScenarioDatabase::~ScenarioDatabase() { sqlite3_close(db_); }

ScenarioDatabase::Rows ScenarioDatabase::Run(const std::string& sql,
                                             const std::vector<rt::Value>& parameters) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(db_, sql.c_str(), static_cast<int>(sql.size()), &statement, nullptr) != SQLITE_OK)
    throw std::runtime_error(std::string(sqlite3_errmsg(db_)) + " in " + sql);
  for (int i = 1; i <= sqlite3_bind_parameter_count(statement); ++i)
    Bind(statement, i, parameters.at(static_cast<std::size_t>(i) - 1));
  Rows result;
  const int count = sqlite3_column_count(statement);
  for (int i = 0; i < count; ++i) result.names.emplace_back(sqlite3_column_name(statement, i));
  int code = sqlite3_step(statement);
  for (; code == SQLITE_ROW; code = sqlite3_step(statement)) {
    std::vector<std::string> row;
    for (int i = 0; i < count; ++i) {
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
      row.emplace_back(text ? text : "Null");
    }
    result.rows.push_back(std::move(row));
  }
  sqlite3_finalize(statement);
  if (code != SQLITE_DONE) throw std::runtime_error(std::string(sqlite3_errmsg(db_)) + " in " + sql);
  return result;
}

std::string ScenarioDatabase::Refusal(const std::string& sql) {
  sqlite3_stmt* statement = nullptr;
  const int code = sqlite3_prepare_v2(db_, sql.c_str(), static_cast<int>(sql.size()), &statement, nullptr);
  sqlite3_finalize(statement);
  return code == SQLITE_OK ? "" : sqlite3_errmsg(db_);
}

}  // namespace test
