#include "windows/DetailForm.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "data/BrackenfelGlobals.h"
#include "data/GenericDAO.h"
#include "platform/controls/Layout.h"
#include "platform/runtime/Clock.h"
#include "windows/AuditLine.h"
#include "windows/ListForm.h"

namespace dw {
namespace {

constexpr int kWidth = 84;  ///< in characters: what most records need

}  // namespace

void TellHeldElsewhere() {
  screen::MessageBox(
      "This record is currently being updated elsewhere.\rYou will not be able to change this record now.",
      screen::Icon::Exclamation);
}

DetailForm::DetailForm(const DetailDefinition& definition)
    : Form(definition.form),
      OkButton(new QPushButton("&OK")),
      CancelButton(new QPushButton("Cancel")),
      definition_(definition),
      data_(*this, definition.data) {
  setWindowTitle(definition.title);
  OkButton->setObjectName(definition.ok);
  CancelButton->setObjectName("CancelButton");
  for (const char* name : {"Label4(0)", "Label4(1)", "Label4(2)", "Label4(3)"}) Label4.emplace_back(name);
  const char* const columns[] = {definition.createdBy, definition.dateCreated, definition.updatedBy,
                                 definition.lastUpdated};
  for (std::size_t i = 0; i < Label4.size(); ++i) data_.Bind(Label4[i], columns[i]);
  ui::OnClick(*OkButton, [this] { Ok(); });
  ui::OnClick(*CancelButton, [this] { Cancel(); });
  SetDefault(OkButton);
  SetCancel(CancelButton);
}

DetailForm::InnerGrid& DetailForm::AddInnerGrid(const char* gridName, const char* dataName,
                                                std::vector<ui::GridColumn> columns, std::string emptyQuery,
                                                std::function<std::string(dao::Recordset&)> query) {
  InnerGrid& inner = innerGrids_.emplace_back(*this, gridName, dataName);
  inner.grid.SetColumns(std::move(columns));
  inner.emptyQuery = std::move(emptyQuery);
  inner.query = std::move(query);
  return inner;
}

void DetailForm::LayOut(QLayout* fields, std::initializer_list<QWidget*> room,
                        std::initializer_list<QWidget*> extra) {
  auto* column = new QVBoxLayout(this);
  column->addLayout(fields);
  // What comes last, a grid mostly, gets most of the room.
  int share = 0;
  for (QWidget* widget : room) column->addWidget(widget, ++share);
  if (room.size() == 0) column->addStretch(1);

  column->addLayout(AuditLines(Label4));

  auto* buttons = ui::ButtonRow({});
  for (QWidget* button : extra) buttons->addWidget(button);
  buttons->addWidget(OkButton);
  buttons->addWidget(CancelButton);
  column->addLayout(buttons);
  const QSize hint = sizeHint();
  resize(std::max(hint.width(), fontMetrics().averageCharWidth() * kWidth), hint.height());
}

QWidget* DetailForm::NotesGroup(ui::NotesBox& notes, const char* frame) {
  auto* inside = new QVBoxLayout;
  inside->addWidget(&notes);
  QGroupBox* group = ui::Group("Notes", inside);
  group->setObjectName(frame);
  notes.setAccessibleName("Notes");
  notes.setMinimumHeight(fontMetrics().lineSpacing() * 4);
  notes.onEnter = [this] { SetDefault(nullptr); };
  notes.onLeave = [this] {
    SetDefault(OkButton);
    return true;
  };
  return group;
}

void DetailForm::ShowNumber(ui::TextBox& field) {
  field.SetDisplayOnly();
  ui::SetWidth(field, ui::kNumberWidth);
}

void DetailForm::OnLoad() {
  RemoveCloseCommand();
  for (InnerGrid& inner : innerGrids_) {
    BindToMainFile(inner.data, inner.emptyQuery);
    inner.grid.SetDataSource(inner.data);
  }
  OpenRecord(-1);
}

void DetailForm::OnActivate() {
  if (!Activated) LoadRecord();
  if (LoadedOK && !Minimised()) RefreshGrid();
}

void DetailForm::OpenRecord(std::int32_t id) {
  const screen::Hourglass hourglass;
  const std::string query = std::string("SELECT * FROM ") + definition_.table + " WHERE [ID] = ";
  data_.DatabaseName = DataFile;
  OpenLists();
  data_.RecordSource = query + std::to_string(id);
  data_.Refresh();
  RefreshGrid();
  // Once more, by the record that the window stands for: at load that is another one than was asked for.
  data_.RecordSource = query + std::to_string(DataID);
  data_.Refresh();
}

void DetailForm::LoadRecord() {
  Activated = true;
  LoadedOK = true;
  OpenRecord(DataID);
  if (AddMode && data_.Recordset()) {
    dao::Recordset& record = *data_.Recordset();
    DaoAddRecord(record);
    if (record.Editing()) {
      FillPlaceholder(record);
      DataID = record.Get("ID").AsLong();
      DaoUpdateRecord(record);
    }
    OpenRecord(DataID);
  }
  if (!data_.HasRow()) {
    screen::MessageBox(RereadWords());
    LoadedOK = false;
    Unload();
    return;
  }
  int error = 0;
  DaoGetRecord(*data_.Recordset(), error);
  if (error == 0) {
    // Somebody may have changed it between the reading and the hold.
    data_.ShowRecord();
  } else {
    TellHeldElsewhere();
  }
  // A window may take its record more than once.
  OkButton->setEnabled(error == 0);
  RecordLoaded();
}

std::string DetailForm::RereadWords() const {
  return std::string("Internal Error. Unable to re-read ") + definition_.recordWords +
         std::to_string(DataID) + "'s record.";
}

void DetailForm::RefreshGrid() {
  const screen::Hourglass hourglass;
  for (InnerGrid& inner : innerGrids_) {
    inner.data.RecordSource = data_.HasRow() ? inner.query(*data_.Recordset()) : inner.emptyQuery;
    inner.data.Refresh();
  }
}

bool DetailForm::StoreControls() {
  try {
    data_.StoreControls();
  } catch (const ui::BadContent& bad) {
    screen::MessageBox(bad.what(), screen::Icon::Critical);
    bad.Control().Widget()->setFocus();
    return false;
  }
  return true;
}

bool DetailForm::SaveRecord() {
  dao::Recordset& record = *data_.Recordset();
  if (!StoreControls()) return false;
  const rt::DateTime now = rt::Now();
  if (AddMode) {
    record.Set(definition_.createdBy, CurrentUserName);
    record.Set(definition_.dateCreated, now);
    if (definition_.audit == AuditOnAdd::AllFour) {
      record.Set(definition_.updatedBy, "");
      record.Set(definition_.lastUpdated, rt::Null{});
    }
  } else {
    record.Set(definition_.updatedBy, CurrentUserName);
    record.Set(definition_.lastUpdated, now);
  }
  DaoUpdateRecord(record);
  // What could not be stored has been told and is still in hand.
  return !record.Editing();
}

void DetailForm::Ok() {
  if (ValidData() && SaveRecord()) Unload();
}

void DetailForm::Cancel() {
  if (data_.Recordset()) {
    if (AddMode)
      DaoDeleteRecord(*data_.Recordset());
    else if (OkButton->isEnabled() && data_.Recordset()->Editing())
      data_.Recordset()->CancelUpdate();
  }
  Unload();
}

}  // namespace dw
