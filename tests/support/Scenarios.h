#pragma once

#include <sqlite3.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/store/Dialect.h"
#include "platform/store/StoreError.h"

namespace test {

/// A statement of the dialect and what is expected of it.
struct Scenario {
  std::string place;  ///< file and line
  std::string sql;
  int refusal = 0;  ///< the error's number; 0 where it is to be understood
  std::vector<std::pair<std::string, std::string>> expectations;  ///< keyword and the rest of its line
};

/// Files of scenarios: "table" and "data" lines that make a data file, statements that are errors ("refused"
/// and a number), statements ("sql") with their expectations below them, and other files ("include"). Lines
/// that begin with # are comments. In a statement \r and \n stand for line ends.
struct ScenarioFile {
  store::Schema schema;
  std::vector<std::string> data;  ///< in the SQL of the file underneath
  std::vector<Scenario> scenarios;
};

ScenarioFile ReadScenarios(const std::string& path);

/// The whole statement in the SQL of the file underneath. Definitions, which have no such text, give an empty
/// one.
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
  /// Runs a statement with its parameters. Throws std::runtime_error with the engine's words.
  Rows Run(const std::string& sql, const std::vector<rt::Value>& parameters = {});
  /// The engine's words when it does not take the statement; empty when it does.
  std::string Refusal(const std::string& sql);

 private:
  sqlite3* db_ = nullptr;
  std::optional<store::StoreError> refused_;
};

}  // namespace test
