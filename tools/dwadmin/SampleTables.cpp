// The code tables, price tables and fiscal calendar of the sample.
#include <utility>

#include "costing/FiscalCalendar.h"
#include "tools/dwadmin/SampleFacts.h"
#include "tools/dwadmin/SampleParts.h"

namespace dw::sample {
namespace {

void WriteCodes(dao::Database& database, Batch& batch, const rt::DateTime& made) {
  RowWriter divisions(batch, database, "Divisions",
                      {"Division ID", "Description", "Created By", "Date Created"});
  for (const CodeFacts& division : kDivisions)
    divisions.Add({division.id, division.description, kAdministrator, made});
  RowWriter classes(batch, database, "Inventory Classes",
                    {"Class ID", "Description", "Created By", "Date Created"});
  for (const ClassFacts& group : kClasses) classes.Add({group.id, group.description, kAdministrator, made});
  RowWriter fuels(batch, database, "Fuel Types", {"Description", "Created By", "Date Created"});
  for (const FuelFacts& fuel : kFuels) fuels.Add({fuel.description, kAdministrator, made});
  RowWriter types(batch, database, "Maintenance Types", {"Description", "Created By", "Date Created"});
  for (const WorkFacts& work : kWork) types.Add({work.description, kAdministrator, made});
}

void WritePrices(dao::Database& database, Batch& batch, const Span& span, const Prices& prices) {
  RowWriter fuelLog(batch, database, "Internal Fuel Pricing Log",
                    {"Fuel Type", "Effective Date", "Fuel Price", "Created By", "Date Created"});
  int fuel = 0;
  for (const FuelFacts& facts : kFuels) {
    ++fuel;
    if (!facts.ownPump) continue;
    for (const Prices::Fuel& row : prices.OfFuel(fuel))
      if (row.from <= span.Last()) fuelLog.Add({fuel, row.from, row.price, kAdministrator, row.from});
  }
  RowWriter log(batch, database, "Internal Pricing Log",
                {"Effective Date", "Hourly Rate", "Oil Price", "Created By", "Date Created"});
  for (const Prices::Labor& row : prices.OfLabor())
    log.Add({row.upTo, row.hourly, row.oil, kAdministrator, span.First()});
}

/// Calendar years of twelve months, and one year ahead.
void WriteCalendar(dao::Database& database, Batch& batch, const Span& span) {
  RowWriter periods(batch, database, "Fiscal Periods",
                    {"Fiscal Year", "Period", "Start Date", "End Date", "Created By", "Date Created"});
  for (int year = span.First().Year(); year <= span.Last().Year() + 1; ++year) {
    for (int period = 1; period <= 12; ++period) {
      const rt::DateTime start(year, period, 1);
      periods.Add({static_cast<std::int16_t>(year), static_cast<std::int16_t>(period), start,
                   PeriodEnd(start), kAdministrator, span.First()});
    }
  }
}

}  // namespace

void WriteTables(dao::Database& database, Batch& batch, const Span& span, const Prices& prices) {
  WriteCodes(database, batch, span.First());
  WritePrices(database, batch, span, prices);
  WriteCalendar(database, batch, span);
}

}  // namespace dw::sample
