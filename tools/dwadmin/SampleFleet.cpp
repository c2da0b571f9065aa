#include "tools/dwadmin/SampleFleet.h"

#include <algorithm>
#include <iterator>

#include "data/BrackenfelGlobals.h"
#include "data/Version.h"

namespace dw::sample {
namespace {

// Which assets are the odd ones, by their number. The steps share no divisor, so that the traits mix.
constexpr bool Retired(int number) { return number % 37 == 5; }
constexpr bool WithoutPurchaseDate(int number) { return number % 53 == 7; }
constexpr bool BrandNew(int number) { return number % 61 == 11; }
constexpr bool HandEntered(int number) { return number % 19 == 3; }

/// The first assets show every class; after them common classes are frequent.
const ClassFacts& ClassFor(int number, Dice& dice) {
  constexpr int kClassCount = static_cast<int>(std::size(kClasses));
  static constexpr int kMix[] = {0, 0, 1, 1, 2, 2, 2, 2, 3, 3, 4, 5, 5, 6, 7, 8, 9, 10, 10, 11};
  return kClasses[number < kClassCount ? number : dice.Pick(kMix)];
}

int FuelFor(const ClassFacts& group, Dice& dice) {
  if (group.fuel != kUnleaded) return group.fuel;
  const int roll = dice.Between(1, 100);
  if (roll <= 8) return kEthanol;
  if (roll <= 12) return kPremium;
  return kUnleaded;
}

/// Seventeen characters without the letters that look like digits.
std::string SerialNumber(Dice& dice) {
  constexpr std::string_view kCharacters = "0123456789ABCDEFGHJKLMNPRSTUVWXYZ";
  std::string serial;
  for (int i = 0; i < 17; ++i)
    serial += kCharacters[dice.Below(static_cast<std::uint32_t>(kCharacters.size()))];
  return serial;
}

std::string Numbered(const char* prefix, int number, int width) {
  const std::string digits = std::to_string(number);
  const int missing = std::max(width - static_cast<int>(digits.size()), 0);
  return std::string(prefix) + "-" + std::string(static_cast<std::size_t>(missing), '0') + digits;
}

void PlanSchedule(SampleAsset& asset) {
  std::vector<int> types;
  for (int type = 1; type <= static_cast<int>(std::size(kWork)); ++type)
    if (kWork[type - 1].kinds & asset.group->kind) types.push_back(type);
  constexpr int kAlways = 4;
  const int wanted = std::min(asset.dice.Between(5, 9), static_cast<int>(types.size()));
  while (static_cast<int>(types.size()) > wanted)
    types.erase(types.begin() + asset.dice.Between(kAlways, static_cast<int>(types.size()) - 1));
  for (const int type : types) {
    const WorkFacts& work = kWork[type - 1];
    ScheduleLine line;
    line.type = type;
    line.months = work.months;
    line.usage = asset.group->hours ? work.hours : work.miles;
    line.lastDay = asset.firstDay;
    line.lastMeter = asset.meter;
    // An asset that was in service before the data begins is somewhere between two services.
    if (asset.purchaseDay < 0) {
      if (line.months > 0) line.lastDay -= asset.dice.Between(0, line.months * 30);
      if (line.usage > 0) line.lastMeter -= asset.dice.Between(0, line.usage * 10);
    }
    asset.schedule.push_back(line);
  }
}

/// Chooses an asset's life. Everything else that its table row needs is drawn when the row is written.
SampleAsset PlanAsset(int number, const Span& span, std::uint32_t seed) {
  SampleAsset asset((static_cast<std::uint64_t>(seed) << 32) + static_cast<std::uint64_t>(number) + 1);
  Dice& dice = asset.dice;
  asset.group = &ClassFor(number, dice);
  asset.fuel = FuelFor(*asset.group, dice);
  asset.brandNew = BrandNew(number);
  asset.purchaseKnown = !WithoutPurchaseDate(number);
  asset.handEntered = HandEntered(number);
  asset.dailyUsage = std::max(asset.group->dailyUsage * dice.Between(60, 140) / 100, 1);
  asset.ownFuelShare = kFuels[asset.fuel - 1].ownPump ? dice.Between(60, 95) : 0;
  const int last = span.Days() - 1;
  constexpr int kBoughtWithinSpan = 12;
  if (asset.brandNew) {
    asset.purchaseDay = last - dice.Between(0, 20);
  } else if (dice.Chance(kBoughtWithinSpan)) {
    asset.purchaseDay = dice.Between(0, last * 3 / 4);
  } else {
    asset.purchaseDay = -dice.Between(30, asset.group->lifeYears * 300);
  }
  asset.firstDay = std::max(asset.purchaseDay + dice.Between(1, 15), 0);
  asset.lastDay = last;
  if (Retired(number) && !asset.brandNew)
    asset.lastDay =
        dice.Between((asset.firstDay + last) / 2, std::max(last - 15, (asset.firstDay + last) / 2));
  asset.meter = dice.Between(20, 400);
  asset.meter += static_cast<std::int64_t>(asset.dailyUsage) * (asset.firstDay - asset.purchaseDay);
  asset.meterDay = asset.firstDay;
  asset.meterAtFuel = asset.meter;
  if (!asset.brandNew) PlanSchedule(asset);
  return asset;
}

void WriteSchedule(RowWriter& lines, const SampleAsset& asset, const rt::DateTime& made) {
  std::int16_t item = 0;
  for (const ScheduleLine& line : asset.schedule) {
    const WorkFacts& work = kWork[line.type - 1];
    const rt::Currency estimate =
        rt::Currency::FromUnits((work.labor * 11 + work.parts) * std::int64_t{10000});
    ++item;
    lines.Add({asset.code, item, line.type, work.description, line.months, line.usage, estimate,
               kAdministrator, made});
  }
}

std::int32_t WriteReserved(RowWriter& vehicles, const rt::DateTime& made) {
  const rt::Null none;
  return vehicles.Add({"REMOVED", "Stands For Removed Assets", none, none, none, none, none, none, none, none,
                       made, none, none, none, true, none, none, kAdministrator, made});
}

void WriteParameters(dao::Database& database, Batch& batch, const Span& span, std::int32_t reserved) {
  RowWriter parameters(
      batch, database, "Parameters",
      {"ID", "Organization Name", "Address Line 1", "Address Line 2", "Address Line 3", "Contact",
       "Contact Phone", "Date Installed", "Major Version Number", "Minor Version Number", "Revision Number",
       "Data Initialized", "Internal_Fuel_Available", "Transaction Close Out Date", "Deleted Inventory ID"});
  parameters.Add({std::int32_t{1}, "City of Marlow Bend", "Fleet Services", "1200 Depot Road", "Marlow Bend",
                  "Fleet Superintendent", "555-0142", span.First(), static_cast<std::int16_t>(kMajorVersion),
                  static_cast<std::int16_t>(kMinorVersion), static_cast<std::int16_t>(kRevision), false, true,
                  rt::DateTime(span.First().Year(), 1, 1), reserved});
}

}  // namespace

void SampleAsset::Drive(int day) {
  if (day <= meterDay) return;
  meter += static_cast<std::int64_t>(day - meterDay) * dailyUsage * dice.Between(70, 130) / 100;
  meterDay = day;
}

bool SampleAsset::IsDue(const ScheduleLine& line, int day) const {
  constexpr int kDaysPerMonth = 30;
  return (line.months > 0 && day - line.lastDay >= line.months * kDaysPerMonth) ||
         (line.usage > 0 && meter - line.lastMeter >= line.usage * std::int64_t{10});
}

std::vector<SampleAsset> WriteAssets(dao::Database& database, Batch& batch, const Span& span, int assets,
                                     std::uint32_t seed) {
  RowWriter vehicles(batch, database, "Vehicles",
                     {"Asset ID", "Description", "VIN/Serial Number", "Division ID", "Class ID", "Fuel Type",
                      "Location ID", "Type", "Meter Type", "Model Year", "Entry Date", "Purchase Date",
                      "Replacement Date", "Purchase Price", "No_Longer_In_Service", "Secondary Asset ID",
                      "Notes", "Created By", "Date Created"});
  RowWriter lines(batch, database, "Maintenance Schedule",
                  {"Asset ID", "Line Item", "Type ID", "Description", "Monthly Frequently", "Usage Frequency",
                   "Estimated Cost", "Created By", "Date Created"});
  std::vector<SampleAsset> fleet;
  fleet.reserve(static_cast<std::size_t>(assets));
  std::vector<int> inClass(std::size(kClasses), 0);
  const int width = assets < 1000 ? 3 : 6;
  for (int number = 0; number < assets; ++number) {
    SampleAsset asset = PlanAsset(number, span, seed);
    Dice& dice = asset.dice;
    const ClassFacts& group = *asset.group;
    asset.code = Numbered(group.prefix, ++inClass[static_cast<std::size_t>(&group - kClasses)], width);
    const rt::DateTime bought = span.Day(asset.purchaseDay);
    const bool retired = asset.lastDay < span.Days() - 1;
    std::string description = dice.Pick(group.assets);
    description += std::string(", ") + dice.Pick(kColors);
    const rt::Currency price = rt::Currency::FromWhole(group.price / 100 * dice.Between(85, 118));
    const rt::Value unknown;
    vehicles.Add({asset.code, description, SerialNumber(dice),
                  group.division ? group.division : dice.Pick(kDivisions).id, group.id, asset.fuel,
                  dice.Pick(kLocations), dice.Chance(85) ? "OWNED" : "LEASED",
                  group.hours ? "Hours" : "Miles", std::to_string(bought.Year()),
                  span.Day(asset.purchaseDay + 1), asset.purchaseKnown ? rt::Value(bought) : unknown,
                  asset.purchaseKnown ? rt::Value(rt::DateAdd("yyyy", group.lifeYears, bought)) : unknown,
                  price, retired, dice.Chance(20) ? rt::Value(Numbered("OLD", number + 1, 5)) : unknown,
                  retired ? rt::Value("Sold at auction.") : unknown, kAdministrator,
                  span.Day(std::max(asset.purchaseDay, 0))});
    WriteSchedule(lines, asset, span.Day(std::max(asset.purchaseDay, 0)));
    fleet.push_back(std::move(asset));
  }
  const std::int32_t reserved = WriteReserved(vehicles, span.First());
  WriteParameters(database, batch, span, reserved);
  return fleet;
}

void WriteFleet(dao::Database& database, Batch& batch, const Span& span, const Prices& prices, int assets,
                std::uint32_t seed, const std::function<void(int percent)>& progress) {
  std::vector<SampleAsset> fleet = WriteAssets(database, batch, span, assets, seed);
  WriteHistory(database, batch, span, prices, fleet, progress);
}

}  // namespace dw::sample
