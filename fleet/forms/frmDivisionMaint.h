// One division, and the assets in it.
#pragma once

#include "windows/DetailForm.h"

namespace dw {

class frmDivisionMaint : public DetailForm {
 public:
  static constexpr const char* kName = "frmDivisionMaint";
  frmDivisionMaint();

  ui::TextBox Text1{"Text1"};  ///< `ID`
  ui::TextBox Text2{"Text2"};  ///< `Division ID`
  ui::TextBox Text3{"Text3"};  ///< `Description`
  ui::NotesBox Text8{"Text8"};

 protected:
  void FillPlaceholder(dao::Recordset& record) override;
  bool ValidData() override;
};

}  // namespace dw
