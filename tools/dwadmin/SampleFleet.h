// The assets of the sample and the work that they need.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/dwadmin/Dice.h"
#include "tools/dwadmin/SampleFacts.h"
#include "tools/dwadmin/SampleParts.h"

namespace dw::sample {

/// A line of an asset's schedule, and when its work was done last.
struct ScheduleLine {
  int type = 0;  ///< `Maintenance Types`.`ID`
  int months = 0;
  int usage = 0;  ///< miles or hours
  int lastDay = 0;
  std::int64_t lastMeter = 0;  ///< tenths
};

struct SampleAsset {
  explicit SampleAsset(std::uint64_t seed) : dice(seed) {}

  Dice dice;  ///< each asset has its own, so that its history does not depend on its neighbors
  std::string code;
  const ClassFacts* group = nullptr;
  int fuel = 0;
  int purchaseDay = 0;
  int firstDay = 0;  ///< of its service within the span
  int lastDay = 0;
  bool purchaseKnown = true;
  bool brandNew = false;     ///< nothing has happened to it yet
  bool handEntered = false;  ///< its rows were typed by someone who leaves zeros out
  int ownFuelShare = 0;      ///< percentage of the fuel that it draws from our own pump
  int dailyUsage = 0;        ///< tenths

  // The state at the current day while its history is made.
  std::int64_t meter = 0;  ///< tenths of a mile or hour
  int meterDay = 0;
  std::int64_t meterAtFuel = 0;
  bool visitPlanned = false;
  std::vector<ScheduleLine> schedule;

  /// Moves the meter on to the day.
  void Drive(int day);
  /// The months or the usage since the work was last done have reached its frequency.
  bool IsDue(const ScheduleLine& line, int day) const;
};

/// Adds the assets and their schedules, and returns them ready for their history.
std::vector<SampleAsset> WriteAssets(dao::Database& database, Batch& batch, const Span& span, int assets,
                                     std::uint32_t seed);
/// Adds readings, transactions and performed maintenance, day by day, as an office would.
void WriteHistory(dao::Database& database, Batch& batch, const Span& span, const Prices& prices,
                  std::vector<SampleAsset>& assets, const std::function<void(int percent)>& progress);

}  // namespace dw::sample
