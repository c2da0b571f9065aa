// One odometer reading, of a given asset or of one that the user chooses.
#pragma once

#include <string>

#include "platform/controls/DataCombo.h"
#include "windows/RecordForm.h"

namespace dw {

inline constexpr const char* kMileageFormat = "#####0.0";

class frmOdometerMaint : public RecordForm {
 public:
  static constexpr const char* kName = "frmOdometerMaint";
  frmOdometerMaint();

  std::string AssetID;  ///< the asset, which cannot be changed then; empty for any

  ui::DataControl assets{*this, "AssetData"};
  ui::DataCombo asset{"AssetCombo", "VIN/Serial Number", "Asset ID"};  ///< `Asset ID`
  ui::TextBox date{"Text8"};                                           ///< `Date`
  ui::MaskEdBox mileage{"MaskedEdit1", kMileageFormat};                ///< `Mileage`
  ui::TextBox recordNumber{"Text1"};                                   ///< `ID`
  ui::NotesBox notes{"Text3"};

 protected:
  void OpenLists() override;
  void FillPlaceholder() override;
  void RecordLoaded() override;
  bool ValidData() override;
};

}  // namespace dw
