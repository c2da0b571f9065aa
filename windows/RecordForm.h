// The window of one record, which it holds from its opening to OK or Cancel.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "platform/controls/Adodc.h"
#include "platform/controls/DataGrid.h"
#include "platform/controls/Form.h"
#include "platform/controls/TextBox.h"
#include "platform/screen/Screen.h"
#include "windows/EditHold.h"
#include "windows/TransactionHold.h"

class QLayout;
class QPushButton;

namespace dw {

/// The audit columns of an added record.
enum class AuditOnAdd {
  CreationOnly,  ///< who and when it was created
  AllFour,       ///< also an empty updater and no time of update
};

/// The definition of a window: where its record comes from, and what messages call it.
struct RecordDefinition {
  const char* form;
  const char* title;
  const char* data;   ///< name of the data control
  const char* table;  ///< as the query names it, with its brackets
  /// What the message about a vanished record calls it: "Division #".
  const char* recordWords;
  /// The column that is read and written back to find out whether the record is free. With it, the window
  /// holds the record by a transaction of its own; without it, by an edit.
  const char* lockField = nullptr;
  AuditOnAdd audit = AuditOnAdd::CreationOnly;
  /// The audit columns: who created the record and when, who updated it last and when.
  const char* createdBy = "Created By";
  const char* dateCreated = "Date Created";
  const char* updatedBy = "Updated By";
  const char* lastUpdated = "Last Updated";
  const char* ok = "OKButton";  ///< name of the button
  /// The file of the record and of the inner grids; only a window that holds by a transaction may have
  /// another one than the main file.
  const BoundFile* file = &kMainFile;
};

/// A field in a row of its own, beside its prompt.
struct RecordField {
  ui::BoundControl& control;
  const char* column;
  const char* prompt;  ///< also what messages call the field
  int width = 0;       ///< in characters; 0 for all the room there is
};

/// Opening a window for adding makes an empty row at once, so that the record has its number before anything
/// is typed. Cancel removes the row again. A record that another user holds is shown for reading.
class RecordForm : public ui::Form {
 public:
  explicit RecordForm(const RecordDefinition& definition);

  bool AddMode = false;  ///< the row was made by this window and has not been saved yet
  std::int32_t DataID = 0;

  /// Reads the record with this number, and the data around it.
  void OpenRecord(std::int32_t id);
  void LoadRecord();
  /// Reads the inner grids again.
  void RefreshGrid();
  /// The actions of the two buttons.
  void Ok();
  void Cancel();

  QPushButton* okButton;
  QPushButton* cancelButton;
  /// Created By, Date Created, Updated By, Last Updated; "Label4(0)" to "Label4(3)".
  std::deque<ui::BoundLabel> auditLabels;

  RecordHold& Hold() const { return *hold_; }

 protected:
  void OnLoad() override;
  void OnActivate() override;

  /// Sets the columns of the new empty row.
  virtual void FillPlaceholder() {}
  /// Runs once the window holds the record or knows that another user holds it.
  virtual void RecordLoaded() {}
  /// Fills the lists that the record's controls choose from.
  virtual void OpenLists() {}
  /// Runs at each activation with a loaded record, unless the window is minimized: reads the inner grids.
  /// False if the record has been saved and is to be loaded again.
  virtual bool Refreshed();
  /// The rules of OK. False if one is broken: it has reported that and set the focus.
  virtual bool ValidData() { return true; }
  /// Stores what no binding stores. False as ValidData.
  virtual bool StoreMore() { return true; }
  /// The message about a vanished record.
  virtual std::string RereadWords() const;
  /// Shows that message.
  virtual void ReportVanished();
  /// Whether the window stays open for reading if taking the record failed for another reason than a hold
  /// elsewhere.
  virtual bool StaysUnheld() const { return false; }

  void Bind(ui::BoundControl& control, std::string column, std::string label = {}) {
    hold_->Bind(control, std::move(column), std::move(label));
  }
  /// A column of the record; Null if there is no record.
  rt::Value Stored(const std::string& column) const { return hold_->Get(column); }
  /// The hold by its kind.
  EditHold& ByEdit() const { return dynamic_cast<EditHold&>(*hold_); }
  TransactionHold& ByTransaction() const { return dynamic_cast<TransactionHold&>(*hold_); }
  bool Held() const { return hold_->Held(); }
  bool ReadOnly() const;

  /// Stores the controls and the audit columns and releases the record. False, with a message, if it cannot
  /// be stored: the window stays and nothing typed is lost.
  bool SaveRecord();
  /// Puts the contents of the controls into the record. False, with a message and the focus on the field, if
  /// a text is not a value of its column.
  bool StoreControls();
  /// Validates and saves the record, and makes the next activation load it again. Called before another
  /// window works on this record's rows. A window for reading has nothing to save. False if a rule or the
  /// save failed.
  bool SaveForChild();
  /// Makes the next activation take the record again, as after a save for another window.
  void Rearm();
  /// Reports what is wrong with a field and sets the focus there. Returns false, for ValidData.
  static bool Refuse(QWidget& field, const std::string& words, screen::Icon icon = screen::Icon::Critical);

  /// A grid for reading inside the window. Each refresh runs `query` with the record, or `emptyQuery` without
  /// one.
  struct InnerGrid {
    InnerGrid(ui::Form& form, const char* gridName, const char* dataName)
        : data(form, dataName), grid(gridName) {}
    ui::Adodc data;
    ui::DataGrid grid;
    std::string emptyQuery;
    std::function<std::string(RecordHold&)> query;
  };
  InnerGrid& AddInnerGrid(const char* grid, const char* data, std::vector<ui::GridColumn> columns,
                          std::string emptyQuery, std::function<std::string(RecordHold&)> query);

  /// Binds and lays out a plain window: a row for each field, then `room`, the audit line and the buttons.
  void Declare(std::initializer_list<RecordField> fields, std::initializer_list<QWidget*> room = {});
  /// Lays the window out: the fields on top, then what fills the remaining room, then the audit line and the
  /// buttons. `extra` are to the left of OK.
  void LayOut(QLayout* fields, std::initializer_list<QWidget*> room = {},
              std::initializer_list<QWidget*> extra = {});
  /// Several lines of text, in a group "Notes".
  QWidget* NotesGroup(ui::NotesBox& notes, const char* frame = "Frame1");
  /// While the notes have the focus, Enter starts a new line and OK is not the default button.
  void EnterMakesLines(ui::NotesBox& notes);
  /// A field that shows the record's number.
  void ShowNumber(ui::TextBox& field);

  bool Activated = false;  ///< the first activation has begun
  bool LoadedOK = false;   ///< there is a record to refresh the grids for

 private:
  AroundRecord Around();

  RecordDefinition definition_;
  std::unique_ptr<RecordHold> hold_;
  std::deque<InnerGrid> innerGrids_;
};

}  // namespace dw
