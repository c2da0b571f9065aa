// Errors of the runtime, with their usual numbers in the field.
#pragma once

#include <stdexcept>
#include <string>

namespace rt {

/// 5 invalid procedure call, 6 overflow, 11 division by zero, 13 type mismatch, 94 invalid use of Null.
class RuntimeError : public std::runtime_error {
 public:
  explicit RuntimeError(int number);
  RuntimeError(int number, const std::string& text) : std::runtime_error(text), number_(number) {}
  int Number() const { return number_; }

 private:
  int number_;
};

}  // namespace rt
