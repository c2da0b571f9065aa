#include "costing/CostCheck.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>

#include "costing/CostRows.h"
#include "data/Attempt.h"
#include "platform/runtime/Text.h"
#include "platform/store/Cursor.h"

namespace dw {
namespace {

constexpr std::size_t kSums = kAssetCostColumns.size();

/// Owner as text columns compare it, year, period; a part is empty if it is Null or the table does not have
/// it.
using Key = std::tuple<std::optional<std::string>, std::optional<int>, std::optional<int>>;

bool IsMoney(std::string_view column) { return column.ends_with(" Cost"); }

/// Asset codes are equal without regard to the case of A to Z.
std::optional<std::string> OwnerKey(const rt::Value& owner) {
  if (owner.IsNull()) return std::nullopt;
  return rt::FoldCase(owner.AsText());
}

std::optional<int> NumberKey(const rt::Value& number) {
  if (number.IsNull()) return std::nullopt;
  return number.AsLong();
}

/// Ten-thousandths in a type wide enough for any file, so that amounts which overflow a sum can be reported.
__extension__ typedef __int128 WideMoney;

/// One sum over some transactions.
struct Sum {
  std::int64_t nulls = 0;  ///< addends that are Null: they make the sum Null, and it stays so
  WideMoney money = 0;
  double units = 0;
  double magnitude = 0;  ///< of the addends that are units, without their signs
};

/// The transactions of one asset in one period, as the file engine adds them up.
struct Group {
  rt::Value assetID;
  std::optional<int> year;
  std::optional<int> period;
  std::int64_t transactions = 0;
  std::array<Sum, kSums> sums;
};

std::string GroupQuery(const std::string& condition) {
  std::string sql = "SELECT [Asset ID], [Year], [Period], COUNT(*)";
  for (const CostColumn& column : kAssetCostColumns) {
    const std::string name = "[" + std::string(column.transaction) + "]";
    sql += ", COUNT(" + name + "), SUM(" + name + ")";
    if (!IsMoney(column.transaction)) sql += ", SUM(ABS(" + name + "))";
  }
  return sql + " FROM [Maintenance Transactions] WHERE " + condition +
         " GROUP BY [Asset ID], [Year], [Period]";
}

/// The groups as the file engine adds them up. Throws StoreError if a sum of money overflows there.
std::vector<Group> GroupsByQuery(store::Connection& connection, const std::string& condition) {
  const auto rows = store::Cursor::OpenQuery(connection.shared_from_this(), GroupQuery(condition),
                                             store::Locking::ReadOnly);
  std::vector<Group> groups;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    Group& group = groups.emplace_back();
    group.assetID = rows->Get(0);
    group.year = NumberKey(rows->Get(1));
    group.period = NumberKey(rows->Get(2));
    group.transactions = rows->Get(3).AsLong();
    int field = 4;
    for (std::size_t i = 0; i < kSums; ++i) {
      Sum& sum = group.sums[i];
      const bool money = IsMoney(kAssetCostColumns[i].transaction);
      sum.nulls = group.transactions - rows->Get(field++).AsLong();
      const rt::Value total = rows->Get(field++);
      if (money && !total.IsNull()) sum.money = total.AsCurrency().Units();
      if (!money) {
        const rt::Value magnitude = rows->Get(field++);
        if (!total.IsNull()) sum.units = total.AsDouble();
        if (!magnitude.IsNull()) sum.magnitude = magnitude.AsDouble();
      }
    }
  }
  return groups;
}

/// The same, added up here one transaction at a time.
std::vector<Group> GroupsByRow(store::Connection& connection, const std::string& condition) {
  std::string sql = "SELECT [Asset ID], [Year], [Period]";
  for (const CostColumn& column : kAssetCostColumns) sql += ", [" + std::string(column.transaction) + "]";
  const auto rows = store::Cursor::OpenQuery(connection.shared_from_this(),
                                             sql + " FROM [Maintenance Transactions] WHERE " + condition,
                                             store::Locking::ReadOnly);
  std::map<Key, Group> groups;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const Key key{OwnerKey(rows->Get(0)), NumberKey(rows->Get(1)), NumberKey(rows->Get(2))};
    Group& group = groups[key];
    group.assetID = rows->Get(0);
    group.year = std::get<1>(key);
    group.period = std::get<2>(key);
    ++group.transactions;
    for (std::size_t i = 0; i < kSums; ++i) {
      Sum& sum = group.sums[i];
      const rt::Value value = rows->Get(static_cast<int>(i) + 3);
      if (value.IsNull()) {
        ++sum.nulls;
      } else if (IsMoney(kAssetCostColumns[i].transaction)) {
        sum.money += value.AsCurrency().Units();
      } else {
        sum.units += value.AsDouble();
        sum.magnitude += std::abs(value.AsDouble());
      }
    }
  }
  std::vector<Group> found;
  for (auto& [key, group] : groups) found.push_back(std::move(group));
  return found;
}

