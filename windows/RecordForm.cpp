#include "windows/RecordForm.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "data/BrackenfelGlobals.h"
#include "platform/controls/Layout.h"
#include "platform/runtime/Clock.h"
#include "windows/AuditLine.h"

namespace dw {
namespace {

constexpr int kWidth = 84;  ///< in characters: what most records need

std::unique_ptr<RecordHold> MakeHold(ui::Form& form, const RecordDefinition& definition) {
  RecordSource source{definition.data, definition.table, definition.file};
  if (definition.lockField)
    return std::make_unique<TransactionHold>(form, std::move(source), definition.lockField);
  return std::make_unique<EditHold>(form, std::move(source));
}

}  // namespace

RecordForm::RecordForm(const RecordDefinition& definition)
    : Form(definition.form),
      okButton(new QPushButton("&OK")),
      cancelButton(new QPushButton("Cancel")),
      definition_(definition),
      hold_(MakeHold(*this, definition)) {
  setWindowTitle(definition.title);
  okButton->setObjectName(definition.ok);
  cancelButton->setObjectName("CancelButton");
  for (const char* name : {"Label4(0)", "Label4(1)", "Label4(2)", "Label4(3)"})
    auditLabels.emplace_back(name);
  const char* const columns[] = {definition.createdBy, definition.dateCreated, definition.updatedBy,
                                 definition.lastUpdated};
  for (std::size_t i = 0; i < auditLabels.size(); ++i) Bind(auditLabels[i], columns[i]);
  ui::OnClick(*okButton, [this] { Ok(); });
  ui::OnClick(*cancelButton, [this] { Cancel(); });
  SetDefault(okButton);
  SetCancel(cancelButton);
}

RecordForm::InnerGrid& RecordForm::AddInnerGrid(const char* gridName, const char* dataName,
                                                std::vector<ui::GridColumn> columns, std::string emptyQuery,
                                                std::function<std::string(RecordHold&)> query) {
  InnerGrid& inner = innerGrids_.emplace_back(*this, gridName, dataName);
  inner.grid.SetColumns(std::move(columns));
  inner.emptyQuery = std::move(emptyQuery);
  inner.query = std::move(query);
  return inner;
}

void RecordForm::Declare(std::initializer_list<RecordField> fields, std::initializer_list<QWidget*> room) {
  auto* rows = new ui::FieldRows;
  for (const RecordField& field : fields) {
    Bind(field.control, field.column, field.prompt);
    QWidget* widget = field.control.Widget();
    if (field.width > 0) ui::SetWidth(*widget, field.width);
    rows->Row(field.prompt, {widget});
  }
  LayOut(rows, room);
}

void RecordForm::LayOut(QLayout* fields, std::initializer_list<QWidget*> room,
                        std::initializer_list<QWidget*> extra) {
  auto* column = new QVBoxLayout(this);
  column->addLayout(fields);
  // The last item, mostly a grid, gets most of the room.
  int share = 0;
  for (QWidget* widget : room) column->addWidget(widget, ++share);
  if (room.size() == 0) column->addStretch(1);

  column->addLayout(AuditLines(auditLabels));

  auto* buttons = ui::ButtonRow({});
  for (QWidget* button : extra) buttons->addWidget(button);
  buttons->addWidget(okButton);
  buttons->addWidget(cancelButton);
  column->addLayout(buttons);
  const QSize hint = sizeHint();
  resize(std::max(hint.width(), fontMetrics().averageCharWidth() * kWidth), hint.height());
}

QWidget* RecordForm::NotesGroup(ui::NotesBox& notes, const char* frame) {
  auto* inside = new QVBoxLayout;
  inside->addWidget(&notes);
  QGroupBox* group = ui::Group("Notes", inside);
  group->setObjectName(frame);
  notes.setAccessibleName("Notes");
  notes.setMinimumHeight(fontMetrics().lineSpacing() * 4);
  EnterMakesLines(notes);
  return group;
}

void RecordForm::EnterMakesLines(ui::NotesBox& notes) {
  notes.onEnter = [this] { SetDefault(nullptr); };
  notes.onLeave = [this] {
    SetDefault(okButton);
    return true;
  };
}

void RecordForm::ShowNumber(ui::TextBox& field) {
  field.SetDisplayOnly();
  ui::SetWidth(field, ui::kNumberWidth);
}

bool RecordForm::ReadOnly() const { return !okButton->isEnabled(); }

bool RecordForm::Refuse(QWidget& field, const std::string& words, screen::Icon icon) {
  screen::MessageBox(words, icon);
  field.setFocus();
  return false;
}

AroundRecord RecordForm::Around() {
  return {[this] { OpenLists(); }, [this] { RefreshGrid(); }};
}

void RecordForm::OnLoad() {
  RemoveCloseCommand();
  for (InnerGrid& inner : innerGrids_) {
    BindToFile(inner.data, inner.emptyQuery, *definition_.file);
    inner.grid.SetDataSource(inner.data);
  }
  const screen::Hourglass hourglass;
  hold_->OpenBlank(Around());
}

void RecordForm::OnActivate() {
  do {
    if (!Activated) LoadRecord();
    if (!LoadedOK || Minimized()) return;
  } while (!Refreshed());
}

bool RecordForm::Refreshed() {
  RefreshGrid();
  return true;
}

void RecordForm::OpenRecord(std::int32_t id) {
  const screen::Hourglass hourglass;
  hold_->Read(id, DataID, Around());
}

void RecordForm::LoadRecord() {
  Activated = true;
  LoadedOK = true;
  OpenRecord(DataID);
  if (AddMode) {
    if (const auto id = hold_->AddRow([this] { FillPlaceholder(); })) DataID = *id;
    OpenRecord(DataID);
  }
  const auto leave = [this] {
    LoadedOK = false;
    Unload();
  };
  if (!hold_->HasRow()) {
    ReportVanished();
    leave();
    return;
  }
  const Taken taken = hold_->Take();
  if (taken == Taken::Failed && !StaysUnheld()) {
    leave();
    return;
  }
  // Another user may have changed the record after it was read and before it was held.
  if (taken == Taken::Held) hold_->Show();
  // A window may take its record more than once.
  okButton->setEnabled(taken == Taken::Held);
  const screen::Hourglass hourglass;
  RecordLoaded();
  if (taken == Taken::Held) hold_->KeepHeld();
}

void RecordForm::ReportVanished() { screen::MessageBox(RereadWords()); }

std::string RecordForm::RereadWords() const {
  return std::string("Internal Error. Unable to re-read ") + definition_.recordWords +
         std::to_string(DataID) + "'s record.";
}

void RecordForm::RefreshGrid() {
  const screen::Hourglass hourglass;
  for (InnerGrid& inner : innerGrids_) {
    inner.data.RecordSource = hold_->HasRow() ? inner.query(*hold_) : inner.emptyQuery;
    inner.data.Refresh();
  }
}

bool RecordForm::StoreControls() {
  try {
    hold_->StoreControls();
  } catch (const ui::BadContent& bad) {
    return Refuse(*bad.Control().Widget(), bad.what());
  }
  return true;
}

bool RecordForm::SaveRecord() {
  if (!hold_->HasRow() || !StoreControls() || !StoreMore()) return false;
  const rt::DateTime now = rt::Now();
  if (AddMode) {
    hold_->Set(definition_.createdBy, CurrentUserName);
    hold_->Set(definition_.dateCreated, now);
    if (definition_.audit == AuditOnAdd::AllFour) {
      hold_->Set(definition_.updatedBy, "");
      hold_->Set(definition_.lastUpdated, rt::Null{});
    }
  } else {
    hold_->Set(definition_.updatedBy, CurrentUserName);
    hold_->Set(definition_.lastUpdated, now);
  }
  return hold_->Store();
}

bool RecordForm::SaveForChild() {
  if (ReadOnly()) return true;
  if (!ValidData() || !SaveRecord()) return false;
  Rearm();
  return true;
}

void RecordForm::Rearm() {
  Activated = false;
  LoadedOK = false;
  AddMode = false;
  ClearCancelPressed();
}

void RecordForm::Ok() {
  if (ValidData() && SaveRecord()) Unload();
}

void RecordForm::Cancel() {
  if (AddMode)
    hold_->RemoveRow();
  else
    hold_->GiveBack();
  Unload();
}

}  // namespace dw
