#include "platform/runtime/RuntimeError.h"

namespace rt {
namespace {

std::string TextOf(int number) {
  switch (number) {
    case 5:
      return "Invalid procedure call or argument";
    case 6:
      return "Overflow";
    case 11:
      return "Division by zero";
    case 13:
      return "Type mismatch";
    case 94:
      return "Invalid use of Null";
    default:
      return "Runtime error " + std::to_string(number);
  }
}

}  // namespace

RuntimeError::RuntimeError(int number) : RuntimeError(number, TextOf(number)) {}

}  // namespace rt
