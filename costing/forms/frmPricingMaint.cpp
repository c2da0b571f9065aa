#include "costing/forms/frmPricingMaint.h"

#include <QGroupBox>

#include "data/GenericTools.h"
#include "platform/controls/Layout.h"
#include "platform/runtime/Text.h"

namespace dw {
frmPricingMaint::frmPricingMaint()
    : RecordForm({.form = kName,
                  .title = "Internal Pricing Entry",
                  .data = "PricingData",
                  .table = "[Internal Pricing Log]",
                  .recordWords = "Inventory #",
                  .ok = "OkButton"}) {
  Bind(effectiveDate, "Effective Date", "Effective Date");
  Bind(oilPrice, "Oil Price", "Oil");
  Bind(hourlyRate, "Hourly Rate", "Hourly Labor");
  Bind(notes, "Notes", "Notes");
  Bind(recordNumber, "ID");
  effectiveDate.onLeave = [this] { return ValidDate(effectiveDate.Text(), true); };

  for (ui::MaskEdBox* price : {&oilPrice, &hourlyRate}) ui::SetWidth(*price, ui::kMoneyWidth);
  auto* prices = new ui::FieldRows;
  prices->Row("Oil", {&oilPrice});
  prices->Row("Hourly Labor", {&hourlyRate});
  QGroupBox* frame = ui::Group("Internal Pricing", prices);
  frame->setObjectName("Frame2");

  auto* rows = new ui::FieldRows;
  ui::SetWidth(effectiveDate, ui::kDateWidth);
  ShowNumber(recordNumber);
  rows->Row("Effective Date", {&effectiveDate});
  rows->Row("Database ID", {&recordNumber});
  rows->Whole(*frame);
  LayOut(rows, {NotesGroup(notes)});
}

bool frmPricingMaint::ValidData() {
  if (!ValidDate(effectiveDate.Text(), true)) {
    effectiveDate.setFocus();
    return false;
  }
  const auto valid = [](ui::TextBox& price, const char* words) {
    return price.Text().empty() || rt::IsNumeric(price.Text()) || Refuse(price, words);
  };
  return valid(oilPrice, "Oil price is not numeric. Please check.") &&
         valid(hourlyRate, "Hourly labor price is not numeric. Please check.");
}

}  // namespace dw
