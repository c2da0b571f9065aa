#include "fleet/forms/frmScheduleTypeMaint.h"

namespace dw {

frmScheduleTypeMaint::frmScheduleTypeMaint()
    : TypeDetail({.form = kName,
                  .title = "Maintenance Schedule Type",
                  .data = "Data1",
                  .table = "[Maintenance Types]",
                  .recordWords = "Maintenance Type #",
                  .ok = "OkButton"}) {}

}  // namespace dw
