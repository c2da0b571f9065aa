#pragma once

#include <sqlite3.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/store/Dialect.h"
#include "platform/store/StoreError.h"

namespace test {

/// A statement of the dialect and its expected results.
struct Scenario {
  std::string place;  ///< file and line
  std::string sql;
  int refusal = 0;  ///< the number of the expected error; 0 if the dialect must accept the statement
  std::vector<std::pair<std::string, std::string>> expectations;  ///< keyword and the rest of its line
};

/// Files of scenarios: "table" and "data" lines that make a data file, statements that are errors ("refused"
/// and a number), statements ("sql") with their expectations below them, and other files ("include"). Lines
/// that begin with # are comments. In a statement, \r and \n mean line ends.
struct ScenarioFile {
  store::Schema schema;
  std::vector<std::string> data;  ///< in the SQL of SQLite
  std::vector<Scenario> scenarios;
};

ScenarioFile ReadScenarios(const std::string& path);

/// The whole statement in the SQL of SQLite. Empty for definitions, which have no such text.
std::string WholeStatement(const store::Translation& translation);

/// The tables of a scenario file in a database in memory, with the functions that translated statements use.
class ScenarioDatabase {
 public:
  explicit ScenarioDatabase(const ScenarioFile& file);
  ~ScenarioDatabase();
  ScenarioDatabase(const ScenarioDatabase&) = delete;
  ScenarioDatabase& operator=(const ScenarioDatabase&) = delete;

  struct Rows {
    std::vector<std::string> names;
    std::vector<std::vector<std::string>> rows;  ///< a Null as "Null"
  };
  /// Runs a statement with its parameters. Throws std::runtime_error with the message of SQLite.
  Rows Run(const std::string& sql, const std::vector<rt::Value>& parameters = {});
  /// The message of SQLite if it does not accept the statement, else empty.
  std::string Refusal(const std::string& sql);

 private:
  sqlite3* db_ = nullptr;
  std::optional<store::StoreError> refused_;
};

}  // namespace test
