// One odometer reading, of a given asset or of one that the user chooses.
#pragma once

#include <string>

#include "platform/controls/DataCombo.h"
#include "windows/DetailForm.h"

namespace dw {

inline constexpr const char* kMileageFormat = "#####0.0";

class frmOdometerMaint : public DetailForm {
 public:
  static constexpr const char* kName = "frmOdometerMaint";
  frmOdometerMaint();

  std::string AssetID;  ///< the asset, whose choice is closed then; empty for any

  ui::DataControl AssetData{*this, "AssetData"};
  ui::DataCombo AssetCombo{"AssetCombo", "VIN/Serial Number", "Asset ID"};  ///< `Asset ID`
  ui::TextBox Text8{"Text8"};                                               ///< `Date`
  ui::MaskEdBox MaskedEdit1{"MaskedEdit1", kMileageFormat};                 ///< `Mileage`
  ui::TextBox Text1{"Text1"};                                               ///< `ID`
  ui::NotesBox Text3{"Text3"};

 protected:
  void OpenLists() override;
  void FillPlaceholder(dao::Recordset& record) override;
  void RecordLoaded() override;
  bool ValidData() override;
};

}  // namespace dw
