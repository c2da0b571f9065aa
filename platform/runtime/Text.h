// Numbers as text and text as numbers; quoting. Letters.h has the case of letters and the steps of UTF-8.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/runtime/Letters.h"

namespace rt {

/// A Single as plain text: a whole number without decimals, else as many digits as it needs, at most 7:
/// "9500", "0.1", "12345.67", "1E+10".
std::string PlainText(float number);
/// A Double likewise, with at most 15 digits.
std::string PlainText(double number);

/// Whether the text reads as a number. Accepts blanks around it, a sign, "$", thousands commas, parentheses
/// for a negative number, a decimal point and an exponent. The empty text is not a number.
bool IsNumeric(std::string_view text);
/// The number that IsNumeric accepts; empty otherwise.
std::optional<double> ParseNumber(std::string_view text);
/// Whether ParseDate reads the text.
bool IsDate(std::string_view text);

/// Without blanks at both ends.
std::string Trim(std::string_view text);

/// The text between two marks, each mark inside it doubled: a name of SQL or a field of CSV with '"'.
std::string Enclosed(std::string_view text, char mark);
/// The text with each apostrophe doubled, for use inside a text of SQL.
std::string DoubleApostrophes(std::string_view text);
/// The text between apostrophes, as SQL writes it.
std::string Quoted(std::string_view text);

}  // namespace rt
