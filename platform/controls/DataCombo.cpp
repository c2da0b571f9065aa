#include "platform/controls/DataCombo.h"

#include <QKeyEvent>
#include <QPointer>
#include <QProxyStyle>
#include <QSignalBlocker>
#include <utility>

#include "platform/controls/Application.h"
#include "platform/controls/Layout.h"
#include "platform/controls/LeaveRule.h"
#include "platform/runtime/Text.h"

namespace ui {
namespace {

/// Compares keys of other tables as numbers whatever their width, and codes without regard to case.
bool Same(const rt::Value& a, const rt::Value& b) {
  if (a.IsNull() || b.IsNull()) return a.IsNull() && b.IsNull();
  if (a.Type() == rt::ValueType::Text || b.Type() == rt::ValueType::Text)
    return rt::EqualNoCase(a.Shown(), b.Shown());
  return a.AsDouble() == b.AsDouble();
}

/// Opens as a list that scrolls. A menu would show all entries at once, over the whole screen.
class DropDownStyle : public QProxyStyle {
 public:
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* data) const override {
    return hint == SH_ComboBox_Popup ? 0 : QProxyStyle::styleHint(hint, option, widget, data);
  }
};

/// The application owns it, because its style is built on the application's.
QStyle& DropDown() {
  static QPointer<DropDownStyle> style;
  if (!style) {
    style = new DropDownStyle;
    style->setParent(qApp);
  }
  return *style;
}

}  // namespace

DataCombo::DataCombo(const char* name, std::string listField, std::string boundColumn)
    : listField_(std::move(listField)), boundColumn_(std::move(boundColumn)) {
  setObjectName(QString::fromUtf8(name));
  setStyle(&DropDown());
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  setMinimumContentsLength(24);
  setMaxVisibleItems(16);
  // People still have to read a disabled choice, like the text of any other field.
  QPalette colors = palette();
  colors.setColor(QPalette::Disabled, QPalette::ButtonText, colors.color(QPalette::Disabled, QPalette::Text));
  setPalette(colors);
  connect(this, &QComboBox::currentIndexChanged, this, [this](int index) { Picked(index); });
}

QSize DataCombo::sizeHint() const { return {QComboBox::sizeHint().width(), FieldHeight(*this)}; }

QSize DataCombo::minimumSizeHint() const {
  return {QComboBox::minimumSizeHint().width(), FieldHeight(*this)};
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

}  // namespace ui
