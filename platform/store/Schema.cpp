#include "platform/store/Schema.h"

#include <charconv>
#include <map>
#include <set>

#include "platform/runtime/Text.h"
#include "platform/store/Holds.h"

namespace store {
namespace {

constexpr int kLongestText = 255;
constexpr std::string_view kNoCase = " COLLATE NOCASE";

bool EndsNoCase(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && rt::EqualNoCase(text.substr(text.size() - end.size()), end);
}

struct TypeName {
  ColumnType type;
  std::string_view declared;
};

// What a column's declaration begins with; the engine's own questions show these words and leave out the
// rest. The words decide how the engine keeps a value: a memo of digits keeps its leading zeros because TEXT
// stands in it.
constexpr TypeName kTypeNames[] = {
    {ColumnType::Counter, "INTEGER"},
    {ColumnType::Boolean, "YESNO"},
    {ColumnType::Short, "SHORT"},
    {ColumnType::Long, "LONG"},
    {ColumnType::Single, "SINGLE"},
    {ColumnType::Double, "DOUBLE"},
    {ColumnType::Currency, "CURRENCY"},
    {ColumnType::DateTime, "DATETIME"},
    {ColumnType::Text, "TEXT"},
    {ColumnType::Memo, "MEMO TEXT"},
    {ColumnType::LongBinary, "LONGBINARY BLOB"},
};

std::string_view NameOf(ColumnType type) {
  for (const auto& one : kTypeNames)
    if (one.type == type) return one.declared;
  return {};
}

}  // namespace

int TableInfo::Find(std::string_view column) const {
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (rt::EqualNoCase(columns[i].name, column)) return static_cast<int>(i);
  return -1;
}

const IndexInfo* TableInfo::FindIndex(std::string_view index) const {
  for (const auto& one : indexes)
    if (rt::EqualNoCase(one.name, index)) return &one;
  return nullptr;
}

const TableInfo* Schema::Find(std::string_view table) const {
  for (const auto& one : tables)
    if (rt::EqualNoCase(one.name, table)) return &one;
  return nullptr;
}

std::string DeclaredType(const ColumnInfo& column) {
  std::string declared(NameOf(column.type));
  switch (column.type) {
    case ColumnType::Counter:
      return declared + " PRIMARY KEY AUTOINCREMENT";
    case ColumnType::Text:
      return declared + "(" + std::to_string(column.size > 0 ? column.size : kLongestText) + ")" +
             std::string(kNoCase);
    case ColumnType::Memo:
      return declared + std::string(kNoCase);
    default:
      return declared;
  }
}

std::optional<ColumnInfo> ParseDeclaredType(std::string_view declared) {
  for (const std::string_view tail : {kNoCase, std::string_view(" PRIMARY KEY AUTOINCREMENT")})
    if (EndsNoCase(declared, tail)) declared.remove_suffix(tail.size());
  ColumnInfo column;
  constexpr std::string_view kOpening = "TEXT(";
  if (rt::EqualNoCase(declared.substr(0, kOpening.size()), kOpening)) {
    const std::string_view digits = declared.substr(kOpening.size());
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), column.size);
    if (read.ec != std::errc() || std::string_view(read.ptr, digits.data() + digits.size()) != ")")
      return std::nullopt;
    if (column.size < 1 || column.size > kLongestText) return std::nullopt;
    return column;
  }
  for (const auto& one : kTypeNames) {
    if (!rt::EqualNoCase(declared, one.declared)) continue;
    column.type = one.type;
    if (one.type == ColumnType::Text) column.size = kLongestText;
    return column;
  }
  return std::nullopt;
}

void NumberTables(std::vector<TableInfo>& tables) {
  std::map<std::string, TableInfo*> byName;
  for (TableInfo& table : tables) byName.emplace(rt::LowerCase(table.name), &table);
  std::set<int> taken;
  for (auto& [name, table] : byName) {
    std::uint32_t hash = 2166136261U;  // FNV-1a
    for (const char letter : name) hash = (hash ^ static_cast<unsigned char>(letter)) * 16777619U;
    int number = static_cast<int>(hash % static_cast<std::uint32_t>(kLastTable)) + 1;
    while (!taken.insert(number).second) number = number % kLastTable + 1;
    table->number = number;
  }
}

std::string QuoteName(std::string_view name) { return rt::Enclosed(name, '"'); }

}  // namespace store
