// All divisions.
#pragma once

#include "windows/ListForm.h"

namespace dw {

class frmDivisionList : public ListForm {
 public:
  static constexpr const char* kName = "frmDivisionList";
  frmDivisionList();
  void DeleteItem() override;

 protected:
  void OpenDetail(bool add, std::int32_t id) override;
};

}  // namespace dw
