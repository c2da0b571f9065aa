// Where the analysis of what is due takes the facts of an asset from.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/runtime/Value.h"

namespace dw {

/// A reading, or a transaction as one. Each value may be Null, or of a wrong kind where the file holds such a
/// value: then its conversion throws.
struct DatedMileage {
  rt::Value date;
  rt::Value mileage;
};

/// A line of an asset's schedule.
struct DueLine {
  std::int32_t typeID = 0;  ///< 0 where the line has no type
  std::string type;         ///< the type's description, empty where there is no type
  rt::Value months;
  rt::Value usage;
};

/// The facts of assets, each asked for by the asset's code. What they throw says that the facts of this asset
/// cannot be had.
class DueSource {
 public:
  virtual ~DueSource() = default;
  /// The reading with the newest date. Readings without a date count as the oldest.
  virtual std::optional<DatedMileage> NewestReading(const std::string& assetID) = 0;
  /// The transaction with the highest mileage, which is above 0.
  virtual std::optional<DatedMileage> HighestTransaction(const std::string& assetID) = 0;
  /// Calls `look` for each line by ascending ID. False where the asset has no schedule.
  virtual bool ForEachLine(const std::string& assetID, const std::function<void(const DueLine&)>& look) = 0;
  /// The newest transaction in which maintenance of the line's type was performed.
  virtual std::optional<DatedMileage> LastPerformance(const std::string& assetID, const DueLine& line) = 0;
};

}  // namespace dw
