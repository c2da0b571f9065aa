// The data control of the object model with edit locks: one query on a file of its own opening, and the
// controls that are bound to its record.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/controls/Bindings.h"
#include "platform/dao/Dao.h"

namespace ui {

class Form;

/// Opens a data file for data controls; null when it could not be opened, which the user has been told.
using DatabaseOpener = std::function<std::shared_ptr<dao::Database>(const std::string& path)>;
/// Gives the earlier one. Without one the file is opened plainly, and what fails is thrown.
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
  /// Runs the record source again (an edit in hand is given up) and shows its first row. Engine errors are
  /// thrown.
  void Refresh();
  /// Shows the row again as it stands in the recordset.
  void ShowRecord();
  /// Puts what the controls hold into the record in hand, as saving it needs. Throws BadContent.
  void StoreControls();
  bool Changed() const { return bindings_.Changed(); }

  /// Null before the first Refresh.
  const std::shared_ptr<dao::Recordset>& Recordset() const { return recordset_; }
  bool HasRow() const { return recordset_ && !recordset_->AtEnd(); }
  /// Gives the record and the file back.
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
