// One fuel type.
#pragma once

#include "windows/TypeDetail.h"

namespace dw {

class frmFuelTypeMaint : public TypeDetail {
 public:
  static constexpr const char* kName = "frmFuelTypeMaint";
  frmFuelTypeMaint();
};

}  // namespace dw
