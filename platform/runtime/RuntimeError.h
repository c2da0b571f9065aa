// Errors of the runtime, with their usual numbers in the field.
#pragma once

#include <string>

#include "platform/runtime/Error.h"

namespace rt {

/// 5 invalid procedure call, 6 overflow, 11 division by zero, 13 type mismatch, 94 invalid use of Null.
class RuntimeError : public Error {
 public:
  explicit RuntimeError(int number);
  RuntimeError(int number, const std::string& text) : Error(number, text) {}
};

}  // namespace rt
