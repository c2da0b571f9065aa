// The price of one fuel type from a date on.
#pragma once

#include "costing/forms/frmPricingMaint.h"
#include "platform/controls/DataCombo.h"

namespace dw {

class frmFuelPriceLogMaint : public RecordForm {
 public:
  static constexpr const char* kName = "frmFuelPriceLogMaint";
  frmFuelPriceLogMaint();

  ui::DataControl fuelTypes{*this, "dtaFuelTypes"};
  ui::DataCombo fuelType{"DBCombo1", "Description", "ID"};  ///< `Fuel Type`
  ui::TextBox effectiveDate{"Text1"};                       ///< `Effective Date`
  ui::MaskEdBox fuelPrice{"MaskEdBox2", kUnitPriceFormat};  ///< `Fuel Price`
  ui::TextBox recordNumber{"Text3"};                        ///< `ID`
  ui::NotesBox notes{"Text2"};

 protected:
  void OpenLists() override;
  void RecordLoaded() override;
};

}  // namespace dw
