// One sort field of a select and sort definition.
#pragma once

#include <QRadioButton>

#include "reports/forms/DefinitionLine.h"

namespace dw {

class frmSortMaint : public DefinitionLine {
 public:
  static constexpr const char* kName = "frmSortMaint";
  frmSortMaint();

  QRadioButton ascending, descending;

 protected:
  void RecordLoaded() override;
  bool StoreMore() override;
};

}  // namespace dw
