// All maintenance transactions.
#pragma once

#include "windows/ListForm.h"

namespace dw {

class frmTransactionList : public ListForm {
 public:
  static constexpr const char* kName = "frmTransactionList";
  frmTransactionList();
  /// Posted transactions can be deleted too, and their costs stay in the cost tables.
  void DeleteItem() override;

 protected:
  bool MayOpen() override;
  void OpenDetail(bool add, std::int32_t id) override;
};

}  // namespace dw
