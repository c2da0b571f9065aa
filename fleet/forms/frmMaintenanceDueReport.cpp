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
    : Form(kName), cmdProceed(new QPushButton("&Proceed")), cmdCancel(new QPushButton("Cancel")) {
  setWindowTitle("Maintenance Due Report Parameters");
  cmdProceed->setObjectName("cmdProceed");
  cmdCancel->setObjectName("cmdCancel");
  auto* rows = new ui::FieldRows;
  rows->Row("Date", {&Text1});
  rows->Row("Usage", {&txtUsage});
  ui::SetWidth(Text1, ui::kDateWidth);
  ui::SetWidth(txtUsage, ui::kDateWidth);
  auto* column = new QVBoxLayout(this);
  column->addLayout(rows);
  column->addStretch(1);
  column->addLayout(ui::ButtonRow({cmdProceed, cmdCancel}));
  // The title fits beside the buttons of the frame.
  setMinimumWidth(fontMetrics().averageCharWidth() * 64);

  Text1.SelectOnEntry();
  Text1.onEnter = [this] {
    if (Text1.Text().empty()) Text1.SetText(rt::ShortDate(rt::Today()));
  };
  ui::OnClick(*cmdProceed, [this] { Proceed(); });
  ui::OnClick(*cmdCancel, [this] { Unload(); });
  SetDefault(cmdProceed);
  SetCancel(cmdCancel);
}

void frmMaintenanceDueReport::OnLoad() {
  txtUsage.SetText(kUsageAhead);
  Text1.SetText(rt::ShortDate(rt::DateAdd("d", kDaysAhead, rt::Today())));
}

void frmMaintenanceDueReport::Proceed() {
  cmdProceed->setEnabled(false);
  cmdCancel->setEnabled(false);
  std::string path;
  DueReportEnd end = DueReportEnd::Failed;
  {
    const screen::Hourglass hourglass;
    end = MakeDueReport({sys::ProgramDirectory(), Text1.Text(), txtUsage.Text(), {}}, path);
  }
  if (end == DueReportEnd::Written && !sys::StartViewer(path))
    screen::MessageBox(
        "The report was written, but no program could be started to show it.\rYou find it in '" + path + "'.",
        screen::Icon::Exclamation);
  cmdProceed->setEnabled(true);
  cmdCancel->setEnabled(true);
  // The user can correct a typed text if that was the reason.
  if (end != DueReportEnd::Failed) Unload();
}

}  // namespace dw
