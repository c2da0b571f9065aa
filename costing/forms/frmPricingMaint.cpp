#include "costing/forms/frmPricingMaint.h"

#include <QGroupBox>

#include "data/GenericTools.h"
#include "platform/controls/Layout.h"
#include "platform/runtime/Text.h"

namespace dw {
namespace {

/// A price may be left empty. Tells what else is no number, and goes there.
bool ValidPrice(ui::TextBox& price, const char* words) {
  if (price.Text().empty() || rt::IsNumeric(price.Text())) return true;
  screen::MessageBox(words, screen::Icon::Critical);
  price.setFocus();
  return false;
}

}  // namespace

frmPricingMaint::frmPricingMaint()
    : DetailForm({.form = kName,
                  .title = "Internal Pricing Entry",
                  .data = "PricingData",
                  .table = "[Internal Pricing Log]",
                  .recordWords = "Inventory #"}) {
  Data().Bind(Text2, "Effective Date", "Effective Date");
  Data().Bind(MaskEdBox6, "Oil Price", "Oil");
  Data().Bind(MaskEdBox1, "Hourly Rate", "Hourly Labor");
  Data().Bind(Text3, "Notes", "Notes");
  Data().Bind(IDText, "ID");
  Text2.onLeave = [this] { return ValidDate(Text2.Text(), true); };

  for (ui::MaskEdBox* price : {&MaskEdBox6, &MaskEdBox1}) ui::SetWidth(*price, ui::kMoneyWidth);
  auto* prices = new ui::FieldRows;
  prices->Row("Oil", {&MaskEdBox6});
  prices->Row("Hourly Labor", {&MaskEdBox1});
  QGroupBox* frame = ui::Group("Internal Pricing", prices);
  frame->setObjectName("Frame2");

  auto* rows = new ui::FieldRows;
  ui::SetWidth(Text2, ui::kDateWidth);
  ShowNumber(IDText);
  rows->Row("Effective Date", {&Text2});
  rows->Row("Database ID", {&IDText});
  rows->Whole(*frame);
  LayOut(rows, {NotesGroup(Text3)});
}

bool frmPricingMaint::ValidData() {
  if (!ValidDate(Text2.Text(), true)) {
    Text2.setFocus();
    return false;
  }
  return ValidPrice(MaskEdBox6, "Oil price is not numeric. Please check.") &&
         ValidPrice(MaskEdBox1, "Hourly labor price is not numeric. Please check.");
}

}  // namespace dw
