// One type of scheduled maintenance.
#pragma once

#include "windows/TypeDetail.h"

namespace dw {

class frmScheduleTypeMaint : public TypeDetail {
 public:
  static constexpr const char* kName = "frmScheduleTypeMaint";
  frmScheduleTypeMaint();
};

}  // namespace dw
