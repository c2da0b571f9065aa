// Values as cells and masked boxes show them.
#pragma once

#include <string>

#include "platform/runtime/Value.h"

namespace ui {

/// The text of a value by a display format; a Null is the empty text.
///
/// Numbers: up to three sections for positive, negative and zero, parted by ';'. In each, '0' and '#' are
/// places for digits, '.' the decimal point (shown even where no digit follows it: "##.####" makes "2." of
/// 2), ',' between places asks for thousands commas; texts in quotation marks, characters behind '\' and
/// everything else stand for themselves. The number is rounded on its decimal digits, half away from zero;
/// one that rounds to nothing is no negative. Without a section of its own a negative gets a '-' in front.
/// Texts that read as numbers are formatted likewise, other texts stay as they are.
///
/// Dates: "Short Date", "Medium Date", "General Date", or letters: M, MM, MMM, MMMM, d, dd, yy, yyyy, h, hh,
/// n, nn, s, ss, AM/PM, in either case. Flags: "Yes" and "No", or the words of a format such as "True/False".
///
/// Without a format: dates as short dates, with the time where there is one; numbers as plain texts.
std::string Format(const rt::Value& value, const std::string& format);

}  // namespace ui
