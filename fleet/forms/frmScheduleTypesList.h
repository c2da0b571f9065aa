// All types of scheduled maintenance.
#pragma once

#include "windows/ListForm.h"

namespace dw {

class frmScheduleTypesList : public ListForm {
 public:
  static constexpr const char* kName = "frmScheduleTypesList";
  frmScheduleTypesList();
  void DeleteItem() override;

 protected:
  void OpenDetail(bool add, std::int32_t id) override;
};

}  // namespace dw
