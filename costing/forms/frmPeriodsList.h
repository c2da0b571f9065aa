// All fiscal periods.
#pragma once

#include <QPushButton>

#include "windows/ListForm.h"

namespace dw {

class frmPeriodsList : public ListForm {
 public:
  static constexpr const char* kName = "frmPeriodsList";
  frmPeriodsList();
  void DeleteItem() override;

  QPushButton newYear;  ///< sets up a whole year

 protected:
  void OpenDetail(bool add, std::int32_t id) override;
};

}  // namespace dw
