// The price of one fuel type from a date on.
#pragma once

#include "costing/forms/frmPricingMaint.h"
#include "platform/controls/DataCombo.h"

namespace dw {

class frmFuelPriceLogMaint : public DetailForm {
 public:
  static constexpr const char* kName = "frmFuelPriceLogMaint";
  frmFuelPriceLogMaint();

  ui::DataControl dtaFuelTypes{*this, "dtaFuelTypes"};
  ui::DataCombo DBCombo1{"DBCombo1", "Description", "ID"};   ///< `Fuel Type`
  ui::TextBox Text1{"Text1"};                                ///< `Effective Date`
  ui::MaskEdBox MaskEdBox2{"MaskEdBox2", kUnitPriceFormat};  ///< `Fuel Price`
  ui::TextBox Text3{"Text3"};                                ///< `ID`
  ui::NotesBox Text2{"Text2"};

 protected:
  void OpenLists() override;
  void RecordLoaded() override;
};

}  // namespace dw
