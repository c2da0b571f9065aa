// The data control of the object model with edit locks: one query on a file that it opens for itself, and the
// controls that are bound to its record.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/controls/Bindings.h"
#include "platform/dao/Dao.h"

namespace ui {

class Form;

/// Opens a data file for data controls. Null if that failed; it has shown the reason then.
using DatabaseOpener = std::function<std::shared_ptr<dao::Database>(const std::string& path)>;
/// Returns the earlier opener. Without one, the control opens the file itself and throws its errors.
DatabaseOpener InstallDatabaseOpener(DatabaseOpener opener);

class DataControl {
 public:
  /// Lives as long as its form and closes with it.
  DataControl(Form& form, std::string name);
  DataControl(const DataControl&) = delete;
  DataControl& operator=(const DataControl&) = delete;

  std::string DatabaseName;  ///< path of the data file
  std::string RecordSource;  ///< a SELECT, or a table's name

  /// Binds a control to a column; `label` is what messages call the field.
  void Bind(BoundControl& control, std::string column, std::string label = {});
  /// Runs the record source again, drops an edit in progress, and shows the first row. Throws the engine's
  /// errors.
  void Refresh();
  /// Shows the row again as the recordset has it.
  void ShowRecord();
  /// Writes the content of the controls into the current record before it is saved. Throws BadContent.
  void StoreControls();
  bool Changed() const { return bindings_.Changed(); }

  /// Null before the first Refresh.
  const std::shared_ptr<dao::Recordset>& Recordset() const { return recordset_; }
  bool HasRow() const { return recordset_ && !recordset_->AtEnd(); }
  /// Releases the record and the file.
  void Close();
  const std::string& Name() const { return name_; }

 private:
  std::string name_;
  Bindings bindings_;
  std::string openName_;
  std::shared_ptr<dao::Workspace> workspace_;
  std::shared_ptr<dao::Database> database_;
  std::shared_ptr<dao::Recordset> recordset_;
};

}  // namespace ui
