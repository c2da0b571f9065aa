// One fiscal period.
#pragma once

#include "windows/DetailForm.h"

namespace dw {

class frmPeriodsMaint : public DetailForm {
 public:
  static constexpr const char* kName = "frmPeriodsMaint";
  frmPeriodsMaint();

  ui::MaskEdBox Text3{"Text3", {}, ui::Keys::Digits};  ///< `Fiscal Year`
  ui::MaskEdBox Text8{"Text8", {}, ui::Keys::Digits};  ///< `Period`
  ui::TextBox Text1{"Text1"};                          ///< `Start Date`
  ui::TextBox Text2{"Text2"};                          ///< `End Date`
  ui::TextBox IDText{"IDText"};                        ///< `ID`

 protected:
  bool ValidData() override;

 private:
  bool StartLeft();
};

}  // namespace dw
