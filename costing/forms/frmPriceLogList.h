// The prices of the fuel types, by date.
#pragma once

#include "windows/ListForm.h"

namespace dw {

class frmPriceLogList : public ListForm {
 public:
  static constexpr const char* kName = "frmPriceLogList";
  frmPriceLogList();
  void DeleteItem() override;

 protected:
  void OpenDetail(bool add, std::int32_t id) override;
};

}  // namespace dw
