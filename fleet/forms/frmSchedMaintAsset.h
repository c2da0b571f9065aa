// One line of an asset's maintenance schedule: what recurs, and how often.
#pragma once

#include <string>

#include "platform/controls/DataCombo.h"
#include "windows/RecordForm.h"

namespace dw {

class frmSchedMaintAsset : public RecordForm {
 public:
  static constexpr const char* kName = "frmSchedMaintAsset";
  frmSchedMaintAsset();

  std::string AssetID;  ///< the asset that an added line belongs to

  ui::DataControl types{*this, "Data2"};                           ///< what the combo offers
  ui::TextBox recordNumber{"Text1"};                               ///< `ID`
  ui::MaskEdBox lineItem{"Text8", "", ui::Keys::Digits};           ///< `Line Item`
  ui::TextBox description{"Text2"};                                ///< `Description`
  ui::DataCombo maintenanceType{"DBCombo1", "Description", "ID"};  ///< `Type ID`
  ui::MaskEdBox monthlyFrequency{"Text10", "", ui::Keys::Digits};  ///< `Monthly Frequently`
  ui::MaskEdBox usageFrequency{"Text11", "", ui::Keys::Digits};    ///< `Usage Frequency`
  ui::MaskEdBox estimatedCost{"MaskEdBox1", ui::kMoneyFormat};     ///< `Estimated Cost`
  ui::NotesBox notes{"Text9"};

 protected:
  void OpenLists() override;
  void FillPlaceholder() override;
  bool ValidData() override;

 private:
  bool ValidLineItem();
  /// A frequency left empty becomes 0.
  bool ValidFrequency(ui::TextBox& field, const char* words);
};

}  // namespace dw
