#include "fleet/forms/frmSchedMaintAsset.h"

#include "data/BrackenfelGlobals.h"
#include "data/GenericTools.h"
#include "fleet/ScheduleLines.h"
#include "platform/controls/Layout.h"
#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"

namespace dw {
namespace {

/// An empty field gets its zero when the focus comes in, marked for typing over it.
void FillOnEntry(ui::TextBox& field, const char* zero) {
  field.onEnter = [&field, zero] {
    if (field.Text().empty()) field.SetText(zero);
  };
  field.SelectOnEntry();
}

/// Each word begins with a capital while it is typed; the caret stays where the typing left it.
void CapitaliseWords(ui::TextBox& field) {
  field.onChange = [&field] {
    const std::string proper = ProperCase(field.Text());
    if (proper == field.Text()) return;
    const int caret = field.cursorPosition();
    field.SetText(proper);
    field.setCursorPosition(caret);
  };
}

bool Refuse(ui::TextBox& field, const char* words) {
  screen::MessageBox(words, screen::Icon::Critical);
  field.setFocus();
  return false;
}

/// A frequency left empty is 0.
bool ValidFrequency(ui::TextBox& field, const char* words) {
  if (field.Text().empty()) field.SetText("0");
  return rt::IsNumeric(field.Text()) || Refuse(field, words);
}

}  // namespace

frmSchedMaintAsset::frmSchedMaintAsset()
    : DetailForm({.form = kName,
                  .title = "Scheduled Maintenance Line Item",
                  .data = "Data1",
                  .table = "[Maintenance Schedule]",
                  .recordWords = "Transaction #",
                  .ok = "OKButton"}) {
  Data().Bind(Text1, "ID");
  Data().Bind(Text8, "Line Item", "Line Item Number");
  Data().Bind(Text2, "Description", "Description");
  Data().Bind(DBCombo1, "Type ID", "Maintenance Type");
  Data().Bind(Text10, "Monthly Frequently", "Monthly Frequency");
  Data().Bind(Text11, "Usage Frequency", "Usage Frequency");
  Data().Bind(MaskEdBox1, "Estimated Cost", "Estimated Cost");
  Data().Bind(Text9, "Notes", "Notes");
  Text8.SelectOnEntry();
  CapitaliseWords(Text2);
  FillOnEntry(Text10, "0");
  FillOnEntry(Text11, "0");
  FillOnEntry(MaskEdBox1, "0.00");

  for (ui::TextBox* number : {&Text8, &Text10, &Text11}) ui::SetWidth(*number, ui::kNumberWidth);
  ui::SetWidth(MaskEdBox1, ui::kMoneyWidth);
  ShowNumber(Text1);
  auto* rows = new ui::FieldRows;
  rows->Row("Line Item Number", {&Text8});
  rows->Row("Description", {&Text2});
  rows->Row("Maintenance Type", {&DBCombo1});
  rows->Row("Monthly Frequency", {&Text10});
  rows->Row("Usage Frequency", {&Text11});
  rows->Row("Estimated Cost", {&MaskEdBox1});
  rows->Row("Database ID", {&Text1});
  LayOut(rows, {NotesGroup(Text9)});
}

void frmSchedMaintAsset::OpenLists() {
  Data2.DatabaseName = DataFile;
  Data2.RecordSource = "SELECT * FROM [Maintenance Types] ORDER BY [Description]";
  Data2.Refresh();
  DBCombo1.Fill(Data2.Recordset().get());
}

void frmSchedMaintAsset::FillPlaceholder(dao::Recordset& record) {
  record.Set("Asset ID", AssetID);
  record.Set("Line Item", NextLineItem(AssetID));
  record.Set("Type ID", 0);
}

bool frmSchedMaintAsset::ValidData() {
  return ValidLineItem() && ValidFrequency(Text11, "The Usage Frequency is not numeric. Please check.") &&
         ValidFrequency(Text10, "The Monthly Frequency is not numeric. Please check.");
}

bool frmSchedMaintAsset::ValidLineItem() {
  const std::string typed = Text8.Text();
  if (typed.empty()) return Refuse(Text8, "The Line Number cannot be blank. Please check.");
  if (!rt::IsNumeric(typed)) return Refuse(Text8, "The Line Number is not numeric. Please check.");
  std::int32_t lineItem = 0;
  try {
    lineItem = rt::Value(typed).AsLong();
  } catch (const rt::RuntimeError&) {
    // No line bears such a number; storing it tells so.
    return true;
  }
  dao::Recordset& record = *Data().Recordset();
  const std::string asset = record.Get("Asset ID").Shown();
  if (!LineItemInUse(asset, lineItem, record.Get("ID").AsLong())) return true;
  screen::MessageBox("That line item is already in use. Assigning new line item number.",
                     screen::Icon::Information);
  Text8.SetText(std::to_string(NextLineItem(asset)));
  Text8.setFocus();
  return false;
}

}  // namespace dw
