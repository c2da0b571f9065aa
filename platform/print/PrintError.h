// The error of the report engine.
#pragma once

#include <string>

#include "platform/runtime/Error.h"

namespace print {

/// Something that a report cannot be made with. The text names the formula, field, table or file and the
/// place of the fault, and has at least nine characters.
class PrintError : public rt::Error {
 public:
  explicit PrintError(const std::string& text) : rt::Error(kNumber, text) {}

 private:
  static constexpr int kNumber = 500;
};

}  // namespace print
