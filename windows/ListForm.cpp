#include "windows/ListForm.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "data/Application.h"
#include "data/BrackenfelGlobals.h"
#include "data/GenericADO.h"
#include "data/GenericDAO.h"
#include "data/GenericTools.h"
#include "data/MainConnection.h"
#include "platform/controls/Layout.h"
#include "platform/runtime/Text.h"

namespace dw {

void ReportNoRecords() { screen::MessageBox("There are no records for which to display detail."); }

std::optional<std::int32_t> RowNumber(ui::DataGrid& grid, const std::function<void()>& refresh) {
  const std::string text = grid.CellText(0);
  if (rt::IsNumeric(text)) return rt::Value(text).AsLong();
  screen::MessageBox("That ID is no longer on file.", screen::Icon::Exclamation);
  refresh();
  return std::nullopt;
}

bool detail::MayOpenDetail(const char* form, ui::DataGrid& grid, bool add, std::int32_t& currentRow,
                           bool hasRows) {
  if (ui::FindForm(form)) {
    screen::MessageBox("That window is already open with another record.", screen::Icon::Information);
    return false;
  }
  currentRow = grid.Row();
  if (!add && !hasRows) {
    ReportNoRecords();
    return false;
  }
  return true;
}

void BindToMainFile(ui::Adodc& data, const std::string& query) { BindToFile(data, query, kMainFile); }

void BindToFile(ui::Adodc& data, const std::string& query, const BoundFile& file) {
  data.onError = [](int number, const std::string&, bool& cancelDisplay) {
    cancelDisplay = AdoIgnoreDataError(number);
  };
  // A window that is already open may have asked for the file meanwhile; then the path is known.
  data.onMissingFile = [&file](const std::string& tried) {
    if (tried == file.connect) LocateFile(BareFileName(file.path));
    return file.connect;
  };
  ui::AdoBindDataControl(data, file.connect, query, ado::adLockOptimistic, 10);
}

ListForm::ListForm(ListDefinition definition)
    : Form(definition.form),
      closeButton(new QPushButton("Close")),
      definition_(std::move(definition)),
      data_(*this, definition_.data),
      grid_(new ui::DataGrid(definition_.grid)) {
  setWindowTitle(definition_.title);
  closeButton->setObjectName("CloseButton");
  grid_->setAccessibleName(definition_.title);
  auto* column = new QVBoxLayout(this);
  column->addWidget(grid_, 1);
  column->addLayout(ui::ButtonRow({closeButton}));
  resize(fontMetrics().averageCharWidth() * 130, fontMetrics().height() * 26);

  ui::OnClick(*closeButton, [this] { Unload(); });
  SetCancel(closeButton);
  grid_->onAdd = [this] { AddItem(); };
  grid_->onDetail = [this] { ShowDetail(); };
  grid_->onDelete = [this] { DeleteItem(); };
}

void ListForm::AddButton(QPushButton& button) {
  // The buttons are last.
  auto* row = static_cast<QHBoxLayout*>(layout()->itemAt(layout()->count() - 1)->layout());
  row->insertWidget(row->indexOf(closeButton), &button);
  // Behind the grid, before "Close".
  QWidget::setTabOrder(grid_, &button);
  QWidget::setTabOrder(&button, closeButton);
}

void ListForm::AddAbove(QWidget& control) {
  static_cast<QVBoxLayout*>(layout())->insertWidget(0, &control, 0, Qt::AlignLeft);
  QWidget::setTabOrder(&control, grid_);
}

void ListForm::OnLoad() {
  BindToFile(data_, definition_.emptyQuery, *definition_.file);
  grid_->SetColumns(definition_.columns);
  grid_->SetDataSource(data_);
  data_.Refresh();
  grid_->setFocus();
}

void ListForm::OnActivate() {
  if (!Minimized()) RefreshList();
}

void ListForm::RefreshList() {
  const screen::Hourglass hourglass;
  data_.RecordSource = Query();
  data_.Refresh();
}

bool ListForm::HasRows() { return data_.HasRows(); }
std::string ListForm::CellText(int column) { return grid_->CellText(column); }
std::int32_t ListForm::RowID() { return rt::Value(CellText(0)).AsLong(); }

void ListForm::AddItem() {
  if (MayOpen()) OpenDetail(true, -1);
}

void ListForm::ShowDetail() {
  if (!MayOpen()) return;
  if (!HasRows()) {
    ReportNoRecords();
    return;
  }
  if (!RowIsGone()) OpenDetail(false, RowID());
}

bool ListForm::RowIsGone() {
  return !RowNumber(*grid_, [this] { RefreshList(); });
}

void ListForm::DeleteRow(const std::function<DeleteRule()>& rule) {
  RemoveRow([&] { return DeleteRecord(rule()); });
}

void ListForm::RemoveRow(const std::function<bool()>& remove) {
  SetPointer(screen::Pointer::Hourglass);
  CurrentRow = grid_->Row();
  if (!HasRows())
    ReportNoRecords();
  else if (!RowIsGone() && remove())
    RefreshList();
  SetPointer(screen::Pointer::Normal);
}

bool DeleteRecord(const DeleteRule& rule) {
  const MainConnection main;
  if (!main.IsOpen()) return false;
  if (!rule.inUseQuery.empty()) {
    const auto inUse = main.Finds(rule.inUseQuery);
    // If the check fails, nothing is deleted.
    if (!inUse) return false;
    if (*inUse) {
      screen::MessageBox(rule.inUseWords, rule.inUseIcon);
      return false;
    }
  }
  if (screen::MessageBox("Are you sure you want to delete this record?", screen::Icon::Question,
                         screen::Buttons::YesNo) != screen::Answer::Yes)
    return false;
  AdoRecordsetPtr record = main.Edit(rule.recordQuery);
  bool gone = false;
  if (record && record->AtEnd()) {
    screen::MessageBox("That ID is no longer on file.", screen::Icon::Exclamation);
  } else if (record) {
    gone = AdoDeleteRS(*record, false, true);
    AdoRefreshCache(main.Connection(), true);
  }
  CloseObject(record);
  return gone;
}

}  // namespace dw
