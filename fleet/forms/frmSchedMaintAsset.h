// One line of an asset's maintenance schedule: what recurs, and how often.
#pragma once

#include <string>

#include "platform/controls/DataCombo.h"
#include "windows/DetailForm.h"

namespace dw {

class frmSchedMaintAsset : public DetailForm {
 public:
  static constexpr const char* kName = "frmSchedMaintAsset";
  frmSchedMaintAsset();

  std::string AssetID;  ///< the asset that an added line belongs to

  ui::DataControl Data2{*this, "Data2"};                     ///< what the combo offers
  ui::TextBox Text1{"Text1"};                                ///< `ID`
  ui::MaskEdBox Text8{"Text8", "", ui::Keys::Digits};        ///< `Line Item`
  ui::TextBox Text2{"Text2"};                                ///< `Description`
  ui::DataCombo DBCombo1{"DBCombo1", "Description", "ID"};   ///< `Type ID`
  ui::MaskEdBox Text10{"Text10", "", ui::Keys::Digits};      ///< `Monthly Frequently`
  ui::MaskEdBox Text11{"Text11", "", ui::Keys::Digits};      ///< `Usage Frequency`
  ui::MaskEdBox MaskEdBox1{"MaskEdBox1", ui::kMoneyFormat};  ///< `Estimated Cost`
  ui::NotesBox Text9{"Text9"};

 protected:
  void OpenLists() override;
  void FillPlaceholder(dao::Recordset& record) override;
  bool ValidData() override;

 private:
  bool ValidLineItem();
};

}  // namespace dw
