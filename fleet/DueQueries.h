// The facts of one asset, each by a query of its own.
#pragma once

#include <functional>

#include "data/GenericADO.h"
#include "fleet/DueSource.h"

namespace dw {

/// A column of one query. Its position is looked up at the first row and kept for all recordsets of that
/// query.
class DueColumn {
 public:
  explicit DueColumn(const char* name) : name_(name) {}
  rt::Value Of(ado::Recordset& recordset);

 private:
  const char* name_;
  int field_ = -1;
};

/// What `read` returns; empty if another user has deleted the row since its key was read.
template <class Read>
auto UnlessDeleted(Read read) -> std::optional<decltype(read())> {
  try {
    return read();
  } catch (const ado::Error& error) {
    if (error.Native() != store::kRecordDeleted) throw;
    return std::nullopt;
  }
}

/// Reads the facts from the file. The code of the asset goes into the query unchanged, so an apostrophe in it
/// breaks the query.
class DueQueries : public DueSource {
 public:
  /// Opens a recordset. Throws what the caller of the analysis has to handle.
  using Opener = std::function<AdoRecordsetPtr(const std::string& sql)>;
  explicit DueQueries(Opener open) : open_(std::move(open)) {}

  std::optional<DatedMileage> NewestReading(const std::string& assetID) override;
  std::optional<DatedMileage> HighestTransaction(const std::string& assetID) override;
  bool ForEachLine(const std::string& assetID, const std::function<void(const DueLine&)>& look) override;
  std::optional<DatedMileage> LastPerformance(const std::string& assetID, const DueLine& line) override;

 private:
  std::optional<DatedMileage> First(const std::string& sql, DueColumn& date, DueColumn& mileage);

  Opener open_;
  DueColumn readingDate_{"Date"};
  DueColumn readingMileage_{"Mileage"};
  DueColumn transactionDate_{"Transaction Date"};
  DueColumn transactionMileage_{"Mileage"};
  DueColumn typeID_{"Type ID"};
  DueColumn typeText_{"Maintenance Types.Description"};
  DueColumn months_{"Monthly Frequently"};
  DueColumn usage_{"Usage Frequency"};
  DueColumn performedDate_{"Transaction Date"};
  DueColumn performedMileage_{"Mileage"};
};

}  // namespace dw
