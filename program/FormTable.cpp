#include "program/FormTable.h"

#include "costing/forms/frmFuelTypesList.h"
#include "costing/forms/frmPeriodsList.h"
#include "costing/forms/frmPriceLogList.h"
#include "costing/forms/frmPricingList.h"
#include "costing/forms/frmRePost.h"
#include "costing/forms/frmTransactionList.h"
#include "fleet/forms/frmClassList.h"
#include "fleet/forms/frmDivisionList.h"
#include "fleet/forms/frmInventoryList.h"
#include "fleet/forms/frmMaintenanceDueReport.h"
#include "fleet/forms/frmOdometerList.h"
#include "fleet/forms/frmScheduleTypesList.h"
#include "reports/forms/DateRangeForm.h"
#include "reports/forms/Launch.h"
#include "shell/forms/MenuTree.h"

namespace dw {
namespace {

template <class Window>
void Register(const char* name) {
  InstallMenuTarget(name, [] { ui::The<Window>().ShowForm(); });
}

}  // namespace

void RegisterForms() {
  Register<frmInventoryList>("frmInventoryList");
  Register<frmPriceLogList>("frmPriceLogList");
  Register<frmPricingList>("frmPricingList");
  Register<frmOdometerList>("frmOdometerList");
  Register<frmTransactionList>("frmTransactionList");
  Register<frmMaintenanceDueReport>("frmMaintenanceDueReport");
  Register<frmClassList>("frmClassList");
  Register<frmDivisionList>("frmDivisionList");
  Register<frmPeriodsList>("frmPeriodsList");
  Register<frmFuelTypesList>("frmFuelTypesList");
  Register<frmScheduleTypesList>("frmScheduleTypesList");
  Register<frmRePost>("frmRePost");
  Register<frmRptDWR004>("frmRptDWR004");
  Register<frmRptDWR006>("frmRptDWR006");
  Register<frmRptDWR009>("frmRptDWR009");
  Register<frmRptDWR013>("frmRptDWR013");
  Register<frmRptDWR016>("frmRptDWR016");
  Register<frmRptDWR017>("frmRptDWR017");
  for (const ReportEntry& report : ReportTable())
    if (report.route != ReportRoute::DateRange)
      InstallMenuTarget(report.menuItem, [&report] { LaunchFromMenu(report); });
}

}  // namespace dw
