// Sets up the twelve periods of a fiscal year.
#pragma once

#include <QPushButton>

#include "platform/controls/Form.h"
#include "platform/controls/TextBox.h"

class QLabel;

namespace dw {

class frmFiscalYearSetup : public ui::Form {
 public:
  frmFiscalYearSetup();

  QLabel* instructions;
  ui::MaskEdBox fiscalYear{"Text1", {}, ui::Keys::Digits};  ///< the year
  ui::TextBox firstDay{"Text2"};                            ///< its first day
  QPushButton proceedButton, cancelButton;

 private:
  bool YearLeft();
  void Proceed();
};

}  // namespace dw
