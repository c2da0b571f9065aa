#include "platform/controls/GridSearch.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <vector>

#include "platform/controls/QueryText.h"
#include "platform/runtime/Text.h"

namespace ui {
namespace {

using store::ColumnType;

std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? "''" : std::string(1, c);
  return quoted + "'";
}

std::string Or(const std::vector<std::string>& conditions) {
  std::string all;
  for (const auto& one : conditions) all += (all.empty() ? "" : " OR ") + one;
  return all;
}

// A range, unlike a pattern, can use an index. The store itself passes over the case of A to Z; the case of
// other letters is covered by asking for both.
std::string TextBegins(const std::string& column, const std::string& typed) {
  static const std::string kLastCharacter = "\xF4\x8F\xBF\xBF";
  std::vector<std::string> forms{typed};
  for (const auto& form : {rt::UpperCase(typed), rt::LowerCase(typed)}) {
    const bool known = std::any_of(forms.begin(), forms.end(),
                                   [&](const std::string& other) { return rt::EqualNoCase(form, other); });
    if (!known) forms.push_back(form);
  }
  std::vector<std::string> ranges;
  ranges.reserve(forms.size());
  for (const auto& form : forms)
    ranges.push_back(column + " BETWEEN " + Quoted(form) + " AND " + Quoted(form + kLastCharacter));
  return Or(ranges);
}

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

// 12 begins 12, 120 to 129, 1200 to 1299 and so on, each with its decimals; 12.3 begins 12.3 to below 12.4.
std::string NumberBegins(const std::string& column, const std::string& typed, bool single) {
  static constexpr std::size_t kMostDigits = 15;
  std::string digits;
  for (const char c : typed)
    if (c != '$' && c != ',' && c != '(' && c != ')' && c != ' ') digits += c;
  const bool negative = typed.find('(') != std::string::npos || digits.starts_with('-');
  if (digits.starts_with('-')) digits.erase(0, 1);
  const auto point = digits.find('.');
  std::string whole = digits.substr(0, point);
  const std::string decimals = point == std::string::npos ? "" : digits.substr(point + 1);
  if (!AllDigits(whole) || !AllDigits(decimals)) return {};
  if (whole.empty() && point == std::string::npos) return negative ? column + " < 0" : "";
  if (whole.empty()) whole = "0";
  if (whole.size() + decimals.size() > kMostDigits || (whole.size() > 1 && whole[0] == '0')) return {};

  // A Single may stand a little beside the decimal number that it shows.
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
  std::vector<std::string> ranges;
  const auto add = [&](const std::string& low, const std::string& high) {
    const std::string from = bound(low);
    const std::string below = bound(high);
    ranges.push_back(negative ? "(" + column + " <= -" + from + " AND " + column + " > -" + below + ")"
                              : "(" + column + " >= " + from + " AND " + column + " < " + below + ")");
  };
  if (point != std::string::npos) {
    const std::string next = NextNumber(whole + decimals);
    const auto split = next.size() - decimals.size();
    add(whole + "." + decimals + "0", next.substr(0, split) + "." + next.substr(split) + "0");
    return ranges[0];
  }
  const std::string next = NextNumber(whole);
  for (std::string zeros; whole.size() + zeros.size() <= kMostDigits; zeros += '0') {
    add(whole + zeros + ".0", next + zeros + ".0");
    if (whole == "0") break;
  }
  return Or(ranges);
}

/// The numbers up to `most` whose digits begin with these; a leading zero stands for the number behind it.
std::string OneOf(const std::string& expression, const std::string& digits, int most, bool begun) {
  std::string list;
  for (int number = 1; number <= most; ++number) {
    const std::string text = std::to_string(number);
    const std::string padded = text.size() < 2 ? "0" + text : text;
    const bool fits =
        begun ? text.starts_with(digits) || padded.starts_with(digits) : text == digits || padded == digits;
    if (fits) list += (list.empty() ? "" : ", ") + text;
  }
  return list.empty() ? "" : expression + " IN (" + list + ")";
}

std::string YearBegins(const std::string& column, const std::string& digits) {
  static constexpr std::size_t kYearDigits = 4;
  if (digits.size() > kYearDigits) return {};
  const std::string zeros(kYearDigits - digits.size(), '0');
  const std::string nines(kYearDigits - digits.size(), '9');
  return "YEAR(" + column + ") BETWEEN " + digits + zeros + " AND " + digits + nines;
}

std::string DateBegins(const std::string& column, const std::string& typed) {
  std::vector<std::string> parts{""};
  for (const char c : typed) {
    if (c == '/' || c == '-')
      parts.emplace_back();
    else
      parts.back() += c;
  }
  if (parts.size() > 3 || !std::all_of(parts.begin(), parts.end(), AllDigits) || parts[0].empty()) return {};
  std::string condition = OneOf("MONTH(" + column + ")", parts[0], 12, parts.size() == 1);
  if (condition.empty() || parts.size() == 1 || (parts.size() == 2 && parts[1].empty())) return condition;
  const std::string day = OneOf("DAY(" + column + ")", parts[1], 31, parts.size() == 2);
  if (day.empty()) return {};
  condition += " AND " + day;
  if (parts.size() == 2 || parts[2].empty()) return condition;
  const std::string year = YearBegins(column, parts[2]);
  return year.empty() ? "" : condition + " AND " + year;
}

std::string FlagBegins(const std::string& column, const std::string& typed) {
  for (const std::string word : {"Yes", "No"})
    if (rt::EqualNoCase(word.substr(0, typed.size()), typed) && typed.size() <= word.size())
      return column + (word == "Yes" ? " = TRUE" : " = FALSE");
  return {};
}

}  // namespace

std::string BeginsWith(const store::FieldInfo& field, const std::string& typed) {
  const std::string column = ColumnReference(field);
  switch (field.type) {
    case ColumnType::Text:
    case ColumnType::Memo:
      return TextBegins(column, typed);
    case ColumnType::DateTime:
      return DateBegins(column, typed);
    case ColumnType::Boolean:
      return FlagBegins(column, typed);
    case ColumnType::LongBinary:
      return {};
    default:
      return NumberBegins(column, typed, field.type == ColumnType::Single);
  }
}

std::optional<std::int64_t> FirstRowWhere(Adodc& source, const std::string& condition) {
  // A row that another user has added since is not in the list yet; one of the next may be.
  static constexpr int kTried = 8;
  const auto& rows = source.Recordset();
  if (!rows) return std::nullopt;
  const std::int64_t place = rows->Cursor().Position();
  ado::Recordset hits;
  hits.Open(QueryText(source.Query()).First(kTried, condition), rows->ActiveConnection(), ado::adOpenKeyset,
            ado::adLockReadOnly);
  for (; !hits.AtEnd(); hits.MoveNext()) {
    try {
      rows->SetBookmark(hits.Bookmark());
    } catch (const ado::Error& error) {
      if (error.Native() != store::kRecordDeleted) throw;
      continue;
    }
    const std::int64_t found = rows->Cursor().Position();
    rows->Cursor().MoveTo(place);
    return found;
  }
  return std::nullopt;
}

}  // namespace ui
