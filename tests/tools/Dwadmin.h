#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "platform/store/Connection.h"
#include "platform/store/Cursor.h"
#include "platform/system/Settings.h"
#include "support/Json.h"
#include "support/Program.h"
#include "support/TempDirectory.h"

/// Runs the console program on a data directory of its own.
class DwadminTest : public testing::Test {
 protected:
  DwadminTest() {
    setenv("DROVEWRIGHT_SETTINGS", directory_.Path("settings.ini").c_str(), 1);
    sys::UseSettingsFile("");
  }

  std::string Path(const std::string& name = {}) const { return directory_.Path("data/" + name); }

  std::vector<std::string> Command(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), DWADMIN_PROGRAM);
    arguments.insert(arguments.end(), {"--data", Path()});
    return arguments;
  }
  test::Outcome Run(const std::vector<std::string>& arguments, const std::string& input = {}) const {
    return test::Program(Command(arguments), input).Join();
  }
  /// The output with --json; fails the test if it is not JSON.
  test::Json RunJson(std::vector<std::string> arguments, int code = 0) const {
    arguments.emplace_back("--json");
    const test::Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.code, code) << outcome.error;
    try {
      return test::ParseJson(outcome.out);
    } catch (const std::exception& error) {
      ADD_FAILURE() << error.what() << " of\n" << outcome.out;
    }
    return {};
  }
  /// Runs a command as ADMIN at OFFICE.
  test::Outcome RunAsAdmin(std::vector<std::string> arguments) const {
    arguments.insert(arguments.end(), {"--user", "admin", "--workstation", "office"});
    return Run(arguments, "\n");
  }

  void MakeSample() const {
    const test::Outcome made = Run({"sample", "--assets", "6", "--years", "1", "--seed", "3"});
    ASSERT_EQ(made.code, 0) << made.error;
  }

  std::int64_t Execute(const std::string& sql, const std::string& file = "DW.MDB") const {
    return store::Connection::Open({.path = Path(file)})->Execute(sql);
  }
  /// The first value of a query: "Null" for a Null, "none" without a row.
  std::string Ask(const std::string& sql, const std::string& file = "DW.MDB") const {
    const auto rows = store::Cursor::OpenQuery(store::Connection::Open({.path = Path(file)}), sql,
                                               store::Locking::ReadOnly);
    if (rows->AtEnd()) return "none";
    const rt::Value value = rows->Get(0);
    return value.IsNull() ? "Null" : value.AsText();
  }
  /// The sessions on file, and those without an end or a mark.
  int Sessions() const { return std::stoi(Ask("SELECT COUNT(*) FROM [Access Log]", "DW_USERS.MDB")); }
  int OpenSessions() const {
    return std::stoi(
        Ask("SELECT COUNT(*) FROM [Access Log] WHERE [Time Out] IS NULL AND [Terminated] = FALSE",
            "DW_USERS.MDB"));
  }

  test::TempDirectory directory_;
};
