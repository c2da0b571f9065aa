// The list of a list and detail pair: a grid of all rows, with no fields of its own.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/controls/Adodc.h"
#include "platform/controls/DataGrid.h"
#include "platform/controls/Form.h"
#include "windows/BoundFile.h"
#include "windows/OpenDetailForm.h"

class QPushButton;

namespace dw {

/// What a delete from a list asks and says.
struct DeleteRule {
  std::string inUseQuery = {};  ///< rows that it finds prevent the delete; empty for no such check
  std::string inUseWords = {};
  screen::Icon inUseIcon = screen::Icon::Exclamation;
  std::string recordQuery;  ///< the record itself
};

/// Deletes a record over a connection of its own, after the check and the question. True if it is gone.
bool DeleteRecord(const DeleteRule& rule);

/// What one list is, and how it differs from the others.
struct ListDefinition {
  const char* form;   ///< the form's name
  const char* title;  ///< its caption
  const char* grid;   ///< names of the grid and of its data control
  const char* data;
  std::string emptyQuery;               ///< shows the columns and no row, at load
  std::string query;                    ///< all rows, at each activation
  std::vector<ui::GridColumn> columns;  ///< the first is the record's ID
  const BoundFile* file = &kMainFile;
};

/// Space and double click open the record, Insert adds one, Delete deletes it. Each activation reads the rows
/// anew, and so the list shows what a closed window has changed.
class ListForm : public ui::Form {
 public:
  explicit ListForm(ListDefinition definition);

  void AddItem();
  void ShowDetail();
  void RefreshList();
  virtual void DeleteItem() = 0;

  ui::DataGrid& Grid() { return *grid_; }
  ui::Adodc& Data() { return data_; }
  std::int32_t CurrentRow = 0;  ///< the row at the last add, detail or delete
  QPushButton* closeButton;

 protected:
  void OnLoad() override;
  void OnActivate() override;

  /// Opens the pair's detail form. `id` is -1 when adding.
  virtual void OpenDetail(bool add, std::int32_t id) = 0;
  /// Whether a record may be added or shown at all; reports why not.
  virtual bool MayOpen() { return true; }

  /// The delete of most lists. Without rows it says so; otherwise it follows the rule and, if the record is
  /// gone, reads the list anew.
  void DeleteRow(const std::function<DeleteRule()>& rule);
  /// The same for lists that delete in a way of their own: `remove` returns true if the record is gone.
  void RemoveRow(const std::function<bool()>& remove);
  /// Whether another user deleted the grid's row before it was read. If so, reports it and reads the list
  /// anew.
  bool RowIsGone();
  bool HasRows();
  /// The text of a column in the grid's row.
  std::string CellText(int column);
  /// The row's ID, from the first column.
  std::int32_t RowID();

  /// Another button to the left of "Close".
  void AddButton(QPushButton& button);
  /// A control of its own over the grid, before it in the order of the Tab key.
  void AddAbove(QWidget& control);
  /// The query for the rows that the list shows now.
  virtual std::string Query() const { return definition_.query; }

 private:
  ListDefinition definition_;
  ui::Adodc data_;
  ui::DataGrid* grid_;
};

/// BindToFile with the main file.
void BindToMainFile(ui::Adodc& data, const std::string& query);

}  // namespace dw
