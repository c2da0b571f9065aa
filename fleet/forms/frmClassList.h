// All inventory classes.
#pragma once

#include "windows/ListForm.h"

namespace dw {

class frmClassList : public ListForm {
 public:
  static constexpr const char* kName = "frmClassList";
  frmClassList();
  void DeleteItem() override;

 protected:
  void OpenDetail(bool add, std::int32_t id) override;
};

}  // namespace dw
