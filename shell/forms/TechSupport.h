// Whom to ask about the program.
#pragma once

#include <QLabel>
#include <QPushButton>

#include "platform/controls/Form.h"

namespace dw {

class TechSupport : public ui::Form {
 public:
  TechSupport();

  QLabel lblPrompt;
  QPushButton OKButton{"&OK"};
};

}  // namespace dw
