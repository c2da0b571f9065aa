// Values as a selection formula writes them.
#pragma once

#include <cstdint>
#include <string>

namespace dw {

/// Column types by their ADO codes, as far as literals depend on them.
inline constexpr std::int16_t kDateType = 7;
inline constexpr std::int16_t kTextType = 202;
inline constexpr std::int16_t kMemoType = 203;

/// The formula's literal for what a person typed: a text between apostrophes, unless it already begins and
/// ends with one; a date as "Date(2026,3,1)" if it can be read as one; anything else as typed. The rule goes
/// by the column's type, not by the form of the value.
std::string FormatLiteral(const std::string& typed, std::int16_t type);

/// What a literal means, for people: without apostrophes, a date as M/d/yyyy.
std::string LiteralInWords(const std::string& literal);

}  // namespace dw
