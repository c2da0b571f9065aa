#include "costing/FiscalCalendar.h"

#include <string>

#include "data/BrackenfelGlobals.h"
#include "data/GenericDAO.h"
#include "data/MainConnection.h"
#include "platform/runtime/Clock.h"
#include "platform/screen/Screen.h"

namespace dw {
namespace {

constexpr std::int16_t kPeriods = 12;

void AddPeriod(ado::Recordset& periods, std::int16_t fiscalYear, std::int16_t period,
               const rt::DateTime& start) {
  if (!AdoAutoAddRS(periods)) return;
  periods.Set("Fiscal Year", fiscalYear);
  periods.Set("Period", period);
  periods.Set("Start Date", start);
  periods.Set("End Date", PeriodEnd(start));
  periods.Set("Created By", CurrentUserName);
  periods.Set("Date Created", rt::Now());
  AdoUpdateRS(periods, true, true);
}

}  // namespace

rt::DateTime PeriodEnd(const rt::DateTime& start) { return rt::DateAdd("d", -1, rt::DateAdd("m", 1, start)); }

void GenerateFiscalYear(std::int16_t fiscalYear, const rt::DateTime& start) {
  const screen::Hourglass hourglass;
  const MainConnection main;
  if (!main.IsOpen()) return;
  rt::DateTime running = start;
  for (std::int16_t period = 1; period <= kPeriods; ++period) {
    AdoRecordsetPtr periods =
        main.Edit("SELECT * FROM [Fiscal Periods] WHERE [Fiscal Year] = " + std::to_string(fiscalYear) +
                  " AND [Period] = " + std::to_string(period));
    if (periods && periods->AtEnd()) AddPeriod(*periods, fiscalYear, period, running);
    // The month is added to the running date, not to the start of the year: once a short month has cut the
    // day, all later periods start on the cut day.
    running = rt::DateAdd("m", 1, running);
    CloseObject(periods);
  }
}

}  // namespace dw
