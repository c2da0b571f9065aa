// The parts of the sample that share its dates and prices.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/runtime/Value.h"
#include "tools/dwadmin/Dice.h"
#include "tools/dwadmin/RowWriter.h"

namespace dw::sample {

/// The days that the data covers, numbered from 0.
class Span {
 public:
  Span(const rt::DateTime& until, int years);
  int Days() const { return days_; }
  /// Also for days before and after the span.
  rt::DateTime Day(int day) const;
  rt::DateTime First() const { return Day(0); }
  rt::DateTime Last() const { return Day(days_ - 1); }

 private:
  std::chrono::local_days first_;
  int days_;
};

/// The prices in force on each day, as the price tables have them.
class Prices {
 public:
  struct Labor {
    rt::DateTime upTo;  ///< a row applies to the days up to its effective date
    rt::Currency hourly;
    rt::Currency oil;
  };
  struct Fuel {
    rt::DateTime from;
    rt::Currency price;
  };

  Prices(const Span& span, Dice& dice);
  rt::Currency FuelOn(int fuel, const rt::DateTime& date) const;
  const Labor& LaborOn(const rt::DateTime& date) const;
  /// Monthly prices of a fuel type, the oldest first. Those without a pump of our own are the prices of
  /// stations.
  const std::vector<Fuel>& OfFuel(int fuel) const { return fuels_.at(static_cast<std::size_t>(fuel - 1)); }
  const std::vector<Labor>& OfLabor() const { return labor_; }

 private:
  std::vector<std::vector<Fuel>> fuels_;
  std::vector<Labor> labor_;
};

/// The name that is stored as the maker of a row.
constexpr const char* kAdministrator = "ADMIN";
constexpr const char* kClerk = "CLERK";

/// Divisions, classes, fuel and maintenance types, price tables and fiscal calendar.
void WriteTables(dao::Database& database, Batch& batch, const Span& span, const Prices& prices);
/// The assets with all that belongs to them, and the `Parameters` row, which names the asset for removed
/// ones.
void WriteFleet(dao::Database& database, Batch& batch, const Span& span, const Prices& prices, int assets,
                std::uint32_t seed, const std::function<void(int percent)>& progress);
/// Users, workstations and their log; application lists; stored select and sort definitions.
void WriteUsers(const std::string& directory, const Span& span);
void WriteLists(const std::string& directory);
void WriteQueries(const std::string& directory, const Span& span);

}  // namespace dw::sample
