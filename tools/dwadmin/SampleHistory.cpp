// What happens to the sample's assets from day to day, as rows.
#include <algorithm>
#include <cstdio>
#include <iterator>

#include "tools/dwadmin/SampleFleet.h"

namespace dw::sample {
namespace {

/// Tenths as a Single: exactly the number that a person would type.
float Tenths(std::int64_t tenths) { return static_cast<float>(static_cast<double>(tenths) / 10.0); }
float Hours(int quarters) { return static_cast<float>(quarters) / 4.0F; }
rt::Currency Cents(std::int64_t cents) { return rt::Currency::FromUnits(cents * 100); }
/// What others charge: the amount with a margin, in whole cents.
rt::Currency Charged(rt::Currency amount, int percent) {
  return Cents((amount.Units() * percent / 100 + 50) / 100);
}

/// The figures of one transaction.
struct Entry {
  rt::Value workOrder;
  float fuelUnits = 0, oil = 0, hours = 0;
  rt::Currency fuelCost, oilCost, laborCost, partsCost;
  float outsideFuelUnits = 0, outsideOilUnits = 0;
  rt::Currency outsideFuelCost, outsideOilCost, outsideCost;
  rt::Value notes;
};

class History {
 public:
  History(dao::Database& database, Batch& batch, const Span& span, const Prices& prices,
          std::vector<SampleAsset>& assets);
  void Run(const std::function<void(int percent)>& progress);

 private:
  enum class Happening : std::uint8_t { Fuel, Reading, Visit, Repair, TopUp };
  struct Event {
    std::uint32_t asset;
    Happening what;
  };

  void Plan(const SampleAsset& asset, int day, Happening what);
  void Happen(SampleAsset& asset, Happening what);
  void Fuel(SampleAsset& asset);
  void Reading(SampleAsset& asset);
  void Visit(SampleAsset& asset);
  void Repair(SampleAsset& asset);
  void TopUp(SampleAsset& asset);
  std::int32_t Write(SampleAsset& asset, const Entry& entry);
  std::string WorkOrder();
  /// A time of the working day at which something was typed.
  rt::DateTime Typed(SampleAsset& asset) const;

