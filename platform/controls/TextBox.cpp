#include "platform/controls/TextBox.h"

#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>

#include "platform/controls/Application.h"
#include "platform/controls/Format.h"
#include "platform/controls/Later.h"
#include "platform/controls/LeaveRule.h"
#include "platform/runtime/Text.h"

namespace ui {
namespace {

QString Shown(const std::string& text) { return QString::fromStdString(text); }

/// Whether the field accepts a typed character; keys without a character always pass.
bool Passes(Keys keys, const QString& typed) {
  if (typed.isEmpty() || !typed[0].isPrint()) return true;
  switch (keys) {
    case Keys::Any:
    case Keys::UpperCase:
      return true;
    case Keys::Digits:
      return typed[0] >= '0' && typed[0] <= '9';
    case Keys::DigitsAndPoint:
      return (typed[0] >= '0' && typed[0] <= '9') || typed[0] == '.';
  }
  return true;
}

}  // namespace

TextBox::TextBox(const char* name, Keys keys, std::string format) : keys_(keys), format_(std::move(format)) {
  setObjectName(QString::fromUtf8(name));
  connect(this, &QLineEdit::textEdited, this, [this] { Typed(); });
}

void TextBox::Typed() {
  plain_ = text().toStdString();
  changed_ = true;
  if (onChange) Guard([this] { onChange(); });
}

std::string TextBox::Text() const { return formatted_ ? plain_ : text().toStdString(); }

void TextBox::SetText(const std::string& text) {
  if (text == Text()) return;
  plain_ = text;
  formatted_ = false;
  setText(Shown(text));
  changed_ = true;
  if (!hasFocus()) ShowFormatted();
  if (onChange) Guard([this] { onChange(); });
}

void TextBox::SetDisplayOnly() {
  setReadOnly(true);
  setFocusPolicy(Qt::ClickFocus);
  setFrame(false);
  QPalette colors = palette();
  colors.setColor(QPalette::Base, colors.color(QPalette::Window));
  setPalette(colors);
}

void TextBox::ShowValue(const rt::Value& value) {
  plain_ = value.Shown();
  formatted_ = false;
  setText(Shown(plain_));
  setCursorPosition(0);
  if (!hasFocus())
    ShowFormatted();
  else if (!isReadOnly())
    selectAll();
  changed_ = false;
}

void TextBox::ShowFormatted() {
  if (format_.empty()) return;
  const auto number = rt::ParseNumber(plain_);
  if (!number) return;
  formatted_ = true;
  setText(Shown(Format(*number, format_)));
  setCursorPosition(0);
}

void TextBox::focusInEvent(QFocusEvent* event) {
  if (formatted_) {
    formatted_ = false;
    setText(Shown(plain_));
  }
  QLineEdit::focusInEvent(event);
  // When a window becomes active, its focus comes back to the field; only the first time is an entry.
  if (entered_ && (event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason))
    return;
  entered_ = true;
  if (onEnter) Guard([this] { onEnter(); });
  // Typing replaces the content of the field in which a window begins.
  if (event->reason() == Qt::ActiveWindowFocusReason && !isReadOnly()) selectAll();
  if (!selectOnEntry_) return;
  selectAll();
  // After this returns, the press that brought the focus sets the caret, so the marking must wait. Text that
  // is typed before then must stay unmarked, or the next key would replace it.
  if (event->reason() == Qt::MouseFocusReason)
    Later(*this, [this, entered = text()] {
      if (hasFocus() && text() == entered) selectAll();
    });
}

void TextBox::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason)
    entered_ = false;
  RunLeaveRule(*this, *event, onLeave);
  if (!hasFocus()) {
    plain_ = Text();
    ShowFormatted();
  }
}

void TextBox::keyPressEvent(QKeyEvent* event) {
  if (formatted_) {
    formatted_ = false;
    setText(Shown(plain_));
    selectAll();
  }
  const bool typing = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
  if (typing && !isReadOnly() && !Passes(keys_, event->text())) {
    QApplication::beep();
    event->accept();
    return;
  }
  if (typing && keys_ == Keys::UpperCase && !event->text().isEmpty() && event->text()[0].isPrint()) {
    QKeyEvent upper(event->type(), event->key(), event->modifiers(),
                    Shown(rt::UpperCase(event->text().toStdString())));
    QLineEdit::keyPressEvent(&upper);
    event->setAccepted(upper.isAccepted());
    return;
  }
  QLineEdit::keyPressEvent(event);
}

MaskEdBox::MaskEdBox(const char* name, std::string format, Keys keys)
    : TextBox(name, keys, std::move(format)) {
  setAlignment(Qt::AlignRight);
}

NotesBox::NotesBox(const char* name) {
  setObjectName(QString::fromUtf8(name));
  setTabChangesFocus(true);
  connect(this, &QPlainTextEdit::textChanged, this, [this] { changed_ = true; });
}

std::string NotesBox::Text() const { return toPlainText().toStdString(); }
void NotesBox::SetText(const std::string& text) { setPlainText(Shown(text)); }

QSize NotesBox::sizeHint() const {
  return {QPlainTextEdit::sizeHint().width(), fontMetrics().lineSpacing() * 5 + 2 * frameWidth() + 8};
}

void NotesBox::ShowValue(const rt::Value& value) {
  setPlainText(Shown(value.Shown()));
  changed_ = false;
}

void NotesBox::focusInEvent(QFocusEvent* event) {
  QPlainTextEdit::focusInEvent(event);
  if (onEnter) Guard([this] { onEnter(); });
}

void NotesBox::focusOutEvent(QFocusEvent* event) {
  QPlainTextEdit::focusOutEvent(event);
  RunLeaveRule(*this, *event, onLeave);
}

BoundLabel::BoundLabel(const char* name, std::string format) : format_(std::move(format)) {
  setObjectName(QString::fromUtf8(name));
  setTextFormat(Qt::PlainText);
  setTextInteractionFlags(Qt::TextSelectableByMouse);
}

void BoundLabel::ShowValue(const rt::Value& value) {
  setText(Shown(value.IsNull() ? std::string() : (format_.empty() ? value.Shown() : Format(value, format_))));
}

}  // namespace ui
