// Values as cells and masked boxes show them.
#pragma once

#include <string>

#include "platform/runtime/Value.h"

namespace ui {

/// The text of a value by a display format; a Null becomes the empty text.
///
/// Numbers: up to three sections for positive, negative and zero, with ';' between them. In each section, '0'
/// and '#' are places for digits and '.' is the decimal point (shown even if no digit follows it: "##.####"
/// makes "2." of 2); ',' between places asks for thousands commas; texts in quotation marks, characters after
/// '\' and everything else appear as they are. The number is rounded on its decimal digits, half away from
/// zero; a negative number that rounds to zero counts as zero. Without a section of its own, a negative
/// number gets a '-' in front. Texts that read as numbers are formatted in the same way; other texts stay as
/// they are.
///
/// Dates: "Short Date", "Medium Date", "General Date", or letters: M, MM, MMM, MMMM, d, dd, yy, yyyy, h, hh,
/// n, nn, s, ss, AM/PM, in either case. Flags: "Yes" and "No", or the words of a format such as "True/False".
///
/// Without a format: dates as short dates, with the time if there is one; numbers as plain texts.
std::string Format(const rt::Value& value, const std::string& format);

}  // namespace ui