  const Span& span_;
  const Prices& prices_;
  std::vector<SampleAsset>& assets_;
  std::vector<std::vector<Event>> days_;
  RowWriter transactions_;
  RowWriter performed_;
  RowWriter readings_;
  int day_ = 0;
  rt::DateTime date_;
  const Prices::Labor* labor_ = nullptr;
  int workOrders_ = 0;
};

History::History(dao::Database& database, Batch& batch, const Span& span, const Prices& prices,
                 std::vector<SampleAsset>& assets)
    : span_(span),
      prices_(prices),
      assets_(assets),
      days_(static_cast<std::size_t>(span.Days())),
      transactions_(batch, database, "Maintenance Transactions",
                    {"Asset ID",
                     "Transaction Date",
                     "Work Order Number",
                     "Year",
                     "Period",
                     "Mileage",
                     "Internal Fuel Units",
                     "Internal Fuel Cost",
                     "Oil",
                     "Oil Cost",
                     "Time",
                     "Internal Time Cost",
                     "Parts Cost",
                     "Outside Fuel Units",
                     "Outside Fuel Cost",
                     "Outside Oil Units",
                     "Outside Oil Cost",
                     "Outside Cost",
                     "Total Internal Cost",
                     "Total Outside Cost",
                     "Type_ID",
                     "Notes",
                     "Created By",
                     "Date Created"}),
      performed_(batch, database, "Maintenance_Performed",
                 {"Maintenance_Entry_ID", "Maintenance_Type_ID", "Cost", "Date_Created", "Created_By"}),
      readings_(batch, database, "Odometer Entries",
                {"Asset ID", "Date", "Mileage", "Created By", "Date Created"}) {}

void History::Plan(const SampleAsset& asset, int day, Happening what) {
  if (day > asset.lastDay) return;
  const auto index = static_cast<std::uint32_t>(&asset - assets_.data());
  days_[static_cast<std::size_t>(day)].push_back({index, what});
}

void History::Run(const std::function<void(int percent)>& progress) {
  for (SampleAsset& asset : assets_) {
    if (asset.brandNew) continue;
    Plan(asset, asset.firstDay, Happening::Reading);
    Plan(asset, asset.firstDay + asset.dice.Between(3, 17), Happening::Fuel);
    Plan(asset, asset.firstDay + asset.dice.Between(20, 150), Happening::Repair);
    if (asset.group->kind & kCombustion)
      Plan(asset, asset.firstDay + asset.dice.Between(20, 150), Happening::TopUp);
  }
  int reported = 0;
  for (day_ = 0; day_ < span_.Days(); ++day_) {
    date_ = span_.Day(day_);
    labor_ = &prices_.LaborOn(date_);
    std::vector<Event> today;
    today.swap(days_[static_cast<std::size_t>(day_)]);
    for (const Event& event : today) Happen(assets_[event.asset], event.what);
    const int percent = static_cast<int>(std::int64_t{100} * day_ / span_.Days());
    if (progress && percent != reported) progress(percent);
    reported = percent;
  }
}

void History::Happen(SampleAsset& asset, Happening what) {
  asset.Drive(day_);
  switch (what) {
    case Happening::Fuel:
      return Fuel(asset);
    case Happening::Reading:
      return Reading(asset);
    case Happening::Visit:
      return Visit(asset);
    case Happening::Repair:
      return Repair(asset);
    case Happening::TopUp:
      return TopUp(asset);
  }
}

void History::Fuel(SampleAsset& asset) {
  Dice& dice = asset.dice;
  const std::int64_t used = (asset.meter - asset.meterAtFuel) * asset.group->fuelPerThousand / 1000;
  const std::int64_t units = std::max<std::int64_t>(used * dice.Between(94, 106) / 100, 10);
  asset.meterAtFuel = asset.meter;
  const rt::Currency price = prices_.FuelOn(asset.fuel, date_);
  Entry entry;
  if (dice.Chance(asset.ownFuelShare)) {
    entry.fuelUnits = Tenths(units);
    entry.fuelCost = Multiply(entry.fuelUnits, price);
  } else {
    entry.outsideFuelUnits = Tenths(units);
    entry.outsideFuelCost = Charged(Multiply(entry.outsideFuelUnits, price), dice.Between(106, 118));
  }
  Write(asset, entry);
  Plan(asset, day_ + dice.Between(11, 23), Happening::Fuel);
}

void History::Reading(SampleAsset& asset) {
  Dice& dice = asset.dice;
  readings_.Add({asset.code, date_, Tenths(asset.meter), kClerk, Typed(asset)});
  // Not all due work is done at once, or there would be nothing left to remind anybody of.
  const bool due = std::any_of(asset.schedule.begin(), asset.schedule.end(),
                               [&](const ScheduleLine& line) { return asset.IsDue(line, day_); });
  if (due && !asset.visitPlanned && dice.Chance(75)) {
    const int day = day_ + dice.Between(1, 9);
    Plan(asset, day, Happening::Visit);
    asset.visitPlanned = true;
  }
  Plan(asset, day_ + dice.Between(26, 34), Happening::Reading);
}

void History::Visit(SampleAsset& asset) {
  Dice& dice = asset.dice;
  asset.visitPlanned = false;
  struct Task {
    ScheduleLine* line;
    rt::Currency cost;
  };
  std::vector<Task> tasks;
  int quarters = 0;
  int oil = 0;
  rt::Currency parts;
  for (ScheduleLine& line : asset.schedule) {
    if (!asset.IsDue(line, day_)) continue;
    const WorkFacts& work = kWork[line.type - 1];
    const int lineQuarters = std::max(work.labor + dice.Between(-1, 1), 1);
    const rt::Currency lineParts = Cents(work.parts * dice.Between(85, 120));
    tasks.push_back({&line, Multiply(Hours(lineQuarters), labor_->hourly) + lineParts +
                                Multiply(Tenths(work.oil), labor_->oil)});
    quarters += lineQuarters;
    oil += work.oil;
    parts = parts + lineParts;
  }
  if (tasks.empty()) return;
  Entry entry;
  entry.workOrder = WorkOrder();
  if (dice.Chance(20)) {
    entry.outsideOilUnits = Tenths(oil);
    entry.outsideOilCost = Charged(Multiply(entry.outsideOilUnits, labor_->oil), 140);
    entry.outsideCost = Charged(Multiply(Hours(quarters), labor_->hourly), 150) + Charged(parts, 125);
    entry.notes = "Done by the dealer.";
  } else {
    entry.hours = Hours(quarters);
    entry.laborCost = Multiply(entry.hours, labor_->hourly);
    entry.oil = Tenths(oil);
    entry.oilCost = Multiply(entry.oil, labor_->oil);
    entry.partsCost = parts;
  }
  const std::int32_t transaction = Write(asset, entry);
  for (const Task& task : tasks) {
    performed_.Add({transaction, task.line->type, task.cost, Typed(asset), kClerk});
    task.line->lastDay = day_;
    task.line->lastMeter = asset.meter;
  }
}

void History::Repair(SampleAsset& asset) {
  Dice& dice = asset.dice;
  const RepairFacts* choice = &dice.Pick(kRepairs);
  while (!(choice->kinds & asset.group->kind)) choice = &dice.Pick(kRepairs);
  const RepairFacts& repair = *choice;
  const int quarters = std::max(repair.labor + dice.Between(-1, 3), 1);
  const rt::Currency parts = Cents(repair.parts * dice.Between(80, 130));
  Entry entry;
  entry.workOrder = WorkOrder();
  entry.notes = repair.notes;
  if (dice.Chance(35)) {
    entry.outsideCost = Charged(Multiply(Hours(quarters), labor_->hourly), 160) + Charged(parts, 120);
  } else {
    entry.hours = Hours(quarters);
    entry.laborCost = Multiply(entry.hours, labor_->hourly);
    entry.partsCost = parts;
  }
  Write(asset, entry);
  Plan(asset, day_ + dice.Between(60, 190), Happening::Repair);
}

void History::TopUp(SampleAsset& asset) {
  Dice& dice = asset.dice;
  Entry entry;
  if (dice.Chance(85)) {
    entry.oil = Tenths(dice.Between(1, 3) * 10);
    entry.oilCost = Multiply(entry.oil, labor_->oil);
  } else {
    entry.outsideOilUnits = Tenths(dice.Between(1, 2) * 10);
    entry.outsideOilCost = Charged(Multiply(entry.outsideOilUnits, labor_->oil), 160);
  }
  Write(asset, entry);
  Plan(asset, day_ + dice.Between(90, 210), Happening::TopUp);
}

std::int32_t History::Write(SampleAsset& asset, const Entry& entry) {
  // Rows typed by hand have no hours and no oil if there were none; the others have zeros there.
  const bool leavesOut = asset.handEntered && asset.dice.Chance(30);
  const rt::Value nothing;
  const rt::Currency none;
  return transactions_.Add({asset.code,
                            date_,
                            entry.workOrder,
                            static_cast<std::int16_t>(date_.Year()),
                            static_cast<std::int16_t>(date_.Month()),
                            leavesOut && asset.dice.Chance(50) ? nothing : Tenths(asset.meter),
                            entry.fuelUnits,
                            entry.fuelCost,
                            leavesOut && entry.oil == 0 ? nothing : rt::Value(entry.oil),
                            entry.oilCost,
                            leavesOut && entry.hours == 0 ? nothing : rt::Value(entry.hours),
                            entry.laborCost,
                            entry.partsCost,
                            entry.outsideFuelUnits,
                            entry.outsideFuelCost,
                            entry.outsideOilUnits,
                            entry.outsideOilCost,
                            entry.outsideCost,
                            none,
                            none,
                            std::int32_t{0},
                            entry.notes,
                            kClerk,
                            Typed(asset)});
}

std::string History::WorkOrder() {
  char text[16];
  std::snprintf(text, sizeof text, "W%06d", ++workOrders_ % 1000000);
  return text;
}

rt::DateTime History::Typed(SampleAsset& asset) const {
  return rt::DateTime(date_.Time() + std::chrono::seconds(asset.dice.Between(8 * 3600, 17 * 3600)));
}

}  // namespace

void WriteHistory(dao::Database& database, Batch& batch, const Span& span, const Prices& prices,
                  std::vector<SampleAsset>& assets, const std::function<void(int percent)>& progress) {
  History(database, batch, span, prices, assets).Run(progress);
}

}  // namespace dw::sample