void ForEachGroup(store::Connection& connection, const std::string& condition,
                  const std::function<void(const Group&)>& use) {
  std::vector<Group> groups;
  // Amounts that overflow a sum of the engine are added up here. Any other error is thrown again there.
  if (Try([&] { groups = GroupsByQuery(connection, condition); }))
    groups = GroupsByRow(connection, condition);
  for (const Group& group : groups) use(group);
}

/// The sums that a row of a cost table should have, and what is known of the transactions that have been in
/// it.
struct Expected {
  rt::Value owner;
  std::int64_t posted = 0;
  std::int64_t additions = 0;  ///< transactions that are in the sums or have been in them
  std::vector<Sum> sums;
  std::vector<double> magnitudes;          ///< over all those additions
  std::vector<std::int64_t> waitingNulls;  ///< addends that are Null in transactions that wait for posting
};

/// One cost table with the columns that it adds up.
struct Table {
  const CostTableKind* kind = nullptr;
  std::vector<std::string> columns;
  std::vector<std::size_t> sources;  ///< positions in kAssetCostColumns
  std::map<Key, Expected> rows;

  explicit Table(const CostTableKind& tableKind) : kind(&tableKind) {
    if (tableKind.owner == CostOwner::Asset) {
      for (std::size_t i = 0; i < kSums; ++i) Take(kAssetCostColumns[i].accumulator, i);
      return;
    }
    for (const CostColumn& column : kFuelCostColumns) {
      for (std::size_t i = 0; i < kSums; ++i) {
        if (std::string_view(kAssetCostColumns[i].transaction) == column.transaction)
          Take(column.accumulator, i);
      }
    }
  }

  void Take(const char* column, std::size_t source) {
    columns.emplace_back(column);
    sources.push_back(source);
  }

  Expected& RowOf(const Group& group, const rt::Value& fuelType) {
    const rt::Value& owner = kind->owner == CostOwner::Asset ? group.assetID : fuelType;
    Key key{OwnerKey(owner), group.year, group.period};
    if (kind->span == CostSpan::Life) std::get<1>(key).reset();
    if (kind->span != CostSpan::Period) std::get<2>(key).reset();
    Expected& row = rows[key];
    if (row.sums.empty()) {
      row.owner = owner;
      row.sums.resize(columns.size());
      row.magnitudes.resize(columns.size());
      row.waitingNulls.resize(columns.size());
    }
    return row;
  }
};

/// Nothing shows for certain whether a transaction was once in the sums. But if a transaction that waits has
/// totals, a posting has left them, so it was.
constexpr const char* kPosted = "[When Posted] IS NOT Null";
constexpr const char* kWaiting = "[When Posted] IS Null";
constexpr const char* kUnposted =
    "[When Posted] IS Null AND ([Total Internal Cost] <> 0 OR [Total Outside Cost] <> 0 OR "
    "[Total Internal Cost] IS Null OR [Total Outside Cost] IS Null)";

