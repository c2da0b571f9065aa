// What a control must do to be bound to a column.
#pragma once

#include <string>

#include "platform/runtime/Value.h"

class QWidget;

namespace ui {

/// A control that shows a column's value. It writes nothing back unless the user has changed it, so that a
/// Null stays a Null.
class BoundControl {
 public:
  virtual ~BoundControl() = default;
  /// Shows the value as unchanged.
  virtual void ShowValue(const rt::Value& value) = 0;
  /// Whether the user or the program has changed the content since ShowValue.
  virtual bool Changed() const { return false; }
  /// The content to store: a text as typed, or a value with its type. In a column that is not a text, an
  /// empty text means Null.
  virtual rt::Value Content() const { return {}; }
  /// Says that the content is stored now.
  virtual void SetUnchanged() {}
  /// Limits the number of characters to what the column takes.
  virtual void SetLimit(int characters) { static_cast<void>(characters); }
  virtual QWidget* Widget() = 0;
};

}  // namespace ui
