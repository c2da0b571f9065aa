// Second copies of a test program, with windows of their own.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "support/Program.h"

namespace test {

/// What a copy of the test program does instead of the tests when it is started in this role. Make one at
/// namespace scope.
class Role {
 public:
  Role(const char* name, std::function<void()> body) { All()[name] = std::move(body); }
  /// Starts a copy of this program in a role.
  static std::unique_ptr<Program> Start(const std::string& name);
  /// The exit code if this process was started in a role, else -1.
  static int Run();

 private:
  static std::map<std::string, std::function<void()>>& All() {
    static std::map<std::string, std::function<void()>> all;
    return all;
  }
};

}  // namespace test
