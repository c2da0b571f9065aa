#include "platform/controls/CheckBox.h"

namespace ui {

CheckBox::CheckBox(const char* name, const char* caption) : QCheckBox(QString::fromUtf8(caption)) {
  setObjectName(QString::fromUtf8(name));
  connect(this, &QCheckBox::toggled, this, [this] { changed_ = true; });
}

void CheckBox::ShowValue(const rt::Value& value) {
  setChecked(!value.IsNull() && value.AsBoolean());
  changed_ = false;
}

}  // namespace ui
