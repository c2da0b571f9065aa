#include "reports/forms/DateRangeForm.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "data/GenericTools.h"
#include "platform/controls/Layout.h"
#include "platform/runtime/Clock.h"
#include "reports/DateRange.h"
#include "reports/ReportTable.h"
#include "reports/forms/Launch.h"

namespace dw {

DateRangeForm::DateRangeForm(const char* name)
    : Form(name),
      proceedButton(new QPushButton("Proceed")),
      cancelButton(new QPushButton("Cancel")),
      note(new QLabel) {
  setWindowTitle(DateRangeOf(name).caption);
  proceedButton->setObjectName("cmdProceed");
  cancelButton->setObjectName("cmdCancel");
  note->setObjectName("lblNote");
  note->setTextFormat(Qt::PlainText);
  note->hide();
  auto* rows = new ui::FieldRows;
  rows->Row("Start Date", {&startDate});
  rows->Row("End Date", {&endDate});
  for (ui::TextBox* date : {&startDate, &endDate}) {
    ui::SetWidth(*date, ui::kDateWidth);
    date->SelectOnEntry();
    date->onLeave = [this, date] { return CancelPressed() || ValidDate(date->Text(), true); };
  }
  auto* column = new QVBoxLayout(this);
  column->addWidget(note);
  column->addLayout(rows);
  column->addStretch(1);
  column->addLayout(ui::ButtonRow({proceedButton, cancelButton}));
  // The title fits beside the buttons of the frame.
  setMinimumWidth(fontMetrics().averageCharWidth() * 76);

  ui::OnClick(*proceedButton, [this] { Proceed(); });
  ui::OnClick(*cancelButton, [this] { Unload(); });
  SetDefault(proceedButton);
  SetCancel(cancelButton);
}

void DateRangeForm::OnLoad() {
  endDate.SetText(rt::ShortDate(rt::Today()));
  startDate.SetText(rt::ShortDate(DefaultStart(DateRangeOf(Name()))));
}

bool DateRangeForm::ValidDates() {
  for (ui::TextBox* date : {&startDate, &endDate})
    if (!ValidDate(date->Text(), true)) {
      date->setFocus();
      return false;
    }
  return true;
}

void DateRangeForm::Proceed() {
  if (!ValidDates()) return;
  const screen::Hourglass hourglass;
  const rt::DateTime start = *rt::ParseDate(startDate.Text());
  const rt::DateTime end = *rt::ParseDate(endDate.Text());
  Launch(ReportOf(Name()), DateRangeSelection(DateRangeOf(Name()), start, end, OnlyAsset()));
}

void frmRptDWR006::OnActivate() {
  note->setText(
      QString::fromStdString("Asset " + AssetID + " only. For all assets, close this window first."));
  note->setVisible(!AssetID.empty());
  layout()->activate();
  resize(size().expandedTo(minimumSizeHint()));
}

void ShowCostsOfAsset(const std::string& assetID) {
  const screen::Hourglass hourglass;
  auto& form = ui::The<frmRptDWR006>();
  form.LoadForm();
  form.AssetID = assetID;
  form.ShowForm();
}

}  // namespace dw