void AddPosted(Expected& row, const Group& group, const Table& table) {
  row.posted += group.transactions;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const Sum& from = group.sums[table.sources[i]];
    Sum& to = row.sums[i];
    to.nulls += from.nulls;
    to.money += from.money;
    to.units += from.units;
  }
}

void AddMagnitudes(Expected& row, const Group& group, const Table& table) {
  row.additions += group.transactions;
  for (std::size_t i = 0; i < table.columns.size(); ++i)
    row.magnitudes[i] += group.sums[table.sources[i]].magnitude;
}

void AddWaitingNulls(Expected& row, const Group& group, const Table& table) {
  for (std::size_t i = 0; i < table.columns.size(); ++i)
    row.waitingNulls[i] += group.sums[table.sources[i]].nulls;
}

std::vector<Table> ExpectedTables(store::Connection& connection) {
  std::map<std::string, rt::Value> fuelTypes;  // of the assets on file, as they are now
  const auto assets =
      store::Cursor::OpenQuery(connection.shared_from_this(),
                               "SELECT [Asset ID], [Fuel Type] FROM [Vehicles]", store::Locking::ReadOnly);
  for (; !assets->AtEnd(); assets->MoveNext()) {
    if (const auto key = OwnerKey(assets->Get(0))) fuelTypes.emplace(*key, assets->Get(1));
  }

  std::vector<Table> tables;
  tables.reserve(std::size(kCostTables));
  for (const CostTableKind& kind : kCostTables) tables.emplace_back(kind);
  using Use = void (*)(Expected&, const Group&, const Table&);
  const auto collect = [&](const char* condition, std::vector<Use> uses) {
    ForEachGroup(connection, condition, [&](const Group& group) {
      const auto key = OwnerKey(group.assetID);
      const auto asset = key ? fuelTypes.find(*key) : fuelTypes.end();
      if (asset == fuelTypes.end()) return;
      for (Table& table : tables) {
        Expected& row = table.RowOf(group, asset->second);
        for (const Use use : uses) use(row, group, table);
      }
    });
  };
  collect(kPosted, {AddPosted, AddMagnitudes});
  collect(kUnposted, {AddMagnitudes});
  collect(kWaiting, {AddWaitingNulls});
  return tables;
}

/// The sums of the first row that a cost table has for a key, and the number of such rows. Older files have
/// several rows of a key with a Null in it; a re-post that clears first leaves one.
struct Stored {
  rt::Value owner;
  std::vector<rt::Value> sums;
  std::int64_t rows = 0;
};

std::map<Key, Stored> ReadStored(store::Connection& connection, const Table& table) {
  std::string sql = "SELECT [" + std::string(OwnerColumn(table.kind->owner)) + "]";
  if (table.kind->span != CostSpan::Life) sql += ", [Fiscal Year]";
  if (table.kind->span == CostSpan::Period) sql += ", [Period]";
  for (const std::string& column : table.columns) sql += ", [" + column + "]";
  sql += " FROM [" + std::string(table.kind->table) + "]";
  const auto rows = store::Cursor::OpenQuery(connection.shared_from_this(), sql, store::Locking::ReadOnly);
  std::map<Key, Stored> found;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    int field = 0;
    const rt::Value owner = rows->Get(field++);
    Key key{OwnerKey(owner), std::nullopt, std::nullopt};
    if (table.kind->span != CostSpan::Life) std::get<1>(key) = NumberKey(rows->Get(field++));
    if (table.kind->span == CostSpan::Period) std::get<2>(key) = NumberKey(rows->Get(field++));
    auto [place, added] = found.try_emplace(key);
    ++place->second.rows;
    if (!added) continue;
    place->second.owner = owner;
    for (std::size_t i = 0; i < table.columns.size(); ++i) place->second.sums.push_back(rows->Get(field++));
  }
  return found;
}

std::string Shown(const rt::Value& value) { return value.IsNull() ? "Null" : value.AsText(); }

