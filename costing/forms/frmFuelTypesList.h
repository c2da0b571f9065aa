// All fuel types.
#pragma once

#include "windows/ListForm.h"

namespace dw {

class frmFuelTypesList : public ListForm {
 public:
  static constexpr const char* kName = "frmFuelTypesList";
  frmFuelTypesList();
  void DeleteItem() override;

 protected:
  void OpenDetail(bool add, std::int32_t id) override;
};

}  // namespace dw
