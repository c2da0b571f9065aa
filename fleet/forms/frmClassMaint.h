// One inventory class, and the assets in it.
#pragma once

#include "windows/DetailForm.h"

namespace dw {

class frmClassMaint : public DetailForm {
 public:
  static constexpr const char* kName = "frmClassMaint";
  frmClassMaint();

  ui::TextBox Text1{"Text1"};  ///< `ID`
  ui::TextBox Text2{"Text2"};  ///< `Class ID`
  ui::TextBox Text3{"Text3"};  ///< `Description`
  ui::NotesBox Text8{"Text8"};

 protected:
  void FillPlaceholder(dao::Recordset& record) override;
};

}  // namespace dw
