#include "costing/forms/frmPeriodsMaint.h"

#include "costing/FiscalCalendar.h"
#include "data/GenericTools.h"
#include "platform/controls/Layout.h"

namespace dw {
namespace {

constexpr int kLastYear = 9999;

}  // namespace

frmPeriodsMaint::frmPeriodsMaint()
    : DetailForm({.form = kName,
                  .title = "Fiscal Period Definition",
                  .data = "Data1",
                  .table = "[Fiscal Periods]",
                  .recordWords = "Inventory #"}) {
  Data().Bind(Text3, "Fiscal Year", "Year");
  Data().Bind(Text8, "Period", "Period");
  Data().Bind(Text1, "Start Date", "Start Date");
  Data().Bind(Text2, "End Date", "End Date");
  Data().Bind(IDText, "ID");
  Text1.onLeave = [this] { return StartLeft(); };
  Text2.onLeave = [this] { return ValidDate(Text2.Text(), true); };

  auto* rows = new ui::FieldRows;
  for (ui::TextBox* number : {&Text3, &Text8}) {
    ui::SetWidth(*number, ui::kNumberWidth);
    number->SelectOnEntry();
  }
  for (ui::TextBox* date : {&Text1, &Text2}) ui::SetWidth(*date, ui::kDateWidth);
  ShowNumber(IDText);
  rows->Row("Year", {&Text3});
  rows->Row("Period", {&Text8});
  rows->Row("Start Date", {&Text1});
  rows->Row("End Date", {&Text2});
  rows->Row("Database ID", {&IDText});
  LayOut(rows);
}

bool frmPeriodsMaint::StartLeft() {
  if (!ValidDate(Text1.Text(), true)) return false;
  const auto start = rt::ParseDate(Text1.Text());
  // In the calendar's last year a month later may be no day at all.
  if (Text2.Text().empty() && start && start->Year() < kLastYear)
    Text2.SetText(rt::ShortDate(PeriodEnd(*start)));
  return true;
}

bool frmPeriodsMaint::ValidData() {
  for (ui::TextBox* date : {&Text1, &Text2}) {
    if (ValidDate(date->Text(), true)) continue;
    date->setFocus();
    return false;
  }
  return true;
}

}  // namespace dw
