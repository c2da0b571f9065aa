#include "costing/forms/frmPeriodsMaint.h"

#include "costing/FiscalCalendar.h"
#include "data/GenericTools.h"
#include "platform/controls/Layout.h"

namespace dw {
namespace {

constexpr int kLastYear = 9999;

}  // namespace

frmPeriodsMaint::frmPeriodsMaint()
    : RecordForm({.form = kName,
                  .title = "Fiscal Period Definition",
                  .data = "Data1",
                  .table = "[Fiscal Periods]",
                  .recordWords = "Inventory #",
                  .ok = "OkButton"}) {
  startDate.onLeave = [this] { return StartLeft(); };
  endDate.onLeave = [this] { return ValidDate(endDate.Text(), true); };
  for (ui::TextBox* number : {&fiscalYear, &period}) number->SelectOnEntry();
  ShowNumber(recordNumber);
  Declare({{fiscalYear, "Fiscal Year", "Year", ui::kNumberWidth},
           {period, "Period", "Period", ui::kNumberWidth},
           {startDate, "Start Date", "Start Date", ui::kDateWidth},
           {endDate, "End Date", "End Date", ui::kDateWidth},
           {recordNumber, "ID", "Database ID"}});
}

bool frmPeriodsMaint::StartLeft() {
  if (!ValidDate(startDate.Text(), true)) return false;
  const auto start = rt::ParseDate(startDate.Text());
  // In the calendar's last year the date a month later may not exist.
  if (endDate.Text().empty() && start && start->Year() < kLastYear)
    endDate.SetText(rt::ShortDate(PeriodEnd(*start)));
  return true;
}

bool frmPeriodsMaint::ValidData() {
  for (ui::TextBox* date : {&startDate, &endDate}) {
    if (ValidDate(date->Text(), true)) continue;
    date->setFocus();
    return false;
  }
  return true;
}

}  // namespace dw
