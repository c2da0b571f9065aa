#include "platform/controls/DataCombo.h"

#include <QKeyEvent>
#include <QSignalBlocker>
#include <QWheelEvent>
#include <utility>

#include "platform/controls/Application.h"
#include "platform/controls/LeaveRule.h"
#include "platform/runtime/Text.h"

namespace ui {
namespace {

/// Keys of other tables compare as numbers whatever their width, codes without regard to case.
bool Same(const rt::Value& a, const rt::Value& b) {
  if (a.IsNull() || b.IsNull()) return a.IsNull() && b.IsNull();
  if (a.Type() == rt::ValueType::Text || b.Type() == rt::ValueType::Text)
    return rt::EqualNoCase(a.Shown(), b.Shown());
  return a.AsDouble() == b.AsDouble();
}

}  // namespace

DataCombo::DataCombo(const char* name, std::string listField, std::string boundColumn)
    : listField_(std::move(listField)), boundColumn_(std::move(boundColumn)) {
  setObjectName(QString::fromUtf8(name));
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  setMinimumContentsLength(24);
  setMaxVisibleItems(16);
  // A choice that is closed has to be read like the text of any other field.
  QPalette colours = palette();
  colours.setColor(QPalette::Disabled, QPalette::ButtonText,
                   colours.color(QPalette::Disabled, QPalette::Text));
  setPalette(colours);
  connect(this, &QComboBox::currentIndexChanged, this, [this](int index) { Picked(index); });
}

template <class Rows>
void DataCombo::FillFrom(Rows* rows) {
  const QSignalBlocker quiet(this);
  clear();
  values_.clear();
  if (rows && !rows->AtEnd()) {
    const int shown = rows->FieldIndex(listField_);
    const int stored = rows->FieldIndex(boundColumn_);
    for (; !rows->AtEnd(); rows->MoveNext()) {
      values_.push_back(rows->Get(stored));
      addItem(QString::fromStdString(rows->Get(shown).Shown()));
    }
  }
  setCurrentIndex(IndexOf(value_));
}

void DataCombo::Fill(dao::Recordset* rows) { FillFrom(rows); }
void DataCombo::Fill(ado::Recordset* rows) { FillFrom(rows); }

int DataCombo::IndexOf(const rt::Value& value) const {
  if (value.IsNull()) return -1;
  for (std::size_t i = 0; i < values_.size(); ++i)
    if (Same(values_[i], value)) return static_cast<int>(i);
  return -1;
}

void DataCombo::Picked(int index) {
  value_ = index < 0 ? rt::Value() : values_[static_cast<std::size_t>(index)];
  changed_ = true;
  if (onChange) Guard([this] { onChange(); });
}

void DataCombo::Choose(const rt::Value& value) { setCurrentIndex(IndexOf(value)); }

void DataCombo::ShowValue(const rt::Value& value) {
  const QSignalBlocker quiet(this);
  value_ = value;
  setCurrentIndex(IndexOf(value));
  changed_ = false;
}

void DataCombo::focusOutEvent(QFocusEvent* event) {
  QComboBox::focusOutEvent(event);
  RunLeaveRule(*this, *event, onLeave);
}

void DataCombo::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) {
    if (currentIndex() >= 0)
      setCurrentIndex(-1);
    else if (!value_.IsNull())
      Picked(-1);
    return;
  }
  QComboBox::keyPressEvent(event);
}

void DataCombo::wheelEvent(QWheelEvent* event) {
  // Scrolling a window must not change a record in passing.
  if (hasFocus())
    QComboBox::wheelEvent(event);
  else
    event->ignore();
}

}  // namespace ui
