// The source of an asset's facts for the analysis of what is due.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/runtime/Value.h"

namespace dw {

/// A reading, or a transaction taken as one. Each value may be Null, or of a wrong kind if the file has such
/// a value: its conversion throws then.
struct DatedMileage {
  rt::Value date;
  rt::Value mileage;
};

/// A line of an asset's schedule.
struct DueLine {
  std::int32_t typeID = 0;  ///< 0 if the line has no type
  std::string type;         ///< the type's description, empty if there is no type
  rt::Value months;
  rt::Value usage;
};

/// The facts of assets, each found by the asset's code. An exception means that the facts of this asset
/// cannot be found.
class DueSource {
 public:
  virtual ~DueSource() = default;
  /// The reading with the newest date. Readings without a date count as the oldest.
  virtual std::optional<DatedMileage> NewestReading(const std::string& assetID) = 0;
  /// The transaction with the highest mileage, which is above 0.
  virtual std::optional<DatedMileage> HighestTransaction(const std::string& assetID) = 0;
  /// Calls `look` for each line by ascending ID. False if the asset has no schedule.
  virtual bool ForEachLine(const std::string& assetID, const std::function<void(const DueLine&)>& look) = 0;
  /// The newest transaction in which maintenance of the line's type was performed.
  virtual std::optional<DatedMileage> LastPerformance(const std::string& assetID, const DueLine& line) = 0;
};

}  // namespace dw
