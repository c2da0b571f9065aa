#include "reports/SelectionWords.h"

#include <algorithm>

#include "data/Attempt.h"
#include "data/MainConnection.h"
#include "platform/runtime/Text.h"
#include "reports/Literals.h"

namespace dw {
namespace {

enum class Kind { Text, Date, Other };

Kind KindOf(const std::string& literal) {
  if (literal.starts_with('\'')) return Kind::Text;
  return literal.starts_with("Date(") ? Kind::Date : Kind::Other;
}

struct Words {
  const char* comparison;
  const char* ofText;
  const char* ofDate;
  const char* ofOther;
};
constexpr Words kWords[] = {
    {"=", "is", "is", "is"},
    {"<>", "is not", "is not", "is not"},
    {"<", "comes before", "is before", "is less than"},
    {"<=", "is or comes before", "is on or before", "is at most"},
    {">", "comes after", "is after", "is more than"},
    {">=", "is or comes after", "is on or after", "is at least"},
};

std::string ComparisonInWords(const std::string& comparison, Kind kind) {
  for (const Words& words : kWords)
    if (words.comparison == comparison)
      return kind == Kind::Text ? words.ofText : kind == Kind::Date ? words.ofDate : words.ofOther;
  return comparison.empty() ? "(no comparison)" : comparison;
}

std::string FieldInWords(const std::string& table, const std::string& field,
                         const std::string& primaryTable) {
  const std::string name = field.empty() ? "(no field)" : field;
  return table.empty() || rt::EqualNoCase(table, primaryTable) ? name : name + " of " + table;
}

std::string Question(const SelectionLine& line) {
  return line.prompt.empty() ? "(asked at each run)" : "(asked at each run: " + line.prompt + ")";
}

}  // namespace

std::string SelectionInWords(const std::vector<SelectionLine>& lines, const std::string& primaryTable) {
  if (lines.empty()) return "All records.";
  std::string words;
  for (const SelectionLine& line : lines) {
    words += line.open + FieldInWords(line.table, line.field, primaryTable) + " " +
             ComparisonInWords(line.comparison, KindOf(line.value)) + " " +
             (line.askAtRuntime    ? Question(line)
              : line.value.empty() ? "(no value)"
                                   : LiteralInWords(line.value)) +
             line.close;
    if (&line == &lines.back()) {
      // A connector behind the last line connects nothing.
      if (!line.connector.empty()) words += " " + rt::LowerCase(line.connector) + " (nothing)";
    } else {
      words += line.connector.empty() ? " (no connector) " : " " + rt::LowerCase(line.connector) + " ";
    }
  }
  return words;
}

std::string SortInWords(const std::vector<SortLine>& lines, const std::string& primaryTable) {
  std::string words;
  for (const SortLine& line : lines)
    words += (words.empty() ? "Sorted by " : ", then by ") +
             FieldInWords(line.table, line.field, primaryTable) + (line.descending ? " (descending)" : "");
  return words;
}

namespace {

/// The type of a column; 0 if there is no such column.
int TypeOf(const MainConnection& main, const std::string& table, const std::string& field) {
  int type = 0;
  if (main.IsOpen())
    Try([&] {
      for (const ado::Column& column : ado::Catalog(main.Connection()).Columns(table))
        if (column.name == field) type = column.type;
    });
  return type;
}

}  // namespace

std::vector<SelectionLine> WithSampleValues(std::vector<SelectionLine> lines,
                                            const std::string& primaryTable) {
  if (std::ranges::none_of(lines, &SelectionLine::askAtRuntime)) return lines;
  const MainConnection main;
  for (SelectionLine& line : lines) {
    if (!line.askAtRuntime) continue;
    const int type = TypeOf(main, line.table.empty() ? primaryTable : line.table, line.field);
    line.value = type == kTextType || type == kMemoType ? "'A'" : type == kDateType ? "Date(2000,1,1)" : "0";
  }
  return lines;
}

}  // namespace dw
