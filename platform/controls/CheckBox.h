// A flag.
#pragma once

#include <QCheckBox>

#include "platform/controls/BoundControl.h"

namespace ui {

class CheckBox : public QCheckBox, public BoundControl {
 public:
  CheckBox(const char* name, const char* caption);

  void ShowValue(const rt::Value& value) override;
  bool Changed() const override { return changed_; }
  rt::Value Content() const override { return isChecked(); }
  void SetUnchanged() override { changed_ = false; }
  QWidget* Widget() override { return this; }

 private:
  bool changed_ = false;
};

}  // namespace ui
