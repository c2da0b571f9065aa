#include "platform/controls/QueryText.h"

#include <algorithm>
#include <cctype>
#include <functional>
#include <string_view>

#include "platform/runtime/Text.h"
#include "platform/store/Dialect.h"

namespace ui {
namespace {

bool IsWordCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

/// The end of a quoted text, a bracket or a date that begins at `at`; `at` itself for anything else.
std::size_t EndOfQuoted(std::string_view text, std::size_t at) {
  const char open = text[at];
  if (open != '\'' && open != '"' && open != '#' && open != '[') return at;
  const auto end = text.find(open == '[' ? ']' : open, at + 1);
  return end == std::string_view::npos ? text.size() : end + 1;
}

/// Calls `seen` with the place and text of each word and comma outside of all quotation marks, brackets and
/// parentheses.
void ForEachWord(std::string_view text, const std::function<void(std::size_t, std::string_view)>& seen) {
  int depth = 0;
  for (std::size_t at = 0; at < text.size();) {
    if (const auto end = EndOfQuoted(text, at); end != at) {
      at = end;
      continue;
    }
    std::size_t end = at + 1;
    if (IsWordCharacter(text[at])) {
      while (end < text.size() && IsWordCharacter(text[end])) ++end;
      if (depth == 0) seen(at, text.substr(at, end - at));
    } else if (text[at] == '(') {
      ++depth;
    } else if (text[at] == ')') {
      --depth;
    } else if (text[at] == ',' && depth == 0) {
      seen(at, text.substr(at, 1));
    }
    at = end;
  }
}

bool Ends(std::string_view text, std::string_view word) {
  return text.size() > word.size() && rt::EqualNoCase(text.substr(text.size() - word.size()), word) &&
         !IsWordCharacter(text[text.size() - word.size() - 1]);
}

}  // namespace

QueryText::QueryText(const std::string& source) {
  if (!store::IsQuery(source)) {
    select = "SELECT * FROM [" + source + "]";
    return;
  }
  std::string text = rt::Trim(source);
  while (!text.empty() && text.back() == ';') text = rt::Trim(text.substr(0, text.size() - 1));
  std::string* clause = &select;
  std::size_t from = 0;
  std::string_view before;
  const auto begin = [&](std::string& next, std::size_t at, std::size_t content) {
    *clause = rt::Trim(text.substr(from, at - from));
    clause = &next;
    from = content;
  };
  std::size_t groupAt = 0;
  ForEachWord(text, [&](std::size_t at, std::string_view word) {
    if (rt::EqualNoCase(word, "WHERE")) {
      begin(where, at, at + word.size());
    } else if (rt::EqualNoCase(word, "BY") && rt::EqualNoCase(before, "GROUP")) {
      begin(groupBy, groupAt, groupAt);
    } else if (rt::EqualNoCase(word, "HAVING") && clause != &groupBy) {
      begin(groupBy, at, at);
    } else if (rt::EqualNoCase(word, "BY") && rt::EqualNoCase(before, "ORDER")) {
      begin(orderBy, groupAt, at + word.size());
    } else if (clause == &select && rt::EqualNoCase(before, "SELECT") &&
               (rt::EqualNoCase(word, "TOP") || rt::EqualNoCase(word, "DISTINCT"))) {
      limited = true;
    }
    before = word;
    groupAt = at;
  });
  *clause = rt::Trim(text.substr(from));
  limited = limited || !groupBy.empty();
}

std::string QueryText::Text() const {
  return select + (where.empty() ? "" : " WHERE " + where) + (groupBy.empty() ? "" : " " + groupBy) +
         (orderBy.empty() ? "" : " ORDER BY " + orderBy);
}

std::string QueryText::First(int count, const std::string& condition) const {
  static constexpr std::size_t kSelect = 6;
  QueryText cut = *this;
  cut.select = "SELECT TOP " + std::to_string(count) + select.substr(kSelect);
  cut.where = where.empty() ? condition : "(" + where + ") AND (" + condition + ")";
  return cut.Text();
}

std::vector<std::string> QueryText::OrderColumns() const {
  std::vector<std::string> columns;
  std::size_t from = 0;
  const auto add = [&](std::size_t end) {
    std::string term = rt::Trim(orderBy.substr(from, end - from));
    for (const std::string_view direction : {"ASC", "DESC"})
      if (Ends(term, direction)) term = rt::Trim(term.substr(0, term.size() - direction.size()));
    if (!term.empty()) columns.push_back(term);
  };
  ForEachWord(orderBy, [&](std::size_t at, std::string_view word) {
    if (word != ",") return;
    add(at);
    from = at + 1;
  });
  add(orderBy.size());
  return columns;
}

bool QueryText::FirstDescends() const {
  std::size_t end = orderBy.size();
  ForEachWord(orderBy, [&](std::size_t at, std::string_view word) {
    if (word == ",") end = std::min(end, at);
  });
  return Ends(rt::Trim(orderBy.substr(0, end)), "DESC");
}

std::string ColumnReference(const store::FieldInfo& field) {
  if (field.table.empty() || field.column.empty()) return "[" + field.name + "]";
  return "[" + field.table + "].[" + field.column + "]";
}

}  // namespace ui
