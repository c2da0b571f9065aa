// How a window holds its record, from its opening to OK or Cancel.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/runtime/Value.h"
#include "windows/BoundFile.h"

namespace ui {
class BoundControl;
}

namespace dw {

/// Where a record is and how its window reads it.
struct RecordSource {
  const char* data;  ///< name of the data control
  std::string table;
  const BoundFile* file = &kMainFile;
  /// The query for the record with this number; -1 finds none.
  std::string Query(std::int32_t id) const {
    return "SELECT * FROM " + table + " WHERE [ID] = " + std::to_string(id);
  }
};

/// What a window reads around its record.
struct AroundRecord {
  std::function<void()> openLists;     ///< the choices of its combos and lists
  std::function<void()> refreshGrids;  ///< the rows of its inner grids
};

/// The result of taking a record.
enum class Taken {
  Held,           ///< nobody else can change it now
  HeldElsewhere,  ///< another user holds it, which has been reported
  Failed,         ///< it cannot be shown at all, which has been reported
};

/// One record and the hold on it. There are two kinds: EditHold and TransactionHold.
class RecordHold {
 public:
  virtual ~RecordHold() = default;

  /// Binds a control to a column; `label` is what messages call the field.
  virtual void Bind(ui::BoundControl& control, std::string column, std::string label) = 0;
  virtual bool HasRow() const = 0;
  /// The record's value in a column; Null if there is no record.
  virtual rt::Value Get(const std::string& column) = 0;
  virtual void Set(const std::string& column, const rt::Value& value) = 0;

  /// Shows a window without a record.
  virtual void OpenBlank(const AroundRecord& around) = 0;
  /// Reads the record with the number `id` and the data around it, and shows it. `own` is the number that the
  /// window has at that time.
  virtual void Read(std::int32_t id, std::int32_t own, const AroundRecord& around) = 0;
  /// Shows the record again as it is now.
  virtual void Show() = 0;
  /// Adds an empty row, which `fill` completes. Returns its number; empty if it cannot be added, which has
  /// been reported.
  virtual std::optional<std::int32_t> AddRow(const std::function<void()>& fill) = 0;

  virtual Taken Take() = 0;
  /// Called once the window shows the record that it has taken.
  virtual void KeepHeld() {}
  virtual bool Held() const = 0;
  /// Puts the contents of the controls into the record. Throws ui::BadContent.
  virtual void StoreControls() = 0;
  /// Stores the record and releases it. False, after a message, if it cannot be stored: it stays held.
  virtual bool Store() = 0;
  /// Removes the row that AddRow made and releases the hold.
  virtual void RemoveRow() = 0;
  /// Releases the record unchanged.
  virtual void GiveBack() = 0;
};

}  // namespace dw
