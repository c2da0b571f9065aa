#include "platform/store/RowCache.h"

#include <algorithm>
#include <cstring>

#include "platform/runtime/Letters.h"
#include "platform/store/Handle.h"
#include "platform/store/Numbers.h"

namespace store {
namespace {

void AppendKey(std::string& key, const rt::Value& value) {
  switch (value.Type()) {
    case rt::ValueType::Null:
      key += 'z';
      break;
    case rt::ValueType::Text:
      key += 's';
      for (const char c : std::get<std::string>(value.Data())) key += rt::FoldLetter(c);
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
    const std::string name = QuoteName(table.columns[i].name);
    inserted_.push_back(i);
    names += name + ", ";
    marks += "?" + std::to_string(inserted_.size()) + ", ";
    if (IsKey(i)) continue;
    updated_.push_back(i);
    changes += (changes.empty() ? "" : ", ") + name + " = ?" + std::to_string(updated_.size());
  }
  update_ = std::make_shared<const std::string>("UPDATE " + QuoteName(table.name) + " SET " + changes +
                                                " WHERE _rowid_ = ?" + std::to_string(updated_.size() + 1));
  insert_ = std::make_shared<const std::string>("INSERT INTO " + QuoteName(table.name) + " (" + names +
                                                "_rowid_) VALUES (" + marks + "?" +
                                                std::to_string(inserted_.size() + 1) + ")");
}

bool RowCache::IsKey(std::size_t column) const {
  return std::find(keyColumns_.begin(), keyColumns_.end(), column) != keyColumns_.end();
}

std::string RowCache::KeyOf(const std::vector<rt::Value>& key) {
  std::string text;
  KeyOf(key, text);
  return text;
}

void RowCache::KeyOf(const std::vector<rt::Value>& key, std::string& text) {
  text.clear();
  for (const auto& value : key) AppendKey(text, value);
}

std::string RowCache::KeyOfRow(const std::vector<rt::Value>& values) const {
  std::string text;
  for (const std::size_t column : keyColumns_) AppendKey(text, values[column]);
  return text;
}

std::vector<rt::Value> RowCache::UpdateValues(const std::vector<rt::Value>& row, std::int64_t id) const {
  std::vector<rt::Value> values;
  values.reserve(updated_.size() + 1);
  for (const std::size_t column : updated_) values.push_back(row[column]);
  values.push_back(KeyValue(id));
  return values;
}

std::vector<rt::Value> RowCache::InsertValues(const std::vector<rt::Value>& row) const {
  std::vector<rt::Value> values;
  values.reserve(inserted_.size() + 1);
  for (const std::size_t column : inserted_) values.push_back(row[column]);
  values.emplace_back(rt::Null{});
  return values;
}

void RowCache::BindUpdate(Use& statement, const std::vector<rt::Value>& row, std::int64_t id) const {
  int index = 0;
  for (const std::size_t column : updated_) statement.Bind(++index, row[column]);
  statement.Bind(++index, id);
}

void RowCache::BindInsert(Use& statement, const std::vector<rt::Value>& row) const {
  int index = 0;
  for (const std::size_t column : inserted_) statement.Bind(++index, row[column]);
}

}  // namespace store
