// One division, and the assets in it.
#pragma once

#include "windows/RecordForm.h"

namespace dw {

class frmDivisionMaint : public RecordForm {
 public:
  static constexpr const char* kName = "frmDivisionMaint";
  frmDivisionMaint();

  ui::TextBox recordNumber{"Text1"};  ///< `ID`
  ui::TextBox code{"Text2"};          ///< `Division ID`
  ui::TextBox description{"Text3"};   ///< `Description`
  ui::NotesBox notes{"Text8"};

 protected:
  void FillPlaceholder() override;
  bool ValidData() override;
};

}  // namespace dw