std::string KeyText(const rt::Value& owner, const Key& key, CostSpan span) {
  const auto number = [](const std::optional<int>& n) {
    return n ? std::to_string(*n) : std::string("Null");
  };
  std::string text = Shown(owner);
  if (span != CostSpan::Life) text += ", " + number(std::get<1>(key));
  if (span == CostSpan::Period) text += ", " + number(std::get<2>(key));
  return text;
}

std::string ExpectedText(const Sum& sum, bool money) {
  if (sum.nulls > 0) return "Null";
  if (!money) return rt::PlainText(static_cast<float>(sum.units));
  if (sum.money > INT64_MAX || sum.money < INT64_MIN) return "an amount that the column cannot hold";
  return rt::Currency::FromUnits(static_cast<std::int64_t>(sum.money)).PlainText();
}

/// Whether the stored sum is the sum of the transactions.
///
/// Each addition of Singles rounds by at most 2^-24 of the sum so far, which never exceeds the sum of all
/// magnitudes: n additions in any order stay within n * 2^-24 * magnitude. A few more allow for converting
/// the expected sum into a Single.
///
/// A Null addend makes the sum Null, and it stays Null when the transaction is unposted. So a stored Null is
/// correct if a posted addend is Null, or if a transaction that waits has a Null that it may have left there.
/// A re-post that clears first repairs any other Null.
bool Agrees(const rt::Value& stored, const Expected& expected, std::size_t i, bool money) {
  const Sum& sum = expected.sums[i];
  if (stored.IsNull()) return sum.nulls > 0 || expected.waitingNulls[i] > 0;
  if (sum.nulls > 0) return false;
  if (money) return stored.AsCurrency().Units() == sum.money;
  const double value = stored.AsDouble();
  const double tolerance = static_cast<double>(expected.additions + 4) * std::ldexp(1.0, -24) *
                           (expected.magnitudes[i] + std::abs(value));
  return std::abs(value - sum.units) <= tolerance;
}

void CompareRow(const Table& table, const Key& key, const Stored& stored, const Expected& expected,
                std::vector<CostDifference>& differences) {
  const std::string keyText = KeyText(stored.owner, key, table.kind->span);
  if (stored.rows > 1) {
    differences.push_back(
        {table.kind->table, keyText, "", std::to_string(stored.rows) + " rows", "there can be only one"});
    return;
  }
  std::string leftOver;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const bool money = IsMoney(table.columns[i]);
    if (Agrees(stored.sums[i], expected, i, money)) continue;
    if (expected.posted == 0) {
      leftOver += (leftOver.empty() ? "" : ", ") + table.columns[i] + " " + Shown(stored.sums[i]);
    } else {
      differences.push_back({table.kind->table, keyText, table.columns[i], Shown(stored.sums[i]),
                             ExpectedText(expected.sums[i], money)});
    }
  }
  if (!leftOver.empty()) differences.push_back({table.kind->table, keyText, "", leftOver, "no transactions"});
}

}  // namespace

std::vector<CostDifference> CheckCosts(store::Connection& connection) {
  std::vector<CostDifference> differences;
  for (const Table& table : ExpectedTables(connection)) {
    const std::map<Key, Stored> stored = ReadStored(connection, table);
    Expected none;
    none.sums.resize(table.columns.size());
    none.magnitudes.resize(table.columns.size());
    none.waitingNulls.resize(table.columns.size());
    for (const auto& [key, row] : stored) {
      const auto expected = table.rows.find(key);
      CompareRow(table, key, row, expected == table.rows.end() ? none : expected->second, differences);
    }
    for (const auto& [key, expected] : table.rows) {
      if (expected.posted == 0 || stored.contains(key)) continue;
      differences.push_back(
          {table.kind->table, KeyText(expected.owner, key, table.kind->span), "", "no row",
           std::to_string(expected.posted) + (expected.posted == 1 ? " transaction" : " transactions")});
    }
  }
  return differences;
}

}  // namespace dw
