#include "tools/dwadmin/Output.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ostream>
#include <sstream>

#include "platform/runtime/Text.h"

namespace dw {
namespace {

using rt::ValueType;

std::string Hexadecimal(const rt::Binary& bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const std::uint8_t byte : bytes) {
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 15U];
  }
  return text;
}

std::string JsonText(std::string_view text) {
  std::string json = "\"";
  while (!text.empty()) {
    const rt::Character character = rt::FirstCharacter(text);
    const char c = text.front();
    if (!character.valid) {
      json += "\\ufffd";
    } else if (c == '"' || c == '\\') {
      json += '\\';
      json += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
      json += escaped;
    } else {
      json += text.substr(0, character.bytes);
    }
    text.remove_prefix(character.bytes);
  }
  return json + '"';
}

/// The text of a value in a table for people.
std::string Shown(const rt::Value& value) {
  switch (value.Type()) {
    case ValueType::Null:
      return "Null";
    case ValueType::Currency:
      return value.AsCurrency().DisplayText();
    case ValueType::Binary:
      return std::to_string(value.AsBinary().size()) + " bytes";
    default:
      return value.AsText();
  }
}

bool IsNumber(const rt::Value& value) {
  switch (value.Type()) {
    case ValueType::Integer:
    case ValueType::Long:
    case ValueType::Single:
    case ValueType::Double:
    case ValueType::Currency:
      return true;
    default:
      return false;
  }
}

std::vector<std::string> Words(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

/// The texts of one line in columns of these widths.
void WriteLine(std::ostream& out, const std::vector<std::string>& cells,
               const std::vector<std::size_t>& widths, const std::vector<bool>& right) {
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const std::size_t length = rt::Length(cells[i]);
    const std::string blanks(widths[i] > length ? widths[i] - length : 0, ' ');
    if (i > 0) line += "  ";
    line += right[i] ? blanks + cells[i] : cells[i] + blanks;
  }
  line.erase(line.find_last_not_of(' ') + 1);
  out << line << '\n';
}

}  // namespace

std::string DateText(const rt::DateTime& date) {
  const std::string iso = date.ToIso();
  return date.HasTime() ? iso : iso.substr(0, iso.find(' '));
}

std::string JsonValue(const rt::Value& value) {
  switch (value.Type()) {
    case ValueType::Null:
      return "null";
    case ValueType::Boolean:
      return value.AsBoolean() ? "true" : "false";
    case ValueType::Single:
    case ValueType::Double:
      return std::isfinite(value.AsDouble()) ? value.AsText() : "null";
    case ValueType::Integer:
    case ValueType::Long:
    case ValueType::Currency:
      return value.AsText();
    case ValueType::Date:
      return JsonText(DateText(value.AsDate()));
    case ValueType::Binary:
      return JsonText(Hexadecimal(value.AsBinary()));
    case ValueType::Text:
      break;
  }
  return JsonText(value.AsText());
}

std::string CsvField(const rt::Value& value) {
  if (value.IsNull()) return {};
  if (value.Type() == ValueType::Date) return DateText(value.AsDate());
  if (value.Type() == ValueType::Binary) return Hexadecimal(value.AsBinary());
  std::string text = value.AsText();
  if (!text.empty() && text.find_first_of(",\"\r\n") == std::string::npos) return text;
  return rt::Enclosed(text, '"');
}

void WriteJsonObject(std::ostream& out, const std::vector<std::string>& columns,
                     const std::vector<rt::Value>& values) {
  out << '{';
  for (std::size_t i = 0; i < columns.size(); ++i)
    out << (i == 0 ? "" : ", ") << JsonText(columns[i]) << ": " << JsonValue(values[i]);
  out << '}';
}

void ResultTable::WriteJson(std::ostream& out) const {
  out << '[';
  for (std::size_t i = 0; i < rows.size(); ++i) {
    out << (i == 0 ? "\n  " : ",\n  ");
    WriteJsonObject(out, columns, rows[i]);
  }
  out << (rows.empty() ? "]" : "\n]");
}

void ResultTable::WriteText(std::ostream& out) const {
  std::vector<std::size_t> widths(columns.size(), 0);
  std::vector<bool> right(columns.size(), false);
  std::vector<std::vector<std::string>> headings;
  std::size_t height = 0;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    headings.push_back(Words(columns[i]));
    height = std::max(height, headings.back().size());
    for (const std::string& word : headings.back()) widths[i] = std::max(widths[i], rt::Length(word));
  }
  std::vector<std::vector<std::string>> lines;
  for (const std::vector<rt::Value>& row : rows) {
    std::vector<std::string>& cells = lines.emplace_back();
    for (std::size_t i = 0; i < columns.size(); ++i) {
      cells.push_back(Shown(row[i]));
      widths[i] = std::max(widths[i], rt::Length(cells.back()));
      if (IsNumber(row[i])) right[i] = true;
    }
  }
  for (std::size_t line = 0; line < height; ++line) {
    std::vector<std::string> cells;
    for (const std::vector<std::string>& words : headings) {
      // Short headings are directly above their column.
      const std::size_t above = height - words.size();
      cells.push_back(line < above ? std::string() : words[line - above]);
    }
    WriteLine(out, cells, widths, right);
  }
  std::vector<std::string> rules;
  rules.reserve(widths.size());
  for (const std::size_t width : widths) rules.emplace_back(width, '-');
  WriteLine(out, rules, widths, right);
  for (const std::vector<std::string>& cells : lines) WriteLine(out, cells, widths, right);
}

}  // namespace dw
