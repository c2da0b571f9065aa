// What a control must do to be bound to a column.
#pragma once

#include <string>

#include "platform/runtime/Value.h"

class QWidget;

namespace ui {

/// A control that shows a column's value. What the user has not changed is never written back, so that a Null
/// stays a Null.
class BoundControl {
 public:
  virtual ~BoundControl() = default;
  /// Shows the value as unchanged.
  virtual void ShowValue(const rt::Value& value) = 0;
  /// Whether the content has been changed, by the user or by the program, since ShowValue.
  virtual bool Changed() const { return false; }
  /// What is to be stored: a text as typed, or a value with its type. An empty text stands for Null in a
  /// column that holds no text.
  virtual rt::Value Content() const { return {}; }
  /// What was changed is stored now.
  virtual void SetUnchanged() {}
  /// The most characters that the column takes.
  virtual void SetLimit(int characters) { static_cast<void>(characters); }
  virtual QWidget* Widget() = 0;
};

}  // namespace ui
