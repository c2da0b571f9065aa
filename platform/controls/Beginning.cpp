#include "platform/controls/Beginning.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "platform/runtime/Text.h"
#include "platform/store/QueryClauses.h"

namespace ui {
namespace {

using std::chrono::day;
using std::chrono::month;
using std::chrono::year;
using std::chrono::year_month_day;
using store::ColumnType;

bool AllDigits(const std::string& text) { return text.find_first_not_of("0123456789") == std::string::npos; }

/// The whole number with one added, as digits.
std::string NextNumber(std::string digits) {
  for (auto at = digits.size(); at > 0; --at) {
    if (digits[at - 1] != '9') {
      ++digits[at - 1];
      return digits;
    }
    digits[at - 1] = '0';
  }
  return "1" + digits;
}

/// The numbers up to `most` that have these digits or, if `begun`, begin with them. A leading zero belongs to
/// the number after it.
template <std::size_t Count>
std::bitset<Count> NumbersOf(const std::string& digits, int most, bool begun) {
  std::bitset<Count> numbers;
  for (int number = 1; number <= most; ++number) {
    const std::string text = std::to_string(number);
    const std::string padded = text.size() < 2 ? "0" + text : text;
    numbers[static_cast<std::size_t>(number)] =
        begun ? text.starts_with(digits) || padded.starts_with(digits) : text == digits || padded == digits;
  }
  return numbers;
}

template <std::size_t Count>
std::string OneOf(const std::string& expression, const std::bitset<Count>& numbers) {
  std::string list;
  for (std::size_t number = 0; number < Count; ++number)
    if (numbers[number]) list += (list.empty() ? "" : ", ") + std::to_string(number);
  return expression + " IN (" + list + ")";
}

}  // namespace

bool Beginning::Days::Hold(year_month_day one) const {
  const int number = static_cast<int>(one.year());
  return number >= firstYear && number <= lastYear && months[static_cast<unsigned>(one.month())] &&
         days[static_cast<unsigned>(one.day())];
}

year_month_day Beginning::Days::Nearest(year_month_day from, bool backward) const {
  const int step = backward ? -1 : 1;
  const int fromYear = static_cast<int>(from.year());
  const int start = backward ? std::min(fromYear, lastYear) : std::max(fromYear, firstYear);
  // The rarest day, February 29, can be eight years away, around the turn of a century.
  constexpr int kMostYears = 9;
  for (int y = start, tried = 0; y >= firstYear && y <= lastYear && tried < kMostYears; y += step, ++tried)
    for (unsigned i = 1; i <= 12; ++i) {
      const unsigned m = backward ? 13 - i : i;
      if (!months[m]) continue;
      for (unsigned j = 1; j <= 31; ++j) {
        const unsigned d = backward ? 32 - j : j;
        const year_month_day one{year(y), month(m), day(d)};
        if (days[d] && one.ok() && (backward ? one <= from : one >= from)) return one;
      }
    }
  return {};
}

Beginning::Beginning(const store::FieldInfo& field, const std::string& typed) {
  const std::string column = store::ColumnReference(field);
  switch (field.type) {
    case ColumnType::Text:
    case ColumnType::Memo:
      Texts(typed);
      condition_ = SpansCondition(column, true);
      break;
    case ColumnType::DateTime:
      TakeDays(column, typed);
      break;
    case ColumnType::Boolean:
      Flags(typed);
      condition_ = SpansCondition(column, false);
      break;
    case ColumnType::LongBinary:
      break;
    default:
      Numbers(typed, field.type == ColumnType::Single);
      condition_ = SpansCondition(column, false);
  }
}

// A range, unlike a pattern, can use an index.
std::string Beginning::SpansCondition(const std::string& column, bool text) const {
  std::string all;
  for (const Span& span : spans_) {
    std::string one;
    const auto bound = [&](const std::string& value, const char* sign, bool with) {
      if (value.empty()) return;
      one += (one.empty() ? "" : " AND ") + column + sign + (with ? "= " : " ") +
             (text ? rt::Quoted(value) : value);
    };
    bound(span.low, " >", span.withLow);
    bound(span.high, " <", span.withHigh);
    all += (all.empty() ? "(" : " OR (") + one + ")";
  }
  return all;
}

// The store itself ignores the case of A to Z; asking for both cases covers other letters.
void Beginning::Texts(const std::string& typed) {
  static const std::string kLastCharacter = "\xF4\x8F\xBF\xBF";
  std::vector<std::string> forms{typed};
  for (const auto& form : {rt::UpperCase(typed), rt::LowerCase(typed)}) {
    const bool known = std::any_of(forms.begin(), forms.end(),
                                   [&](const std::string& other) { return rt::EqualNoCase(form, other); });
    if (!known) forms.push_back(form);
  }
  for (const auto& form : forms) Add({form, form + kLastCharacter, true, true});
}

// 12 begins 12, 120 to 129, 1200 to 1299 and so on, each with its decimals; 12.3 begins the numbers from 12.3
// to below 12.4.
void Beginning::Numbers(const std::string& typed, bool single) {
  static constexpr std::size_t kMostDigits = 15;
  std::string digits;
  for (const char c : typed)
    if (c != '$' && c != ',' && c != '(' && c != ')' && c != ' ') digits += c;
  const bool negative = typed.find('(') != std::string::npos || digits.starts_with('-');
  if (digits.starts_with('-')) digits.erase(0, 1);
  const auto point = digits.find('.');
  std::string whole = digits.substr(0, point);
  const std::string decimals = point == std::string::npos ? "" : digits.substr(point + 1);
  if (!AllDigits(whole) || !AllDigits(decimals)) return;
  if (whole.empty() && point == std::string::npos) {
    if (negative) Add({"", "0", true, false});
    return;
  }
  if (whole.empty()) whole = "0";
  if (whole.size() + decimals.size() > kMostDigits || (whole.size() > 1 && whole[0] == '0')) return;

  // A Single can differ a little from the decimal number that it shows.
  const auto bound = [&](const std::string& number) {
    double exact = 0;
    std::from_chars(number.data(), number.data() + number.size(), exact);
    if (!single || exact == 0) return number;
    std::array<char, 64> text{};
    const double lower = exact - std::max(1e-6, exact * 1e-7);
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), lower, std::chars_format::fixed, 7).ptr;
    return std::string(text.data(), end);
  };
  const auto add = [&](const std::string& low, const std::string& high) {
    const std::string from = bound(low);
    const std::string below = bound(high);
    if (negative)
      Add({"-" + below, "-" + from, false, true});
    else
      Add({from, below, true, false});
  };
  if (point != std::string::npos) {
    const std::string next = NextNumber(whole + decimals);
    const auto split = next.size() - decimals.size();
    add(whole + "." + decimals + "0", next.substr(0, split) + "." + next.substr(split) + "0");
    return;
  }
  const std::string next = NextNumber(whole);
  for (std::string zeros; whole.size() + zeros.size() <= kMostDigits; zeros += '0') {
    add(whole + zeros + ".0", next + zeros + ".0");
    if (whole == "0") break;
  }
}

