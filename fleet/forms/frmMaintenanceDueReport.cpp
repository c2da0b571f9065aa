#include "fleet/forms/frmMaintenanceDueReport.h"

#include <QPushButton>
#include <QVBoxLayout>

#include "fleet/DueReport.h"
#include "platform/controls/Layout.h"
#include "platform/runtime/Clock.h"
#include "platform/system/Machine.h"

namespace dw {
namespace {

constexpr int kDaysAhead = 14;
constexpr const char* kUsageAhead = "500";

}  // namespace

frmMaintenanceDueReport::frmMaintenanceDueReport()
    : Form(kName), proceedButton(new QPushButton("&Proceed")), cancelButton(new QPushButton("Cancel")) {
  setWindowTitle("Maintenance Due Report Parameters");
  proceedButton->setObjectName("cmdProceed");
  cancelButton->setObjectName("cmdCancel");
  auto* rows = new ui::FieldRows;
  rows->Row("Date", {&dueBy});
  rows->Row("Usage", {&usage});
  ui::SetWidth(dueBy, ui::kDateWidth);
  ui::SetWidth(usage, ui::kDateWidth);
  auto* column = new QVBoxLayout(this);
  column->addLayout(rows);
  column->addStretch(1);
  column->addLayout(ui::ButtonRow({proceedButton, cancelButton}));
  // The title fits beside the buttons of the frame.
  setMinimumWidth(fontMetrics().averageCharWidth() * 64);

  dueBy.SelectOnEntry();
  dueBy.onEnter = [this] {
    if (dueBy.Text().empty()) dueBy.SetText(rt::ShortDate(rt::Today()));
  };
  ui::OnClick(*proceedButton, [this] { Proceed(); });
  ui::OnClick(*cancelButton, [this] { Unload(); });
  SetDefault(proceedButton);
  SetCancel(cancelButton);
}

void frmMaintenanceDueReport::OnLoad() {
  usage.SetText(kUsageAhead);
  dueBy.SetText(rt::ShortDate(rt::DateAdd("d", kDaysAhead, rt::Today())));
}

void frmMaintenanceDueReport::Proceed() {
  proceedButton->setEnabled(false);
  cancelButton->setEnabled(false);
  std::string path;
  DueReportEnd end = DueReportEnd::Failed;
  {
    const screen::Hourglass hourglass;
    end = MakeDueReport({sys::ProgramDirectory(), dueBy.Text(), usage.Text(), {}}, path);
  }
  if (end == DueReportEnd::Written && !sys::StartViewer(path))
    screen::MessageBox(
        "The report was written, but no program could be started to show it.\rYou find it in '" + path + "'.",
        screen::Icon::Exclamation);
  proceedButton->setEnabled(true);
  cancelButton->setEnabled(true);
  // The user can correct a typed text if that was the reason.
  if (end != DueReportEnd::Failed) Unload();
}

}  // namespace dw
