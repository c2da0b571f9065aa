#include "costing/RowGroup.h"

#include <exception>

#include "costing/CostRows.h"
#include "data/BrackenfelGlobals.h"
#include "data/GenericTools.h"

namespace dw {

RowTransaction::RowTransaction(dao::Workspace& workspace, dao::Commit how)
    : workspace_(workspace), how_(how) {
  workspace_.BeginTrans();
}

RowTransaction::~RowTransaction() {
  if (committed_) return;
  try {
    workspace_.RollbackTrans();
  } catch (const std::exception&) {
    // The earlier error is the one to report.
  }
}

void RowTransaction::Commit() {
  workspace_.CommitTrans(how_);
  committed_ = true;
}

void RequireDataFile() {
  if (FileExists(DataFile)) return;
  throw dao::StoreError(store::kPathNotFound,
                        "'" + DataFile + "' is no longer there. What the run has done so far is complete.");
}

void RowGroup::Enter() {
  const auto now = std::chrono::steady_clock::now();
  if (now - looked_ >= std::chrono::milliseconds(5)) {
    looked_ = now;
    RequireDataFile();
  }
  workspace_.EnterGroup();
}

RowGroup::~RowGroup() {
  try {
    Finish();
  } catch (const std::exception&) {
    // The earlier error is the one to report.
  }
}

std::optional<rt::Value> AssetFuelTypes::Of(const rt::Value& assetID) {
  const std::uint64_t glance = database_.Glance();
  const bool stillTrue = glance != 0 && glance == glance_;
  if (stillTrue && assetID == last_) return lastType_;
  if (!stillTrue) known_.clear();
  glance_ = glance;
  last_ = assetID;
  const std::string code = assetID.Shown();
  const auto known = known_.find(code);
  if (known != known_.end()) return lastType_ = known->second;
  const DaoRecordsetPtr asset =
      database_.OpenRecordset(AssetQuery(assetID), dao::RecordsetType::Dynaset, dao::Access::ReadOnly);
  std::optional<rt::Value> fuelType;
  if (!asset->AtEnd()) fuelType = asset->Get("Fuel Type");
  known_.emplace(code, fuelType);
  return lastType_ = fuelType;
}

}  // namespace dw
