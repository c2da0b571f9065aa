#include "platform/store/RowCache.h"

#include <algorithm>
#include <cstring>

#include "platform/runtime/Letters.h"
#include "platform/store/Numbers.h"
#include "platform/store/Statements.h"

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
    case rt::ValueType::Binary:  // by another program
      key += 'b';
      key.append(value.AsBinary().begin(), value.AsBinary().end());
      key += '\0';
      break;
    default:
      key += 't' + value.AsText();
      key += '\0';
      break;
  }
}

std::vector<std::size_t> KeyColumns(const TableInfo& table, const IndexInfo& index) {
  std::vector<std::size_t> columns;
  for (const auto& name : index.columns) columns.push_back(static_cast<std::size_t>(table.Find(name)));
  return columns;
}

/// All columns but the counter and the ones that are left out.
std::vector<WrittenColumn> ColumnsBut(const TableInfo& table, const std::vector<std::size_t>& leftOut) {
  std::vector<WrittenColumn> columns;
  for (std::size_t i = 0; i < table.columns.size(); ++i)
    if (table.columns[i].type != ColumnType::Counter &&
        std::find(leftOut.begin(), leftOut.end(), i) == leftOut.end())
      columns.push_back({table.columns[i].name, i});
  return columns;
}

}  // namespace

RowCache::RowCache(std::shared_ptr<const Schema> schema, const TableInfo& table, const IndexInfo& index,
                   const Statements& statements)
    : schema_(std::move(schema)),
      table_(table),
      index_(index),
      keyColumns_(KeyColumns(table, index)),
      inserted_(ColumnsBut(table, {})),
      updated_(ColumnsBut(table, keyColumns_)),
      update_(std::make_shared<const RecordUpdate>(statements.UpdateByKey(table, updated_))),
      insertMany_(statements.InsertMany(table, inserted_)),
      insertOne_(std::make_shared<const std::string>(statements.InsertWithKey(table, inserted_))),
      canReadAll_(CanReadAll()) {}

/// Whether rows that are read with others are found under the same keys as in the file: the file compares
/// values of these kinds, and only these, just as the cache does.
bool RowCache::CanReadAll() const {
  return keyColumns_.size() > 1 && std::all_of(keyColumns_.begin(), keyColumns_.end(), [&](std::size_t i) {
           const ColumnType type = table_.columns[i].type;
           return type == ColumnType::Text || type == ColumnType::Short || type == ColumnType::Long;
         });
}

RowCache::Asked RowCache::NoteMissing(const rt::Value& leading) {
  if (!canReadAll_) return Asked::Once;
  const auto [asked, first] = asked_.emplace(KeyOf({leading}), Asked::Once);
  if (first) return alone_ ? Asked::Again : Asked::Once;
  return asked->second == Asked::Once ? Asked::Again : asked->second;
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
  for (const auto& column : updated_) values.push_back(row[column.place]);
  values.push_back(KeyValue(id));
  return values;
}

std::vector<rt::Value> RowCache::InsertValues(const std::vector<rt::Value>& row) const {
  std::vector<rt::Value> values;
  values.reserve(inserted_.size() + 1);
  for (const auto& column : inserted_) values.push_back(row[column.place]);
  values.emplace_back(rt::Null{});
  return values;
}

}  // namespace store
