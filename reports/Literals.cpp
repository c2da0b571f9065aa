#include "reports/Literals.h"

#include <cstdio>

#include "data/GenericTools.h"
#include "platform/runtime/DateTime.h"
#include "platform/runtime/Text.h"
#include "reports/DateRange.h"

namespace dw {

std::string FormatLiteral(const std::string& typed, std::int16_t type) {
  if (type == kTextType || type == kMemoType) {
    if (typed.starts_with('\'') && typed.ends_with('\'')) return typed;
    return "'" + QuoteSQL(typed) + "'";
  }
  if (type == kDateType)
    if (const auto date = rt::ParseDate(typed)) return FormulaDate(*date);
  return typed;
}

std::string LiteralInWords(const std::string& literal) {
  if (literal.size() >= 2 && literal.starts_with('\'') && literal.ends_with('\'')) {
    std::string words;
    for (std::size_t i = 1; i + 1 < literal.size(); ++i) {
      words += literal[i];
      if (literal[i] == '\'' && literal[i + 1] == '\'' && i + 2 < literal.size()) ++i;
    }
    return words.empty() ? "empty" : words;
  }
  int year = 0, month = 0, day = 0, length = 0;
  if (std::sscanf(literal.c_str(), "Date(%d,%d,%d)%n", &year, &month, &day, &length) == 3 &&
      static_cast<std::size_t>(length) == literal.size())
    return std::to_string(month) + "/" + std::to_string(day) + "/" + std::to_string(year);
  return literal;
}

}  // namespace dw
