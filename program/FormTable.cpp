#include "program/FormTable.h"

#include "costing/forms/frmFuelTypesList.h"
#include "costing/forms/frmPeriodsList.h"
#include "costing/forms/frmPriceLogList.h"
#include "costing/forms/frmPricingList.h"
#include "fleet/forms/frmClassList.h"
#include "fleet/forms/frmDivisionList.h"
#include "fleet/forms/frmScheduleTypesList.h"
#include "shell/forms/MenuTree.h"

namespace dw {

void RegisterForms() {
  InstallMenuTarget("frmPriceLogList", [] { ui::The<frmPriceLogList>().ShowForm(); });
  InstallMenuTarget("frmPricingList", [] { ui::The<frmPricingList>().ShowForm(); });
  InstallMenuTarget("frmClassList", [] { ui::The<frmClassList>().ShowForm(); });
  InstallMenuTarget("frmDivisionList", [] { ui::The<frmDivisionList>().ShowForm(); });
  InstallMenuTarget("frmPeriodsList", [] { ui::The<frmPeriodsList>().ShowForm(); });
  InstallMenuTarget("frmFuelTypesList", [] { ui::The<frmFuelTypesList>().ShowForm(); });
  InstallMenuTarget("frmScheduleTypesList", [] { ui::The<frmScheduleTypesList>().ShowForm(); });
}

}  // namespace dw
