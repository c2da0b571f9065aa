// Numbers as text and text as numbers; letters in upper and lower case.
#pragma once

#include <optional>
#include <string>
#include <string_view>

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

/// All letters in upper and lower case, in UTF-8. Bytes that are not UTF-8 stay as they are.
std::string UpperCase(std::string_view text);
std::string LowerCase(std::string_view text);
/// The number of characters (code points) of a UTF-8 text.
std::size_t Length(std::string_view text);
/// Without blanks at both ends.
std::string Trim(std::string_view text);
/// Equal without regard to the case of the letters A to Z, as text columns compare.
bool EqualNoCase(std::string_view a, std::string_view b);

/// The text with each apostrophe doubled, for use inside a text of SQL.
std::string DoubleApostrophes(std::string_view text);
/// The text between apostrophes, as SQL writes it.
std::string Quoted(std::string_view text);

}  // namespace rt