void Beginning::TakeDays(const std::string& column, const std::string& typed) {
  static constexpr std::size_t kYearDigits = 4;
  std::vector<std::string> parts{""};
  for (const char c : typed) {
    if (c == '/' || c == '-')
      parts.emplace_back();
    else
      parts.back() += c;
  }
  if (parts.size() > 3 || !std::all_of(parts.begin(), parts.end(), AllDigits) || parts[0].empty()) return;
  days_.months = NumbersOf<13>(parts[0], 12, parts.size() == 1);
  days_.days.set();
  if (days_.months.none()) return;
  std::string condition = OneOf("MONTH(" + column + ")", days_.months);
  if (parts.size() > 2 || (parts.size() == 2 && !parts[1].empty())) {
    days_.days = NumbersOf<32>(parts[1], 31, parts.size() == 2);
    if (days_.days.none()) return;
    condition += " AND " + OneOf("DAY(" + column + ")", days_.days);
  }
  if (parts.size() == 3 && !parts[2].empty()) {
    const std::string& digits = parts[2];
    if (digits.size() > kYearDigits) return;
    const std::string first = digits + std::string(kYearDigits - digits.size(), '0');
    const std::string last = digits + std::string(kYearDigits - digits.size(), '9');
    days_.firstYear = std::stoi(first);
    days_.lastYear = std::stoi(last);
    condition += " AND YEAR(" + column + ") BETWEEN " + first + " AND " + last;
  }
  condition_ = std::move(condition);
}

void Beginning::Flags(const std::string& typed) {
  for (const std::string word : {"Yes", "No"}) {
    if (!rt::EqualNoCase(word.substr(0, typed.size()), typed) || typed.size() > word.size()) continue;
    const std::string value = word == "Yes" ? "1" : "0";
    Add({value, value, true, true});
    return;
  }
}

}  // namespace ui
