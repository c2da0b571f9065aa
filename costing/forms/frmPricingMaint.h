// The prices of labor and oil from a date on.
#pragma once

#include "windows/RecordForm.h"

namespace dw {

/// How the price of a unit of fuel or oil is shown.
inline constexpr const char* kUnitPriceFormat = "##.####";

class frmPricingMaint : public RecordForm {
 public:
  static constexpr const char* kName = "frmPricingMaint";
  frmPricingMaint();

  ui::TextBox effectiveDate{"Text2"};                        ///< `Effective Date`
  ui::MaskEdBox oilPrice{"MaskEdBox6", kUnitPriceFormat};    ///< `Oil Price`
  ui::MaskEdBox hourlyRate{"MaskEdBox1", ui::kMoneyFormat};  ///< `Hourly Rate`
  ui::TextBox recordNumber{"IDText"};                        ///< `ID`
  ui::NotesBox notes{"Text3"};

 protected:
  bool ValidData() override;
};

}  // namespace dw
