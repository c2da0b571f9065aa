// What commands print: aligned text for people, JSON and comma-separated values for programs.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "platform/runtime/Value.h"

namespace dw {

/// A result with named columns.
struct ResultTable {
  std::vector<std::string> columns;
  std::vector<std::vector<rt::Value>> rows;

  /// Columns as wide as needed, numbers aligned to the right, headings of several words in several lines.
  void WriteText(std::ostream& out) const;
  /// An array of objects.
  void WriteJson(std::ostream& out) const;
};

/// One object, with the columns as its names.
void WriteJsonObject(std::ostream& out, const std::vector<std::string>& columns,
                     const std::vector<rt::Value>& values);
/// A value in JSON: Null is null, amounts and numbers are numbers, dates are texts as DateText writes them,
/// binary data is hexadecimal. Bytes that are not UTF-8 become U+FFFD.
std::string JsonValue(const rt::Value& value);
/// A value as a field of comma-separated values, quoted if necessary; a Null is empty, an empty text is "".
std::string CsvField(const rt::Value& value);
/// "2026-03-01", followed by the time if there is one: "2026-03-01 14:05:09".
std::string DateText(const rt::DateTime& date);

}  // namespace dw
