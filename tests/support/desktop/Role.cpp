#include "support/desktop/Role.h"

#include <cstdlib>
#include <iostream>

namespace test {
namespace {

constexpr const char* kRole = "DROVEWRIGHT_TEST_ROLE";

}  // namespace

std::unique_ptr<Program> Role::Start(const std::string& name) {
  setenv(kRole, name.c_str(), 1);
  auto program = std::make_unique<Program>(std::vector<std::string>{"/proc/self/exe"});
  unsetenv(kRole);
  return program;
}

int Role::Run() {
  const char* name = std::getenv(kRole);
  if (!name) return -1;
  const auto role = All().find(name);
  if (role == All().end()) {
    std::cerr << "no such role: " << name << '\n';
    return 2;
  }
  role->second();
  return 0;
}

}  // namespace test
