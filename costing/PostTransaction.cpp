#include "costing/PostTransaction.h"

#include "data/BrackenfelGlobals.h"
#include "data/GenericTools.h"
#include "platform/runtime/Clock.h"
#include "platform/runtime/Text.h"
#include "platform/screen/Screen.h"

namespace dw {
namespace {

bool SameAsset(const rt::Value& a, const rt::Value& b) {
  return a == b || rt::EqualNoCase(a.Shown(), b.Shown());
}

}  // namespace

TransactionPoster::TransactionPoster(dao::Workspace& workspace, dao::Database& database,
                                     dao::Recordset& transactions, const Accumulators& accumulators)
    : workspace_(workspace),
      transactions_(transactions),
      fields_(transactions),
      tables_(CostTablesOf(accumulators)),
      fuelTypes_(database) {
  for (const char* column : {"Internal Fuel Cost", "Oil Cost", "Internal Time Cost", "Parts Cost"}) {
    internalCosts_.push_back(transactions.FieldIndex(column));
  }
  for (const char* column : {"Outside Oil Cost", "Outside Fuel Cost", "Outside Cost"}) {
    outsideCosts_.push_back(transactions.FieldIndex(column));
  }
}

bool TransactionPoster::Waiting() {
  const auto whenPosted = GetUnlessDeleted(transactions_, fields_.whenPosted);
  return whenPosted && whenPosted->IsNull();
}

bool TransactionPoster::PostTransaction(PostingCounts& counts) {
  const rt::Value assetID = transactions_.Get(fields_.assetID);
  const std::optional<rt::Value> fuelType = fuelTypes_.Of(assetID);
  if (!fuelType) return false;

  RowTransaction row(workspace_, dao::Commit::WithGroup);
  if (DaoEditRecord(transactions_) != 0) {
    RequireDataFile();
    screen::MessageBox("Unable to lock transaction for updating.", screen::Icon::Critical);
    row.Commit();
    return false;
  }
  // The wait for the record may have been a wait for another posting run, which has counted the row then.
  // Also, if the row has been given another asset meanwhile, the sums of this one must not change; the next
  // run posts it.
  if (!transactions_.Get(fields_.whenPosted).IsNull() ||
      !SameAsset(transactions_.Get(fields_.assetID), assetID)) {
    transactions_.CancelUpdate();
    row.Commit();
    return false;
  }

  transactions_.Set(fields_.whenPosted, rt::Now());
  WriteTotals();
  // Somebody may have changed the asset during the wait for the record.
  const CostFigures figures = fields_.Read(transactions_, fuelTypes_.Of(assetID).value_or(*fuelType));
  for (CostTable& table : tables_) table.Post(figures, counts);
  DaoUpdateRecord(transactions_);
  const bool stored = !transactions_.Editing();
  if (!stored) transactions_.CancelUpdate();
  row.Commit();
  return stored;
}

void TransactionPoster::WriteTotals() {
  transactions_.Set(fields_.totalInternalCost, SumOf(internalCosts_));
  transactions_.Set(fields_.totalOutsideCost, SumOf(outsideCosts_));
}

rt::Value TransactionPoster::SumOf(const std::vector<int>& columns) {
  rt::Value sum = transactions_.Get(columns.front());
  for (std::size_t i = 1; i < columns.size(); ++i) sum = rt::Add(sum, transactions_.Get(columns[i]));
  return sum;
}

}  // namespace dw
