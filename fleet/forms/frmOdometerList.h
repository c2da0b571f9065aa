// All odometer readings.
#pragma once

#include "windows/ListForm.h"

namespace dw {

class frmOdometerList : public ListForm {
 public:
  static constexpr const char* kName = "frmOdometerList";
  frmOdometerList();
  void DeleteItem() override;

 protected:
  void OpenDetail(bool add, std::int32_t id) override;
  bool MayOpen() override;
};

}  // namespace dw
