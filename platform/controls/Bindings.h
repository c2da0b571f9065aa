// The columns of one record and the controls that show them.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/controls/BoundControl.h"
#include "platform/store/Cursor.h"

namespace ui {

/// A record as the bindings see it, whichever object model it comes from.
class BoundRecord {
 public:
  virtual ~BoundRecord() = default;
  /// Whether there is a row.
  virtual bool HasRow() = 0;
  virtual const std::vector<store::FieldInfo>& Fields() = 0;
  /// -1 where there is no such column.
  virtual int FieldIndex(std::string_view column) = 0;
  virtual rt::Value Get(int field) = 0;
  virtual void Set(int field, const rt::Value& value) = 0;
};

/// What was typed cannot be stored in the control's column. The control has been given the focus.
class BadContent : public std::runtime_error {
 public:
  BadContent(BoundControl& control, const std::string& text) : std::runtime_error(text), control_(&control) {}
  BoundControl& Control() const { return *control_; }

 private:
  BoundControl* control_;
};

class Bindings {
 public:
  /// `label` is the prompt that a message names the field by.
  void Add(BoundControl& control, std::string column, std::string label = {});
  /// Fills all controls from the row; blank where there is none.
  void Show(BoundRecord& record);
  /// Puts what was changed into the record, which is being edited. Throws BadContent at the first control
  /// whose text is no value of its column; controls before it have been stored then.
  void Store(BoundRecord& record);
  bool Changed() const;

 private:
  struct Binding {
    BoundControl* control;
    std::string column;
    std::string label;
  };
  std::vector<Binding> bindings_;
};

/// The value that a typed text stands for in a column of this type: Null for an empty text, except in a text
/// column. Throws RuntimeError 13 for a text that is no such value and 6 for one out of range.
rt::Value ValueOf(const std::string& text, store::ColumnType type);

}  // namespace ui
