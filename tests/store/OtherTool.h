#pragma once

#include <sqlite3.h>

#include <string>

#include "support/SecondProcess.h"

namespace test {

/// A tool that does not know side files and runs each line that it gets.
class OtherTool {
 public:
  explicit OtherTool(const std::string& path)
      : process_([path](SecondProcess::Channel& channel) {
          sqlite3* db = nullptr;
          sqlite3_open(path.c_str(), &db);
          for (;;) {
            const std::string sql = channel.Hear();
            sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr);
            channel.Say(sqlite3_errmsg(db));
          }
        }) {}
  std::string Run(const std::string& sql) {
    process_.Talk().Say(sql);
    return process_.Talk().Hear();
  }

 private:
  SecondProcess process_;
};

}  // namespace test
