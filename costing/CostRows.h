// Rows of the five cost tables: their keys, their sums, and how a transaction is added to them and
// subtracted.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "costing/Posting.h"
#include "platform/runtime/Value.h"

namespace dw {

/// The figures that one transaction adds to the cost tables.
struct CostFigures {
  rt::Value assetID;
  rt::Value year;
  rt::Value period;
  rt::Value fuelType;  ///< of the asset, as it is now
  std::array<rt::Value, 12> asset;
  std::array<rt::Value, 4> fuel;
};

/// The positions of the columns of `Maintenance Transactions` in a recordset, found once so that loops need
/// no names.
struct TransactionFields {
  explicit TransactionFields(const dao::Recordset& transactions);
  /// Reads the recordset's current row, or its edit buffer.
  CostFigures Read(dao::Recordset& transactions, const rt::Value& fuelType) const;

  int assetID;
  int year;
  int period;
  int whenPosted;
  int totalInternalCost;
  int totalOutsideCost;
  std::array<int, 12> asset;
  std::array<std::size_t, 4> fuel;  ///< which of the asset's figures they are
};

enum class CostOwner { Asset, FuelType };
enum class CostSpan { Period, Year, Life };

/// One of the five cost tables: its key, and the words for what can fail there.
struct CostTableKind {
  const char* table;
  const char* index;
  CostOwner owner;
  CostSpan span;
  const char* lockedWhenAdding;
  const char* lockedWhenSubtracting;
  const char* notFound;
};
/// In the order in which a transaction is added to them.
extern const std::array<CostTableKind, 5> kCostTables;
/// "Asset ID" or "Fuel Type ID".
const char* OwnerColumn(CostOwner owner);

/// A cost table that is open on its index.
class CostTable {
 public:
  CostTable(const CostTableKind& kind, DaoRecordsetPtr rows);

  /// Adds the figures to their row, and makes the row if there is none. A row that another user holds is
  /// reported and left unchanged.
  void Post(const CostFigures& figures, PostingCounts& counts);
  /// Subtracts the figures from their row. Reports a row that is missing or that another user holds. Never
  /// makes or removes a row.
  void Unpost(const CostFigures& figures);

 private:
  using Direction = store::Direction;
  void TakeKey(const CostFigures& figures);
  bool ChangeAtOnce(const CostFigures& figures, Direction direction);
  bool Find();
  bool AddRow(const CostFigures& figures);
  bool ChangeRow(const CostFigures& figures, Direction direction);
  const rt::Value& Figure(const CostFigures& figures, std::size_t sum) const;

  const CostTableKind* kind_;
  DaoRecordsetPtr rows_;
  std::vector<int> keyFields_;
  std::vector<int> sumFields_;
  std::vector<rt::Value> key_;
};

/// The five tables in the order of kCostTables.
std::vector<CostTable> CostTablesOf(const Accumulators& accumulators);

/// A value of the recordset's current row; empty if another user has deleted the row meanwhile.
std::optional<rt::Value> GetUnlessDeleted(dao::Recordset& rows, int field);

/// The query for the asset of a transaction.
std::string AssetQuery(const rt::Value& assetID);

}  // namespace dw
