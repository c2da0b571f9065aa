// All assets.
#pragma once

#include <QCheckBox>

#include "windows/ListForm.h"

namespace dw {

class frmInventoryList : public ListForm {
 public:
  static constexpr const char* kName = "frmInventoryList";
  frmInventoryList();
  /// Removes the asset with the records that belong to it.
  void DeleteItem() override;

  QCheckBox inServiceOnly{"In Service Only"};

 protected:
  void OpenDetail(bool add, std::int32_t id) override;
  std::string Query() const override;
};

}  // namespace dw
