#include "tools/dwadmin/Sample.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "data/Catalogue.h"
#include "tools/dwadmin/SampleFacts.h"
#include "tools/dwadmin/SampleParts.h"

namespace dw {
namespace sample {

Span::Span(const rt::DateTime& until, int years)
    : first_(std::chrono::floor<std::chrono::days>(
          rt::DateAdd("d", 1, rt::DateAdd("yyyy", -years, until.DateOnly())).Time())),
      days_(static_cast<int>((std::chrono::floor<std::chrono::days>(until.Time()) - first_).count() + 1)) {}

rt::DateTime Span::Day(int day) const { return rt::DateTime(first_ + std::chrono::days(day)); }

Prices::Prices(const Span& span, Dice& dice) {
  const int firstYear = span.First().Year();
  const int lastYear = span.Last().Year();
  for (const FuelFacts& facts : kFuels) {
    std::vector<Fuel>& prices = fuels_.emplace_back();
    int price = facts.basePrice;
    for (int year = firstYear; year <= lastYear; ++year) {
      for (int month = 1; month <= 12; ++month) {
        prices.push_back({rt::DateTime(year, month, 1), rt::Currency::FromUnits(price)});
        // A random walk of a few percent a month that is drawn back to its start, in tenths of a cent.
        price += (facts.basePrice - price) / 12 + price * dice.Between(-40, 44) / 1000;
        price = std::max(price / 10 * 10, 500);
      }
    }
  }
  // Prices of labor and oil are set for half a year, one year ahead.
  int hourly = 42'0000;
  int oil = 3'8500;
  for (int year = firstYear; year <= lastYear + 1; ++year) {
    for (const rt::DateTime& end : {rt::DateTime(year, 6, 30), rt::DateTime(year, 12, 31)}) {
      labor_.push_back({end, rt::Currency::FromUnits(hourly), rt::Currency::FromUnits(oil)});
      hourly += dice.Between(0, 6) * 2500;
      oil += dice.Between(-5, 12) * 100;
    }
  }
}

rt::Currency Prices::FuelOn(int fuel, const rt::DateTime& date) const {
  const std::vector<Fuel>& prices = OfFuel(fuel);
  const auto next = std::upper_bound(prices.begin(), prices.end(), date,
                                     [](const rt::DateTime& day, const Fuel& row) { return day < row.from; });
  return (next - 1)->price;
}

const Prices::Labor& Prices::LaborOn(const rt::DateTime& date) const {
  return *std::lower_bound(labor_.begin(), labor_.end(), date,
                           [](const Labor& row, const rt::DateTime& day) { return row.upTo < day; });
}

}  // namespace sample

void MakeSample(const std::string& directory, int assets, int years, std::uint32_t seed,
                const std::function<void(int percent)>& progress, const rt::DateTime& until) {
  if (assets < 1 || years < 1) throw std::invalid_argument("a sample needs at least one asset and one year");
  constexpr const char* kFiles[] = {"DW.MDB", "DW_USERS.MDB", "DW_LISTS.MDB", "DW_SANDS.MDB"};
  const std::filesystem::path folder(directory);
  for (const char* file : kFiles)
    if (std::filesystem::exists(folder / file))
      throw store::StoreError(store::kFileExists, "File '" + (folder / file).string() + "' already exists.");
  for (const char* file : kFiles) CreateDataFile(directory, file);

  const sample::Span span(until, years);
  Dice dice(seed);
  const sample::Prices prices(span, dice);
  if (progress) progress(0);
  sample::WriteUsers(directory, span);
  sample::WriteLists(directory);
  sample::WriteQueries(directory, span);

  // Nobody else knows of the new file, so its rows need no locks.
  const auto workspace = dao::DBEngine::CreateWorkspace("Sample", "admin", "");
  const auto database = workspace->OpenDatabase((folder / kFiles[0]).string(), true);
  Batch batch(*workspace);
  sample::WriteTables(*database, batch, span, prices);
  sample::WriteFleet(*database, batch, span, prices, assets, seed, progress);
  batch.Finish();
  database->Close();
  workspace->Close();
  if (progress) progress(100);
}

}  // namespace dw
