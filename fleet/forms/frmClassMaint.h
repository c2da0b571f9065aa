// One inventory class, and the assets in it.
#pragma once

#include "windows/RecordForm.h"

namespace dw {

class frmClassMaint : public RecordForm {
 public:
  static constexpr const char* kName = "frmClassMaint";
  frmClassMaint();

  ui::TextBox recordNumber{"Text1"};  ///< `ID`
  ui::TextBox code{"Text2"};          ///< `Class ID`
  ui::TextBox description{"Text3"};   ///< `Description`
  ui::NotesBox notes{"Text8"};

 protected:
  void FillPlaceholder() override;
};

}  // namespace dw
