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
      cmdProceed(new QPushButton("Proceed")),
      cmdCancel(new QPushButton("Cancel")),
      lblNote(new QLabel) {
  setWindowTitle(DateRangeOf(name).caption);
  cmdProceed->setObjectName("cmdProceed");
  cmdCancel->setObjectName("cmdCancel");
  lblNote->setObjectName("lblNote");
  lblNote->setTextFormat(Qt::PlainText);
  lblNote->hide();
  auto* rows = new ui::FieldRows;
  rows->Row("Start Date", {&txtStartDate});
  rows->Row("End Date", {&txtEndDate});
  for (ui::TextBox* date : {&txtStartDate, &txtEndDate}) {
    ui::SetWidth(*date, ui::kDateWidth);
    date->SelectOnEntry();
    date->onLeave = [this, date] { return CancelPressed() || ValidDate(date->Text(), true); };
  }
  auto* column = new QVBoxLayout(this);
  column->addWidget(lblNote);
  column->addLayout(rows);
  column->addStretch(1);
  column->addLayout(ui::ButtonRow({cmdProceed, cmdCancel}));
  // The title fits beside the buttons of the frame.
  setMinimumWidth(fontMetrics().averageCharWidth() * 76);

  ui::OnClick(*cmdProceed, [this] { Proceed(); });
  ui::OnClick(*cmdCancel, [this] { Unload(); });
  SetDefault(cmdProceed);
  SetCancel(cmdCancel);
}

void DateRangeForm::OnLoad() {
  txtEndDate.SetText(rt::ShortDate(rt::Today()));
  txtStartDate.SetText(rt::ShortDate(DefaultStart(DateRangeOf(Name()))));
}

bool DateRangeForm::ValidDates() {
  for (ui::TextBox* date : {&txtStartDate, &txtEndDate})
    if (!ValidDate(date->Text(), true)) {
      date->setFocus();
      return false;
    }
  return true;
}

void DateRangeForm::Proceed() {
  if (!ValidDates()) return;
  const screen::Hourglass hourglass;
  const rt::DateTime start = *rt::ParseDate(txtStartDate.Text());
  const rt::DateTime end = *rt::ParseDate(txtEndDate.Text());
  Launch(ReportOf(Name()), DateRangeSelection(DateRangeOf(Name()), start, end, OnlyAsset()));
}

void frmRptDWR006::OnActivate() {
  lblNote->setText(
      QString::fromStdString("Asset " + AssetID + " only. For all assets, close this window first."));
  lblNote->setVisible(!AssetID.empty());
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
