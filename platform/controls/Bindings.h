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

/// A record as the bindings see it, whatever object model it comes from.
class BoundRecord {
 public:
  virtual ~BoundRecord() = default;
  /// Whether there is a row.
  virtual bool HasRow() = 0;
  virtual const std::vector<store::FieldInfo>& Fields() = 0;
  /// -1 if there is no such column.
  virtual int FieldIndex(std::string_view column) = 0;
  virtual rt::Value Get(int field) = 0;
  virtual void Set(int field, const rt::Value& value) = 0;
};

/// The column cannot store what the user typed. The control has the focus now.
class BadContent : public std::runtime_error {
 public:
  BadContent(BoundControl& control, const std::string& text) : std::runtime_error(text), control_(&control) {}
  BoundControl& Control() const { return *control_; }

 private:
  BoundControl* control_;
};

class Bindings {
 public:
  /// Messages call the field by `label`, its prompt.
  void Add(BoundControl& control, std::string column, std::string label = {});
  /// Fills all controls from the row; with blanks if there is none.
  void Show(BoundRecord& record);
  /// Writes changed controls into the record, which must be in edit. Throws BadContent at the first control
  /// whose text is not a value of its column; the controls before it are written by then.
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

/// Converts a typed text to a value of this column type: Null for an empty text, except in a text column.
/// Throws RuntimeError 13 if the text is not such a value and 6 if it is out of range.
rt::Value ValueOf(const std::string& text, store::ColumnType type);

}  // namespace ui
