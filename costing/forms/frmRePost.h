// Posts all transactions, and rebuilds the cost tables if the user asks for it.
#pragma once

#include "platform/controls/Form.h"

class QCheckBox;
class QLabel;
class QProgressBar;
class QPushButton;

namespace dw {

/// While it runs, other windows can be used, and this one cannot be closed.
class frmRePost : public ui::Form {
 public:
  static constexpr const char* kName = "frmRePost";
  frmRePost();

  QLabel* instructions;
  QCheckBox* clearFirst;
  QLabel* status;
  QProgressBar* progress;
  QPushButton* proceedButton;
  QPushButton* cancelButton;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  class Run;
  void Proceed();

  bool running_ = false;
};

}  // namespace dw
