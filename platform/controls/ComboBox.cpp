#include "platform/controls/ComboBox.h"

#include <QLineEdit>
#include <QSignalBlocker>

#include "platform/controls/Application.h"
#include "platform/controls/LeaveRule.h"

namespace ui {

ComboBox::ComboBox(const char* name) {
  setObjectName(QString::fromUtf8(name));
  setEditable(true);
  setInsertPolicy(QComboBox::NoInsert);
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  setMinimumContentsLength(24);
  setMaxVisibleItems(16);
  connect(this, &QComboBox::currentTextChanged, this, [this] {
    changed_ = true;
    if (onChange) Guard([this] { onChange(); });
  });
}

void ComboBox::SetItems(const std::vector<std::string>& items) {
  const QSignalBlocker quiet(this);
  const QString text = currentText();
  clear();
  for (const std::string& item : items) addItem(QString::fromStdString(item));
  setCurrentIndex(findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive));
  setEditText(text);
}

bool ComboBox::HasItem(const std::string& text) const {
  return findText(QString::fromStdString(text), Qt::MatchExactly | Qt::MatchCaseSensitive) >= 0;
}

void ComboBox::ShowValue(const rt::Value& value) {
  const QSignalBlocker quiet(this);
  const QString text = value.IsNull() ? QString() : QString::fromStdString(value.AsText());
  setCurrentIndex(findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive));
  setEditText(text);
  changed_ = false;
}

void ComboBox::SetLimit(int characters) { lineEdit()->setMaxLength(characters); }

void ComboBox::TakeItsEntry() {
  const QString text = currentText();
  if (text.isEmpty() || HasItem(text.toStdString())) return;
  // Without the flag for case, texts are compared regardless of it.
  const int entry = findText(text, Qt::MatchFixedString);
  if (entry >= 0) setEditText(itemText(entry));
}

void ComboBox::focusOutEvent(QFocusEvent* event) {
  QComboBox::focusOutEvent(event);
  TakeItsEntry();
  RunLeaveRule(*this, *event, onLeave);
}

}  // namespace ui
