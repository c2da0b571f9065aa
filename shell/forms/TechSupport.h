// Whom to ask about the program.
#pragma once

#include <QLabel>
#include <QPushButton>

#include "platform/controls/Form.h"

namespace dw {

class TechSupport : public ui::Form {
 public:
  TechSupport();

  QLabel introduction;
  QPushButton okButton{"&OK"};
};

}  // namespace dw
