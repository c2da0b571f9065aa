#include "platform/print/data/Lookups.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "platform/print/definition/DefinitionScope.h"
#include "platform/print/formula/ValueRules.h"
#include "platform/runtime/Letters.h"
#include "platform/runtime/Text.h"
#include "platform/store/QueryScan.h"

namespace print {
namespace {

constexpr std::size_t kMostRows = 50'000;
constexpr std::size_t kMostBytes = 16 * 1024 * 1024;

bool IsWhole(store::ColumnType type) {
  return type == store::ColumnType::Counter || type == store::ColumnType::Long ||
         type == store::ColumnType::Short;
}

/// Whether the query need not join the table itself.
bool CanBeHeld(const ReportDefinition& report, int table, const QuerySource& source) {
  const auto& definition = report.tables[static_cast<std::size_t>(table)];
  const auto linking = std::count_if(definition.joins.begin(), definition.joins.end(),
                                     [](const JoinDefinition& join) { return !join.otherTable.empty(); });
  if (linking > 1) return false;
  return std::all_of(definition.joins.begin(), definition.joins.end(), [&](const JoinDefinition& join) {
    if (join.otherTable.empty()) return true;
    const int other = FindTable(report.tables, join.otherTable);
    const auto own = source.TypeOf(table, join.field);
    const auto others = source.TypeOf(other, join.otherField);
    // Other types compare in ways of the engine's own.
    return other < table &&
           ((own == store::ColumnType::Text && others == own) || (IsWhole(own) && IsWhole(others)));
  });
}

/// A table that the query joins by a field of a held one needs that one in the query too.
bool IsNeededByQuery(const ReportDefinition& report, int table, const QuerySource& source) {
  for (std::size_t i = 1; i < report.tables.size(); ++i) {
    if (source.IsHeld(static_cast<int>(i))) continue;
    for (const auto& join : report.tables[i].joins)
      if (!join.otherTable.empty() && FindTable(report.tables, join.otherTable) == table) return true;
  }
  return false;
}

}  // namespace

bool Lookup::MakeKey(const rt::Value& value, std::string& key) {
  switch (KindOf(value.Type())) {
    case ValueKind::Text:
      key.assign(1, 't');
      for (const char c : std::get<std::string>(value.Data())) key.push_back(rt::FoldLetter(c));
      return true;
    case ValueKind::Number: {
      const double number = value.AsDouble();
      const auto bits = std::bit_cast<std::uint64_t>(number == 0 ? 0.0 : number);
      key.assign(1 + sizeof(bits), 'n');
      std::memcpy(key.data() + 1, &bits, sizeof(bits));
      return true;
    }
    default:
      return false;
  }
}

bool Lookup::Load(const std::shared_ptr<store::Connection>& connection, QuerySource& source, int table) {
  std::string list;
  for (const auto& join : source.Table(table).joins) {
    if (join.otherTable.empty()) continue;
    list = source.ColumnName(table, join.field);
    keyField_ = *source.PlaceOfJoin(join);
  }
  const int first = list.empty() ? 0 : 1;
  for (std::size_t i = 0; i < source.Fields().size(); ++i) {
    if (source.Fields()[i].table != table) continue;
    fields_.push_back(static_cast<int>(i));
    list += (list.empty() ? "" : ", ") + source.ColumnOf(static_cast<int>(i)).name;
  }
  const std::string fixed = source.JoinCondition(table, QuerySource::Joins::ToConstants);
  std::size_t bytes = 0;
  return store::ReadQuery(connection,
                          "SELECT " + (list.empty() ? "1" : list) + " FROM " + source.OneTable(table) +
                              (fixed.empty() ? "" : " WHERE " + fixed),
                          store::Ties::Any, [&](const store::QueriedRow& read) {
                            std::string key;
                            if (first == 1 && !MakeKey(read.Value(0), key)) return true;
                            const std::size_t place = cells_.size();
                            if (!places_.emplace(key, place).second) return false;
                            for (std::size_t i = 0; i < fields_.size(); ++i) {
                              HeldCell cell;
                              try {
                                cell.value = read.Value(first + static_cast<int>(i));
                              } catch (const rt::Error&) {
                                cell.beyond = true;
                              }
                              bytes += sizeof(cell) + (cell.value.Type() == rt::ValueType::Text
                                                           ? std::get<std::string>(cell.value.Data()).size()
                                                           : 0);
                              cells_.push_back(std::move(cell));
                            }
                            return places_.size() <= kMostRows && bytes <= kMostBytes;
                          });
}

const HeldCell* Lookup::Find(const rt::Value& value) const {
  static const HeldCell kNoFields;
  key_.clear();
  if (keyField_ >= 0 && !MakeKey(value, key_)) return nullptr;
  const auto found = places_.find(key_);
  if (found == places_.end()) return nullptr;
  return fields_.empty() ? &kNoFields : &cells_[found->second];
}

std::vector<Lookup> HoldSmallTables(const std::shared_ptr<store::Connection>& connection,
                                    const ReportDefinition& report, QuerySource& source) {
  const int tables = static_cast<int>(report.tables.size());
  for (int i = 1; i < tables; ++i) source.Hold(i, CanBeHeld(report, i, source));
  const auto letGo = [&] {
    for (int i = tables - 1; i > 0; --i)
      if (source.IsHeld(i) && IsNeededByQuery(report, i, source)) source.Hold(i, false);
  };
  letGo();
  // The fields that find partners are read as well.
  for (int i = 1; i < tables; ++i)
    for (const auto& join : source.Table(i).joins)
      if (source.IsHeld(i) && !join.otherTable.empty()) source.PlaceOfJoin(join);
  std::vector<Lookup> lookups;
  // From the last to the first: a table that is too large takes those before it that it is joined to along.
  for (int i = tables - 1; i > 0; --i) {
    if (!source.IsHeld(i)) continue;
    Lookup lookup;
    if (lookup.Load(connection, source, i)) {
      lookups.push_back(std::move(lookup));
      continue;
    }
    source.Hold(i, false);
    letGo();
  }
  // A partner's own field may find the next one.
  std::reverse(lookups.begin(), lookups.end());
  return lookups;
}

}  // namespace print
