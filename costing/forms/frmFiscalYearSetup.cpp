#include "costing/forms/frmFiscalYearSetup.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <optional>

#include "costing/FiscalCalendar.h"
#include "data/GenericTools.h"
#include "platform/controls/Layout.h"
#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"

namespace dw {
namespace {

constexpr std::size_t kYearDigits = 4;
/// The latest fiscal year that still ends within the calendar.
constexpr int kLastYear = 9998;

void Stop(ui::TextBox& field, const char* words) {
  screen::MessageBox(words, screen::Icon::Critical);
  field.setFocus();
}

/// The year as the periods store it. A pasted text such as "1E99" has four characters and is numeric, but is
/// not a year.
std::optional<std::int16_t> YearOf(const std::string& text) {
  try {
    return rt::Value(text).AsInteger();
  } catch (const rt::RuntimeError&) {
    return std::nullopt;
  }
}

}  // namespace

frmFiscalYearSetup::frmFiscalYearSetup()
    : Form("frmFiscalYearSetup"),
      instructions(
          ui::Caption("This option lets you define a 12 period fiscal year starting at the date you enter. "
                      "There will be 12 periods set up for the specified fiscal year.")) {
  setWindowTitle("New Fiscal Year Setup");
  instructions->setObjectName("Label1");
  proceedButton.setObjectName("cmdProceed");
  proceedButton.setText("&Proceed");
  cancelButton.setObjectName("cmdCancel");
  cancelButton.setText("Cancel");
  ui::SetWidth(fiscalYear, ui::kNumberWidth);
  ui::SetWidth(firstDay, ui::kDateWidth);

  auto* rows = new ui::FieldRows;
  rows->Row("New Fiscal Year", {&fiscalYear});
  rows->Row("Start of Year", {&firstDay});
  auto* column = new QVBoxLayout(this);
  column->addWidget(instructions);
  column->addSpacing(6);
  column->addLayout(rows);
  column->addStretch(1);
  column->addSpacing(6);
  column->addLayout(ui::ButtonRow({&proceedButton, &cancelButton}));
  instructions->setMinimumWidth(fontMetrics().averageCharWidth() * 52);

  SetDefault(&proceedButton);
  SetCancel(&cancelButton);
  fiscalYear.onLeave = [this] { return YearLeft(); };
  firstDay.onLeave = [this] { return ValidDate(firstDay.Text(), true); };
  ui::OnClick(proceedButton, [this] { Proceed(); });
  ui::OnClick(cancelButton, [this] { Unload(); });
}

bool frmFiscalYearSetup::YearLeft() {
  if (CancelPressed()) return true;
  const char* wrong = nullptr;
  if (!rt::IsNumeric(fiscalYear.Text()))
    wrong = "Year must be a four digit number. Please re-enter.";
  else if (rt::Length(fiscalYear.Text()) != kYearDigits)
    wrong = "Year must be four digits long. Please re-enter.";
  if (wrong) screen::MessageBox(wrong, screen::Icon::Information);
  return !wrong;
}

void frmFiscalYearSetup::Proceed() {
  const auto year = YearOf(fiscalYear.Text());
  if (!rt::IsNumeric(fiscalYear.Text()) || (rt::Length(fiscalYear.Text()) == kYearDigits && !year))
    return Stop(fiscalYear, "The fiscal year must be numeric. Please check");
  if (rt::Length(fiscalYear.Text()) != kYearDigits)
    return Stop(fiscalYear, "The fiscal year must be 4 digits long. Please check.");
  const auto start = rt::ParseDate(firstDay.Text());
  if (!start || start->Year() > kLastYear)
    return Stop(firstDay, "The start date is not a real date. Please check");
  GenerateFiscalYear(*year, *start);
  Unload();
}

}  // namespace dw
