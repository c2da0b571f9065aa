// The window of one record that is held by a transaction of its own.
#pragma once

#include <cstdint>
#include <deque>
#include <string>

#include "platform/controls/Adodc.h"
#include "platform/controls/Bindings.h"
#include "platform/controls/Form.h"
#include "platform/controls/TextBox.h"

class QPushButton;

namespace dw {

struct AdoDetailDefinition {
  const char* form;
  const char* title;
  const char* data;  ///< name of the data control
  std::string emptyQuery;
  std::string query;        ///< the record's number goes behind it
  std::string recordWords;  ///< what the message of a vanished record calls it: "Inventory #"
  const char* lockField;    ///< the column that is read and written back to learn whether the record is free
  const char* ok = "OKButton";
};

/// Adding makes an empty row at once. From its loading to OK or Cancel the record is held by a transaction on
/// the window's own connection; a record that somebody else holds is shown for reading. A save for a child
/// window lets it go, and the next activation reads and holds it again: what was saved then stays, whatever
/// happens later.
class AdoDetailForm : public ui::Form {
 public:
  explicit AdoDetailForm(const AdoDetailDefinition& definition);

  bool AddMode = false;  ///< the row was made by this window and has not been saved yet
  std::int32_t DataID = 0;

  void LoadRecord();
  void Ok();
  void Cancel();

  QPushButton* OKButton;
  QPushButton* CancelButton;
  std::deque<ui::BoundLabel> Label4;  ///< audit columns, "Label4(0)" to "Label4(3)"

  ui::Adodc& Data() { return data_; }

 protected:
  void OnLoad() override;
  void OnActivate() override;

  /// Reads the record with this number into the controls, and what OpenLists adds.
  virtual void OpenRecord(std::int32_t id);
  /// Gives the lists of the window their queries for the record that was just read.
  virtual void OpenLists() {}
  /// The record is there, and held elsewhere or free; the hold itself comes afterwards.
  virtual void RecordLoaded() {}
  /// Runs at each activation with a loaded record, unless the window is minimised. False where the record has
  /// been saved and is to be loaded again.
  virtual bool Refreshed() { return true; }
  virtual bool ValidData() { return true; }
  /// What the bindings do not store: values that code moves.
  virtual bool StoreMore(ado::Recordset& record) {
    static_cast<void>(record);
    return true;
  }

  void Bind(ui::BoundControl& control, std::string column, std::string label = {});
  bool HasRow();
  ado::Recordset& Record() { return *data_.Recordset(); }
  /// Null where there is no row.
  rt::Value Stored(const std::string& column);

  /// Stores controls and audit columns, ends the transaction and gives the record back. False, after a
  /// message, where it could not be stored; the record is still held then.
  bool SaveRecord();
  /// Validates and saves what was typed, and takes care that the next activation loads the record again: what
  /// comes before another window works on this record's rows. A window for reading has nothing to save. False
  /// where a rule or the save failed.
  bool SaveForChild();
  void Rearm();
  bool ReadOnly() const;

  bool Activated = false;
  bool LoadedOK = false;

 private:
  bool AddRow();
  void Hold();
  void Show();
  void LetGo();

  AdoDetailDefinition definition_;
  ui::Adodc data_;
  ui::Bindings bindings_;
  bool held_ = false;
};

}  // namespace dw
