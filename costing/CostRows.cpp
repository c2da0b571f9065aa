#include "costing/CostRows.h"

#include <algorithm>
#include <utility>

#include "platform/screen/Screen.h"

namespace dw {

const std::array<CostColumn, 12> kAssetCostColumns{{
    {"Internal Fuel Units", "Internal Fuel Units"},
    {"Internal Fuel Cost", "Internal Fuel Cost"},
    {"Oil Units", "Oil"},
    {"Oil Cost", "Oil Cost"},
    {"Internal Time", "Time"},
    {"Internal Time Cost", "Internal Time Cost"},
    {"Outside Fuel Units", "Outside Fuel Units"},
    {"Outside Fuel Cost", "Outside Fuel Cost"},
    {"Outside Parts Cost", "Outside Cost"},
    {"Internal Parts Cost", "Parts Cost"},
    {"Total Internal Cost", "Total Internal Cost"},
    {"Total Outside Cost", "Total Outside Cost"},
}};

const std::array<CostColumn, 4> kFuelCostColumns{{
    {"Internal Units", "Internal Fuel Units"},
    {"Internal Cost", "Internal Fuel Cost"},
    {"Outside Units", "Outside Fuel Units"},
    {"Outside Cost", "Outside Fuel Cost"},
}};

// "Annual" in the message about a missing period row of fuel, and the one singular "cost.", are the words
// that users know.
const std::array<CostTableKind, 5> kCostTables{{
    {"Assets Period Costs", "Assets by Period", CostOwner::Asset, CostSpan::Period,
     "Unable to update period costs.", "Unable to update Period Costs.",
     "Could not find Asset Period Cost record."},
    {"Assets Annual Costs", "Assets by Year", CostOwner::Asset, CostSpan::Year,
     "Unable to update annual costs.", "Unable to update Annual Costs.",
     "Could not find Asset Annual Cost record."},
    {"Assets Lifetime Costs", "By Asset ID", CostOwner::Asset, CostSpan::Life,
     "Unable to update lifetime costs.", "Unable to update Lifetime Costs.",
     "Could not find Asset Lifetime Cost record."},
    {"Fuel Period Costs", "Fuel By Period", CostOwner::FuelType, CostSpan::Period,
     "Unable to update fuel's period costs.", "Unable to update Fuel Costs.",
     "Could not find Fuel Annual Cost record."},
    {"Fuel Annual Costs", "Fuel By Year", CostOwner::FuelType, CostSpan::Year,
     "Unable to update fuel's annual cost.", "Unable to update Annual Fuel Costs.",
     "Could not find Fuel Annual Cost record."},
}};

const char* OwnerColumn(CostOwner owner) { return owner == CostOwner::Asset ? "Asset ID" : "Fuel Type ID"; }

TransactionFields::TransactionFields(const dao::Recordset& transactions)
    : assetID(transactions.FieldIndex("Asset ID")),
      year(transactions.FieldIndex("Year")),
      period(transactions.FieldIndex("Period")),
      whenPosted(transactions.FieldIndex("When Posted")),
      totalInternalCost(transactions.FieldIndex("Total Internal Cost")),
      totalOutsideCost(transactions.FieldIndex("Total Outside Cost")),
      asset{},
      fuel{} {
  for (std::size_t i = 0; i < asset.size(); ++i) {
    asset[i] = transactions.FieldIndex(kAssetCostColumns[i].transaction);
  }
  for (std::size_t i = 0; i < fuel.size(); ++i) {
    const int column = transactions.FieldIndex(kFuelCostColumns[i].transaction);
    fuel[i] = static_cast<std::size_t>(std::find(asset.begin(), asset.end(), column) - asset.begin());
  }
}

CostFigures TransactionFields::Read(dao::Recordset& transactions, const rt::Value& fuelType) const {
  CostFigures figures;
  figures.assetID = transactions.Get(assetID);
  figures.year = transactions.Get(year);
  figures.period = transactions.Get(period);
  figures.fuelType = fuelType;
  for (std::size_t i = 0; i < asset.size(); ++i) figures.asset[i] = transactions.Get(asset[i]);
  for (std::size_t i = 0; i < fuel.size(); ++i) figures.fuel[i] = figures.asset[fuel[i]];
  return figures;
}

CostTable::CostTable(const CostTableKind& kind, DaoRecordsetPtr rows) : kind_(&kind), rows_(std::move(rows)) {
  keyFields_.push_back(rows_->FieldIndex(OwnerColumn(kind.owner)));
  if (kind.span != CostSpan::Life) keyFields_.push_back(rows_->FieldIndex("Fiscal Year"));
  if (kind.span == CostSpan::Period) keyFields_.push_back(rows_->FieldIndex("Period"));
  if (kind.owner == CostOwner::Asset) {
    for (const auto& column : kAssetCostColumns) sumFields_.push_back(rows_->FieldIndex(column.accumulator));
  } else {
    for (const auto& column : kFuelCostColumns) sumFields_.push_back(rows_->FieldIndex(column.accumulator));
  }
}

void CostTable::Post(const CostFigures& figures, PostingCounts& counts) {
  if (ChangeAtOnce(figures, Direction::Add)) {
    ++counts.changed;
  } else if (!Find()) {
    if (AddRow(figures)) ++counts.added;
  } else if (ChangeRow(figures, Direction::Add)) {
    ++counts.changed;
  } else {
    screen::MessageBox(kind_->lockedWhenAdding, screen::Icon::Critical);
  }
}

void CostTable::Unpost(const CostFigures& figures) {
  if (ChangeAtOnce(figures, Direction::Subtract)) return;
  if (!Find()) {
    screen::MessageBox(kind_->notFound, screen::Icon::Critical);
  } else if (!ChangeRow(figures, Direction::Subtract)) {
    screen::MessageBox(kind_->lockedWhenSubtracting, screen::Icon::Critical);
  }
}

void CostTable::TakeKey(const CostFigures& figures) {
  key_.resize(keyFields_.size());
  key_[0] = kind_->owner == CostOwner::Asset ? figures.assetID : figures.fuelType;
  if (kind_->span != CostSpan::Life) key_[1] = figures.year;
  if (kind_->span == CostSpan::Period) key_[2] = figures.period;
}

/// Usually the row is in the group's memory, where nobody else can change it. False if it is not.
bool CostTable::ChangeAtOnce(const CostFigures& figures, Direction direction) {
  TakeKey(figures);
  if (kind_->owner == CostOwner::Asset) return rows_->AddAtOnce(key_, sumFields_, figures.asset, direction);
  return rows_->AddAtOnce(key_, sumFields_, figures.fuel, direction);
}

bool CostTable::Find() {
  rows_->Seek(key_);
  return !rows_->NoMatch();
}

bool CostTable::AddRow(const CostFigures& figures) {
  DaoAddRecord(*rows_);
  if (!rows_->Editing()) return false;  // refused, reported, and given up by the user
  for (std::size_t i = 0; i < keyFields_.size(); ++i) rows_->Set(keyFields_[i], key_[i]);
  for (std::size_t i = 0; i < sumFields_.size(); ++i) rows_->Set(sumFields_[i], Figure(figures, i));
  DaoUpdateRecord(*rows_);
  if (!rows_->Editing()) return true;
  rows_->CancelUpdate();  // the failure was reported; the next transaction begins with a clean buffer
  return false;
}

bool CostTable::ChangeRow(const CostFigures& figures, Direction direction) {
  if (DaoEditRecord(*rows_) != 0) return false;
  for (std::size_t i = 0; i < sumFields_.size(); ++i) {
    const rt::Value sum = rows_->Get(sumFields_[i]);
    const rt::Value& figure = Figure(figures, i);
    rows_->Set(sumFields_[i], direction == Direction::Add ? rt::Add(sum, figure) : rt::Subtract(sum, figure));
  }
  DaoUpdateRecord(*rows_);
  if (rows_->Editing()) rows_->CancelUpdate();
  return true;
}

const rt::Value& CostTable::Figure(const CostFigures& figures, std::size_t sum) const {
  return kind_->owner == CostOwner::Asset ? figures.asset[sum] : figures.fuel[sum];
}

Accumulators Accumulators::Open(dao::Database& database) {
  const auto open = [&database](const CostTableKind& kind) {
    DaoRecordsetPtr rows = database.OpenRecordset(kind.table, dao::RecordsetType::Table);
    rows->SetIndex(kind.index);
    return rows;
  };
  return {open(kCostTables[0]), open(kCostTables[1]), open(kCostTables[2]), open(kCostTables[3]),
          open(kCostTables[4])};
}

void Accumulators::Close() {
  CloseObject(assetPeriod);
  CloseObject(assetAnnual);
  CloseObject(assetLifetime);
  CloseObject(fuelPeriod);
  CloseObject(fuelAnnual);
}

std::vector<CostTable> CostTablesOf(const Accumulators& accumulators) {
  return {CostTable(kCostTables[0], accumulators.assetPeriod),
          CostTable(kCostTables[1], accumulators.assetAnnual),
          CostTable(kCostTables[2], accumulators.assetLifetime),
          CostTable(kCostTables[3], accumulators.fuelPeriod),
          CostTable(kCostTables[4], accumulators.fuelAnnual)};
}

std::optional<rt::Value> GetUnlessDeleted(dao::Recordset& rows, int field) {
  try {
    return rows.Get(field);
  } catch (const dao::StoreError& error) {
    if (error.Number() != store::kRecordDeleted) throw;
    return std::nullopt;
  }
}

std::string AssetQuery(const rt::Value& assetID) {
  // The code goes in unchanged; a Null becomes an empty text, which is the code of no asset.
  return "SELECT * FROM [Vehicles] WHERE [Asset ID] = '" + assetID.Shown() + "'";
}

}  // namespace dw
