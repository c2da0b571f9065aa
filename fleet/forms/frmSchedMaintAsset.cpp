#include "fleet/forms/frmSchedMaintAsset.h"

#include "data/BrackenfelGlobals.h"
#include "fleet/ScheduleLines.h"
#include "platform/controls/Layout.h"
#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"
#include "windows/ProperWords.h"

namespace dw {
namespace {

/// An empty field gets a zero when the focus comes in, selected so that typing replaces it.
void FillOnEntry(ui::TextBox& field, const char* zero) {
  field.onEnter = [&field, zero] {
    if (field.Text().empty()) field.SetText(zero);
  };
  field.SelectOnEntry();
}

}  // namespace

frmSchedMaintAsset::frmSchedMaintAsset()
    : RecordForm({.form = kName,
                  .title = "Scheduled Maintenance Line Item",
                  .data = "Data1",
                  .table = "[Maintenance Schedule]",
                  .recordWords = "Transaction #"}) {
  lineItem.SelectOnEntry();
  CapitalizeWords(description);
  FillOnEntry(monthlyFrequency, "0");
  FillOnEntry(usageFrequency, "0");
  FillOnEntry(estimatedCost, "0.00");
  ShowNumber(recordNumber);
  Bind(notes, "Notes", "Notes");
  Declare({{lineItem, "Line Item", "Line Item Number", ui::kNumberWidth},
           {description, "Description", "Description"},
           {maintenanceType, "Type ID", "Maintenance Type"},
           {monthlyFrequency, "Monthly Frequently", "Monthly Frequency", ui::kNumberWidth},
           {usageFrequency, "Usage Frequency", "Usage Frequency", ui::kNumberWidth},
           {estimatedCost, "Estimated Cost", "Estimated Cost", ui::kMoneyWidth},
           {recordNumber, "ID", "Database ID"}},
          {NotesGroup(notes)});
}

void frmSchedMaintAsset::OpenLists() {
  types.DatabaseName = DataFile;
  types.RecordSource = "SELECT * FROM [Maintenance Types] ORDER BY [Description]";
  types.Refresh();
  maintenanceType.Fill(types.Recordset().get());
}

void frmSchedMaintAsset::FillPlaceholder() {
  Hold().Set("Asset ID", AssetID);
  Hold().Set("Line Item", NextLineItem(AssetID));
  Hold().Set("Type ID", 0);
}

bool frmSchedMaintAsset::ValidData() {
  return ValidLineItem() &&
         ValidFrequency(usageFrequency, "The Usage Frequency is not numeric. Please check.") &&
         ValidFrequency(monthlyFrequency, "The Monthly Frequency is not numeric. Please check.");
}

bool frmSchedMaintAsset::ValidFrequency(ui::TextBox& field, const char* words) {
  if (field.Text().empty()) field.SetText("0");
  return rt::IsNumeric(field.Text()) || Refuse(field, words);
}

bool frmSchedMaintAsset::ValidLineItem() {
  const std::string typed = lineItem.Text();
  if (typed.empty()) return Refuse(lineItem, "The Line Number cannot be blank. Please check.");
  if (!rt::IsNumeric(typed)) return Refuse(lineItem, "The Line Number is not numeric. Please check.");
  std::int32_t number = 0;
  try {
    number = rt::Value(typed).AsLong();
  } catch (const rt::RuntimeError&) {
    // No line has such a number; storing it reports the error.
    return true;
  }
  const std::string asset = Stored("Asset ID").Shown();
  if (!LineItemInUse(asset, number, Stored("ID").AsLong())) return true;
  screen::MessageBox("That line item is already in use. Assigning new line item number.",
                     screen::Icon::Information);
  lineItem.SetText(std::to_string(NextLineItem(asset)));
  lineItem.setFocus();
  return false;
}

}  // namespace dw
