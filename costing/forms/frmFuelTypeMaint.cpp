#include "costing/forms/frmFuelTypeMaint.h"

namespace dw {

frmFuelTypeMaint::frmFuelTypeMaint()
    : TypeDetail({.form = kName,
                  .title = "Fuel Type Definition",
                  .data = "Data1",
                  .table = "[Fuel Types]",
                  .recordWords = "Fuel Type #",
                  .ok = "OkButton"}) {}

}  // namespace dw
