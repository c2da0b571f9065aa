// The window of one record, which it holds from opening to OK or Cancel.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "platform/controls/Adodc.h"
#include "platform/controls/DataControl.h"
#include "platform/controls/DataGrid.h"
#include "platform/controls/Form.h"
#include "platform/controls/TextBox.h"

class QBoxLayout;
class QLayout;
class QPushButton;

namespace dw {

/// What an added record gets in its audit columns.
enum class AuditOnAdd {
  CreationOnly,  ///< who and when it was created
  AllFour,       ///< also an empty updater and no time of update
};

struct DetailDefinition {
  const char* form;
  const char* title;
  const char* data;   ///< name of the data control
  const char* table;  ///< as it stands in the query, with its brackets
  /// What the message of a vanished record calls it: "Division #".
  const char* recordWords;
  AuditOnAdd audit = AuditOnAdd::CreationOnly;
  /// Columns of the audit: who and when created, who and when updated.
  const char* createdBy = "Created By";
  const char* dateCreated = "Date Created";
  const char* updatedBy = "Updated By";
  const char* lastUpdated = "Last Updated";
  const char* ok = "OkButton";  ///< name of the button
};

/// Another user holds the record that was to be changed.
void TellHeldElsewhere();

/// Opening for adding makes an empty row at once, so that the record has its number before anything is typed;
/// Cancel takes it away again. A record that somebody else holds is shown for reading.
class DetailForm : public ui::Form {
 public:
  explicit DetailForm(const DetailDefinition& definition);

  bool AddMode = false;
  std::int32_t DataID = 0;

  /// Reads the record with this number, then once more the one with DataID.
  void OpenRecord(std::int32_t id);
  void LoadRecord();
  /// Reads the inner grids anew.
  void RefreshGrid();
  /// What the two buttons do.
  void Ok();
  void Cancel();

  QPushButton* OkButton;
  QPushButton* CancelButton;
  /// Created By, Date Created, Updated By, Last Updated; "Label4(0)" to "Label4(3)".
  std::deque<ui::BoundLabel> Label4;

  ui::DataControl& Data() { return data_; }
  const ui::DataControl& Data() const { return data_; }

 protected:
  void OnLoad() override;
  void OnActivate() override;

  /// Sets the columns of the empty row that adding makes.
  virtual void FillPlaceholder(dao::Recordset& record) { static_cast<void>(record); }
  /// Runs once the record is held or known to be held by another.
  virtual void RecordLoaded() {}
  /// Runs before the record is read: what the record's lists show.
  virtual void OpenLists() {}
  /// The rules of OK. False has told what is wrong and set the focus.
  virtual bool ValidData() { return true; }

  /// Stores the controls and the audit columns and frees the record. False, with a message, where it cannot
  /// be stored: the window stays and nothing typed is lost.
  bool SaveRecord();
  /// Puts what the controls hold into the record in hand. False, with a message and the focus on the field,
  /// where a text is no value of its column.
  bool StoreControls();
  /// Whether the record is held for changing.
  bool Held() const { return Data().Recordset() && Data().Recordset()->Editing(); }
  /// The words of a vanished record.
  virtual std::string RereadWords() const;

  /// A grid for reading inside the window. `query` is asked with the record at each refresh; without a record
  /// `emptyQuery` stands.
  struct InnerGrid {
    InnerGrid(ui::Form& form, const char* gridName, const char* dataName)
        : data(form, dataName), grid(gridName) {}
    ui::Adodc data;
    ui::DataGrid grid;
    std::string emptyQuery;
    std::function<std::string(dao::Recordset&)> query;
  };
  InnerGrid& AddInnerGrid(const char* grid, const char* data, std::vector<ui::GridColumn> columns,
                          std::string emptyQuery, std::function<std::string(dao::Recordset&)> query);

  /// Lays the window out: the fields on top, what takes the room that is left below, then the audit line and
  /// the buttons. `extra` stand to the left of OK.
  void LayOut(QLayout* fields, std::initializer_list<QWidget*> room = {},
              std::initializer_list<QWidget*> extra = {});
  /// Several lines of text, in a group "Notes": while it has the focus Enter makes a new line and OK is not
  /// the default button.
  QWidget* NotesGroup(ui::NotesBox& notes, const char* frame = "Frame1");
  /// A field that shows the record's number.
  void ShowNumber(ui::TextBox& field);
  /// Takes the record again at the next activation, as a window does that has been saved for another.
  void LoadAgain() { Activated = false; }

  bool Activated = false;  ///< the first activation has begun
  bool LoadedOK = false;   ///< there is a record to refresh the grids for

  DetailDefinition definition_;

 private:
  ui::DataControl data_;
  std::deque<InnerGrid> innerGrids_;
};

}  // namespace dw
