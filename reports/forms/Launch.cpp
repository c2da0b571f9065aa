#include "reports/forms/Launch.h"

#include "platform/screen/Screen.h"
#include "reports/EntryForm.h"
#include "reports/forms/ReportForm.h"

namespace dw {

void Launch(const ReportEntry& report, const std::string& selection) {
  if (report.loadsFormFirst) {
    auto& form = ui::The<ReportForm>();
    form.LoadForm();
    form.hide();
  }
  SetReportGlobals(report, selection);
  ui::The<ReportForm>().ShowForm();
}

void LaunchFromMenu(const ReportEntry& report) {
  const screen::Hourglass hourglass;
  if (report.route != ReportRoute::EntryForm)
    Launch(report);
  else if (PrepareEntryForm())
    ui::The<ReportForm>().ShowForm();
}

}  // namespace dw
