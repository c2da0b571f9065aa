// What the lists and windows of types share: a description, notes, and nothing to check.
#pragma once

#include <vector>

#include "windows/DetailForm.h"

namespace dw {

std::vector<ui::GridColumn> TypeColumns();

class TypeDetail : public DetailForm {
 public:
  explicit TypeDetail(const DetailDefinition& definition);

  ui::TextBox IDText{"IDText"};  ///< `ID`
  ui::TextBox Text1{"Text1"};    ///< `Description`
  ui::NotesBox Text3{"Text3"};
};

}  // namespace dw
