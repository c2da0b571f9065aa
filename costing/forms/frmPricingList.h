// The prices of labor and oil, by date.
#pragma once

#include "windows/ListForm.h"

namespace dw {

class frmPricingList : public ListForm {
 public:
  static constexpr const char* kName = "frmPricingList";
  frmPricingList();
  void DeleteItem() override;

 protected:
  void OpenDetail(bool add, std::int32_t id) override;
};

}  // namespace dw
