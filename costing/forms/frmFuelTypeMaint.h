// One fuel type.
#pragma once

#include "fleet/forms/TypeDetail.h"

namespace dw {

class frmFuelTypeMaint : public TypeDetail {
 public:
  static constexpr const char* kName = "frmFuelTypeMaint";
  frmFuelTypeMaint();
};

}  // namespace dw
