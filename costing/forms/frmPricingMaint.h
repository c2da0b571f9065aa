// The prices of labor and oil from a date on.
#pragma once

#include "windows/DetailForm.h"

namespace dw {

/// How the price of a unit of fuel or oil is shown.
inline constexpr const char* kUnitPriceFormat = "##.####";

class frmPricingMaint : public DetailForm {
 public:
  static constexpr const char* kName = "frmPricingMaint";
  frmPricingMaint();

  ui::TextBox Text2{"Text2"};                                ///< `Effective Date`
  ui::MaskEdBox MaskEdBox6{"MaskEdBox6", kUnitPriceFormat};  ///< `Oil Price`
  ui::MaskEdBox MaskEdBox1{"MaskEdBox1", ui::kMoneyFormat};  ///< `Hourly Rate`
  ui::TextBox IDText{"IDText"};                              ///< `ID`
  ui::NotesBox Text3{"Text3"};

 protected:
  bool ValidData() override;
};

}  // namespace dw
