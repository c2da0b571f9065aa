// How a window has its record to itself, from its opening to OK or Cancel.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/runtime/Value.h"

namespace ui {
class BoundControl;
}

namespace dw {

/// Where a record is and how its window reads it.
struct RecordSource {
  const char* data;  ///< name of the data control
  std::string table;
  /// The query for the record of this number; none has the number -1.
  std::string Query(std::int32_t id) const {
    return "SELECT * FROM " + table + " WHERE [ID] = " + std::to_string(id);
  }
};

/// What a window reads around its record.
struct AroundRecord {
  std::function<void()> openLists;     ///< what its combos and lists offer
  std::function<void()> refreshGrids;  ///< the rows of its inner grids
};

/// What came of taking a record.
enum class Taken {
  Held,           ///< nobody else can change it now
  HeldElsewhere,  ///< another user has it, which has been reported
  Failed,         ///< it cannot be shown at all, which has been reported
};

/// One record and the hold on it. There are two kinds: EditHold and TransactionHold.
class RecordHold {
 public:
  virtual ~RecordHold() = default;

  /// Binds a control to a column; `label` is what messages call the field.
  virtual void Bind(ui::BoundControl& control, std::string column, std::string label) = 0;
  virtual bool HasRow() const = 0;
  /// What the record has in a column; Null where there is no record.
  virtual rt::Value Get(const std::string& column) = 0;
  virtual void Set(const std::string& column, const rt::Value& value) = 0;

  /// Shows a window without a record.
  virtual void OpenBlank(const AroundRecord& around) = 0;
  /// Reads the record with the number `id` and what is around it, and shows it. `own` is the number that the
  /// window has at that time.
  virtual void Read(std::int32_t id, std::int32_t own, const AroundRecord& around) = 0;
  /// Shows the record again as it is now.
  virtual void Show() = 0;
  /// Adds an empty row, which `fill` completes. Returns its number; nothing where it cannot be added, which
  /// has been reported.
  virtual std::optional<std::int32_t> AddRow(const std::function<void()>& fill) = 0;

  virtual Taken Take() = 0;
  /// Called once the window shows the record that it has taken.
  virtual void KeepHeld() {}
  virtual bool Held() const = 0;
  /// Puts what the controls hold into the record. Throws ui::BadContent.
  virtual void StoreControls() = 0;
  /// Stores the record and gives it back. False, after a message, where it cannot be stored: it stays held.
  virtual bool Store() = 0;
  /// Removes the row that AddRow made and gives the hold back.
  virtual void RemoveRow() = 0;
  /// Gives the record back as it was.
  virtual void GiveBack() = 0;
};

}  // namespace dw
