// A list to choose from that can also be typed into.
#pragma once

#include <QComboBox>
#include <functional>
#include <string>
#include <vector>

#include "platform/controls/BoundControl.h"

namespace ui {

/// Typing completes the entry that begins with the typed letters. A text that is an entry in other letters
/// becomes that entry when the focus leaves; any other text stays as typed, and the form decides about it.
class ComboBox : public QComboBox, public BoundControl {
 public:
  explicit ComboBox(const char* name);

  /// Replaces the list; the text stays.
  void SetItems(const std::vector<std::string>& items);
  bool HasItem(const std::string& text) const;
  std::string Text() const { return currentText().toStdString(); }
  /// Sets the text as typing would.
  void SetText(const std::string& text) { setEditText(QString::fromStdString(text)); }

  std::function<void()> onChange;
  /// Called when the focus goes to another control of this window. False brings the focus back.
  std::function<bool()> onLeave;

  void ShowValue(const rt::Value& value) override;
  bool Changed() const override { return changed_; }
  rt::Value Content() const override { return Text(); }
  void SetUnchanged() override { changed_ = false; }
  void SetLimit(int characters) override;
  QWidget* Widget() override { return this; }

 protected:
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void TakeItsEntry();

  bool changed_ = false;
};

}  // namespace ui
