#include "platform/controls/Format.h"

#include <array>
#include <cctype>
#include <string_view>
#include <vector>

#include "platform/runtime/NumberScan.h"
#include "platform/runtime/Text.h"

namespace ui {
namespace {

// --- numbers

/// One section of a number's format.
struct Section {
  std::string before;  // the text before the first digit
  std::string after;
  int leastWhole = 0;  // the number of digits that are shown even if they are zeros
  int leastDecimals = 0;
  int mostDecimals = 0;
  bool point = false;
  bool thousands = false;
  bool empty = true;
};

bool IsPlace(char c) { return c == '0' || c == '#'; }

// Reads a literal at `at` (a quoted text, an escaped character or the character itself) and moves `at` past
// it.
std::string TakeLiteral(std::string_view format, std::size_t& at) {
  const char c = format[at++];
  if (c == '\\' && at < format.size()) return std::string(1, format[at++]);
  if (c != '"') return std::string(1, c);
  const auto end = std::min(format.find('"', at), format.size());
  std::string text(format.substr(at, end - at));
  at = std::min(end + 1, format.size());
  return text;
}

std::vector<Section> ReadSections(std::string_view format) {
  std::vector<Section> sections(1);
  bool places = false;
  bool zeroSeen = false;
  for (std::size_t at = 0; at < format.size();) {
    Section& section = sections.back();
    const char c = format[at];
    if (c == ';') {
      sections.emplace_back();
      places = zeroSeen = false;
      ++at;
      continue;
    }
    section.empty = false;
    if (IsPlace(c)) {
      ++at;
      places = true;
      if (section.point) {
        ++section.mostDecimals;
        if (c == '0') section.leastDecimals = section.mostDecimals;
      } else {
        zeroSeen = zeroSeen || c == '0';
        if (zeroSeen) ++section.leastWhole;
      }
    } else if (c == '.' && !section.point) {
      ++at;
      places = section.point = true;
    } else if (c == ',' && places) {
      ++at;
      section.thousands = true;
    } else {
      (places ? section.after : section.before) += TakeLiteral(format, at);
    }
  }
  return sections;
}

/// The digits of a number's whole and decimal part.
struct Rounded {
  std::string whole;  // without leading zeros
  std::string decimals;
  bool IsZero() const { return whole.empty() && decimals.find_first_not_of('0') == std::string::npos; }
};

// Rounds half away from zero, on the decimal digits.
Rounded Round(const rt::ScannedNumber& number, int decimals) {
  // All digits that count, as a whole number of units of the last decimal.
  std::string units = number.digits;
  const int shift = number.exponent + decimals;
  if (shift >= 0) {
    if (!units.empty()) units.append(static_cast<std::size_t>(shift), '0');
  } else {
    const auto dropped = static_cast<std::size_t>(-shift);
    const bool up = dropped <= units.size() && units[units.size() - dropped] >= '5';
    units.resize(units.size() - std::min(dropped, units.size()));
    if (up) {
      auto at = units.size();
      while (at > 0 && units[at - 1] == '9') units[--at] = '0';
      if (at > 0) {
        ++units[at - 1];
      } else {
        units.insert(units.begin(), '1');
      }
    }
  }
  const auto places = static_cast<std::size_t>(decimals);
  if (units.size() < places) units.insert(0, places - units.size(), '0');
  Rounded result;
  result.whole = units.substr(0, units.size() - places);
  result.decimals = units.substr(units.size() - places);
  result.whole.erase(0, std::min(result.whole.find_first_not_of('0'), result.whole.size()));
  return result;
}

std::string Write(const Section& section, Rounded number) {
  const auto least = static_cast<std::size_t>(section.leastWhole);
  if (number.whole.size() < least) number.whole.insert(0, least - number.whole.size(), '0');
  std::string text = section.before;
  for (std::size_t i = 0; i < number.whole.size(); ++i) {
    if (section.thousands && i != 0 && (number.whole.size() - i) % 3 == 0) text.push_back(',');
    text.push_back(number.whole[i]);
  }
  while (number.decimals.size() > static_cast<std::size_t>(section.leastDecimals) &&
         number.decimals.back() == '0')
    number.decimals.pop_back();
  if (section.point) text.push_back('.');
  return text + number.decimals + section.after;
}

std::string FormatNumber(const rt::ScannedNumber& number, std::string_view format) {
  const auto sections = ReadSections(format);
  const auto given = [&](std::size_t i) { return i < sections.size() && !sections[i].empty; };
  const auto isZero = [&](const Section& section) { return Round(number, section.mostDecimals).IsZero(); };
  const bool own = number.negative && given(1);
  const Section& section = sections[own ? 1 : 0];
  if (isZero(section)) {
    const Section& zero = sections[given(2) ? 2 : 0];
    return Write(zero, Round(rt::ScannedNumber{}, zero.mostDecimals));
  }
  const std::string text = Write(section, Round(number, section.mostDecimals));
  return number.negative && !own ? "-" + text : text;
}

// --- dates

constexpr std::array<const char*, 12> kMonths{"January",   "February", "March",    "April",
                                              "May",       "June",     "July",     "August",
                                              "September", "October",  "November", "December"};

std::string Padded(int number, std::size_t length) {
  std::string text = std::to_string(number);
  if (text.size() < length) text.insert(0, length - text.size(), '0');
  return text;
}

std::string MonthText(int month, std::size_t letters) {
  if (letters <= 2) return Padded(month, letters);
  const std::string name = kMonths[static_cast<std::size_t>(month - 1)];
  return letters == 3 ? name.substr(0, 3) : name;
}

std::string FormatDate(const rt::DateTime& date, const std::string& format) {
  if (format.empty() || rt::EqualNoCase(format, "General Date")) return rt::GeneralDate(date);
  if (rt::EqualNoCase(format, "Short Date")) return rt::ShortDate(date);
  if (rt::EqualNoCase(format, "Medium Date")) return rt::MediumDate(date);
  const std::string letters = rt::LowerCase(format);
  const bool halves = letters.find("am/pm") != std::string::npos;
  const int hour = !halves ? date.Hour() : date.Hour() % 12 == 0 ? 12 : date.Hour() % 12;
  std::string text;
  bool behindHour = false;  // an m after the hour means minutes
  for (std::size_t at = 0; at < letters.size();) {
    const char c = letters[at];
    if (letters.compare(at, 5, "am/pm") == 0) {
      text += date.Hour() < 12 ? "AM" : "PM";
      at += 5;
      continue;
    }
    if (std::string_view("dmyhns").find(c) == std::string_view::npos) {
      text += TakeLiteral(format, at);
      continue;
    }
    const auto end = std::min(letters.find_first_not_of(c, at), letters.size());
    const std::size_t run = end - at;
    at = end;
    switch (c) {
      case 'd':
        text += Padded(date.Day(), run);
        break;
      case 'm':
        text += behindHour ? Padded(date.Minute(), run) : MonthText(date.Month(), run);
        break;
      case 'y':
        text += run > 2 ? Padded(date.Year(), 4) : Padded(date.Year() % 100, 2);
        break;
      case 'h':
        text += Padded(hour, run);
        break;
      case 'n':
        text += Padded(date.Minute(), run);
        break;
      default:
        text += Padded(date.Second(), run);
        break;
    }
    behindHour = c == 'h';
  }
  return text;
}

// Whether a format is for dates: the name of a date format, or date letters without a digit's place.
bool IsDateFormat(const std::string& format) {
  bool letters = false;
  for (std::size_t at = 0; at < format.size();) {
    const char c = format[at];
    if (IsPlace(c)) return false;
    if (c == '"' || c == '\\') {
      TakeLiteral(format, at);
      continue;
    }
    letters = letters || std::isalpha(static_cast<unsigned char>(c)) != 0;
    ++at;
  }
  return letters;
}

std::string FormatFlag(bool flag, const std::string& format) {
  const auto slash = format.find('/');
  if (slash == std::string::npos) return flag ? "Yes" : "No";
  return flag ? format.substr(0, slash) : format.substr(slash + 1);
}

}  // namespace

std::string Format(const rt::Value& value, const std::string& format) {
  switch (value.Type()) {
    case rt::ValueType::Null:
    case rt::ValueType::Binary:
      return {};
    case rt::ValueType::Boolean:
      return FormatFlag(value.AsBoolean(), format);
    case rt::ValueType::Date:
      return FormatDate(value.AsDate(), format);
    default:
      break;
  }
  // Rounds the digits of the Single itself, not those of the nearest Double.
  std::string text = value.AsText();
  if (format.empty()) return text;
  if (IsDateFormat(format)) {
    const auto date = value.Type() == rt::ValueType::Text ? rt::ParseDate(text) : std::nullopt;
    return date ? FormatDate(*date, format) : text;
  }
  const auto number = rt::ScanNumber(text);
  return number ? FormatNumber(*number, format) : text;
}

}  // namespace ui
