// What the lists and windows of types share: a description, notes, and nothing to check.
#pragma once

#include <vector>

#include "windows/RecordForm.h"

namespace dw {

std::vector<ui::GridColumn> TypeColumns();

class TypeDetail : public RecordForm {
 public:
  explicit TypeDetail(const RecordDefinition& definition);

  ui::TextBox recordNumber{"IDText"};  ///< `ID`
  ui::TextBox description{"Text1"};    ///< `Description`
  ui::NotesBox notes{"Text3"};
};

}  // namespace dw
