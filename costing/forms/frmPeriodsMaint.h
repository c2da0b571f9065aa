// One fiscal period.
#pragma once

#include "windows/RecordForm.h"

namespace dw {

class frmPeriodsMaint : public RecordForm {
 public:
  static constexpr const char* kName = "frmPeriodsMaint";
  frmPeriodsMaint();

  ui::MaskEdBox fiscalYear{"Text3", {}, ui::Keys::Digits};  ///< `Fiscal Year`
  ui::MaskEdBox period{"Text8", {}, ui::Keys::Digits};      ///< `Period`
  ui::TextBox startDate{"Text1"};                           ///< `Start Date`
  ui::TextBox endDate{"Text2"};                             ///< `End Date`
  ui::TextBox recordNumber{"IDText"};                       ///< `ID`

 protected:
  bool ValidData() override;

 private:
  bool StartLeft();
};

}  // namespace dw
