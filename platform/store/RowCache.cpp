#include "platform/store/RowCache.h"

#include <cstring>

#include "platform/store/Handle.h"

namespace store {
namespace {

void AppendKey(std::string& key, const rt::Value& value) {
  switch (value.Type()) {
    case rt::ValueType::Null:
      key += 'z';
      break;
    case rt::ValueType::Text:
      key += 's';
      for (const char c : std::get<std::string>(value.Data()))
        key += c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
      key += '\0';
      break;
    case rt::ValueType::Boolean:
    case rt::ValueType::Integer:
    case rt::ValueType::Long: {
      const std::int32_t number =
          value.Type() == rt::ValueType::Boolean ? (value.AsBoolean() ? 1 : 0) : value.AsLong();
      char bytes[sizeof number];
      std::memcpy(bytes, &number, sizeof number);
      key += 'n';
      key.append(bytes, sizeof number);
      break;
    }
    default:
      key += 't' + value.AsText();
      key += '\0';
      break;
  }
}

}  // namespace

RowCache::RowCache(std::shared_ptr<const Schema> schema, const TableInfo& table, const IndexInfo& index)
    : schema_(std::move(schema)), table_(table), index_(index) {
  for (const auto& column : index.columns)
    keyColumns_.push_back(static_cast<std::size_t>(table.Find(column)));
  std::string names;
  std::string marks;
  std::string changes;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    if (table.columns[i].type == ColumnType::Counter) continue;
    stored_.push_back(i);
    const std::string name = QuoteName(table.columns[i].name);
    const std::string mark = "?" + std::to_string(stored_.size());
    names += (names.empty() ? "" : ", ") + name;
    marks += (marks.empty() ? "" : ", ") + mark;
    changes += (changes.empty() ? "" : ", ") + name + " = " + mark;
  }
  update_ = "UPDATE " + QuoteName(table.name) + " SET " + changes + " WHERE _rowid_ = ?" +
            std::to_string(stored_.size() + 1);
  insert_ = "INSERT INTO " + QuoteName(table.name) + " (" + names + ") VALUES (" + marks + ")";
}

std::string RowCache::KeyOf(const std::vector<rt::Value>& key) {
  std::string text;
  for (const auto& value : key) AppendKey(text, value);
  return text;
}

std::string RowCache::KeyOfRow(const std::vector<rt::Value>& values) const {
  std::string text;
  for (const std::size_t column : keyColumns_) AppendKey(text, values[column]);
  return text;
}

int RowCache::BindRow(Use& statement, const std::vector<rt::Value>& values) const {
  int index = 0;
  for (const std::size_t column : stored_) statement.Bind(++index, values[column]);
  return index;
}

std::vector<rt::Value> RowCache::Parameters(const CachedRow& row) const {
  std::vector<rt::Value> values;
  values.reserve(stored_.size() + 1);
  for (const std::size_t column : stored_) values.push_back(row.values[column]);
  return values;
}

}  // namespace store
