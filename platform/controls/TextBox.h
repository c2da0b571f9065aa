// Text fields: one line, a number or amount with a format, notes of several lines, read-only texts.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <functional>
#include <string>

#include "platform/controls/BoundControl.h"

namespace ui {

/// Which characters the field accepts; any other one beeps and is dropped. Backspace and editing keys always
/// pass.
enum class Keys { Any, Digits, DigitsAndPoint, UpperCase };

/// A field of one line.
class TextBox : public QLineEdit, public BoundControl {
 public:
  /// `format` (see Format) shows the value while the field does not have the focus.
  explicit TextBox(const char* name, Keys keys = Keys::Any, std::string format = {});

  /// The content to store, without the format's signs.
  std::string Text() const;
  /// Sets the content as typing would.
  void SetText(const std::string& text);
  /// Makes the field show its value only; the Tab key skips it.
  void SetDisplayOnly();
  /// Marks the whole content whenever the focus comes in.
  void SelectOnEntry() { selectOnEntry_ = true; }

  /// Called when the focus has come in, before the content is marked.
  std::function<void()> onEnter;
  /// Called when the focus goes to another control of this window. False brings the focus back and drops the
  /// click that took it away.
  std::function<bool()> onLeave;
  std::function<void()> onChange;

  void ShowValue(const rt::Value& value) override;
  bool Changed() const override { return changed_; }
  rt::Value Content() const override { return Text(); }
  void SetUnchanged() override { changed_ = false; }
  void SetLimit(int characters) override { setMaxLength(characters); }
  QWidget* Widget() override { return this; }

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void ShowFormatted();
  void Typed();

  Keys keys_;
  std::string format_;
  std::string plain_;  ///< the content while the formatted text is visible
  bool formatted_ = false;
  bool changed_ = false;
  bool selectOnEntry_ = false;
  bool entered_ = false;  ///< stays true while another window is in front
};

/// A field for numbers: accepts digits and the point, right-aligned, with a format while the focus is
/// elsewhere.
class MaskEdBox : public TextBox {
 public:
  explicit MaskEdBox(const char* name, std::string format = {}, Keys keys = Keys::DigitsAndPoint);
};

/// The format of all amounts of money.
inline constexpr const char* kMoneyFormat = "$#,##0.00;($#,##0.00)";

/// A field of several lines. Enter makes a new line, Tab leaves.
class NotesBox : public QPlainTextEdit, public BoundControl {
 public:
  explicit NotesBox(const char* name);
  std::string Text() const;
  void SetText(const std::string& text);

  std::function<void()> onEnter;
  std::function<bool()> onLeave;

  void ShowValue(const rt::Value& value) override;
  bool Changed() const override { return changed_; }
  rt::Value Content() const override { return Text(); }
  void SetUnchanged() override { changed_ = false; }
  QWidget* Widget() override { return this; }
  /// Five lines, for notes that are mostly empty.
  QSize sizeHint() const override;

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  bool changed_ = false;
};

/// A read-only value.
class BoundLabel : public QLabel, public BoundControl {
 public:
  explicit BoundLabel(const char* name, std::string format = {});
  void ShowValue(const rt::Value& value) override;
  QWidget* Widget() override { return this; }

 private:
  std::string format_;
};

}  // namespace ui
