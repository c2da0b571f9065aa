#include "costing/forms/frmTransactionMaint.h"

#include <QEvent>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <utility>

#include "costing/Lookups.h"
#include "costing/Unposting.h"
#include "costing/forms/frmMaintTaskMaint.h"
#include "data/Parameters.h"
#include "platform/controls/NoInput.h"
#include "platform/runtime/Text.h"
#include "windows/ListForm.h"

namespace dw {
namespace {

constexpr const char* kTasksQuery =
    "SELECT * FROM Maintenance_Performed LEFT JOIN [Maintenance Types] ON "
    "Maintenance_Performed.Maintenance_Type_ID = [Maintenance Types].ID WHERE "
    "Maintenance_Performed.Maintenance_Entry_ID = ";

std::vector<ui::GridColumn> TaskColumns() {
  return {{.field = "Maintenance_Performed.ID", .caption = "Database ID"},
          {.field = "Maintenance_Entry_ID", .caption = "Maintenance Entry ID"},
          {"Description"},
          {.field = "Cost", .format = "\"$\"#,##0.00"},
          {.field = "Maintenance_Performed.Notes", .caption = "Notes"},
          {"Date_Created"},
          {"Created_By"},
          {"Last_Updated"},
          {"Updated_By"}};
}

}  // namespace

frmTransactionMaint::frmTransactionMaint()
    : DetailForm({.form = kName,
                  .title = "Transaction Detail",
                  .data = "TransactionData",
                  .table = "[Maintenance Transactions]",
                  .recordWords = "Transaction #"}),
      lblAssetSerial(new QLabel),
      cmdUnpost(new QPushButton("&Unpost")),
      tasks_(AddInnerGrid("grdTasks", "adoSchedule", TaskColumns(), std::string(kTasksQuery) + "-1",
                          [this](dao::Recordset&) {
                            return kTasksQuery + std::to_string(DataID) +
                                   " ORDER BY [Maintenance Types.Description]";
                          })),
      grdTasks(tasks_.grid),
      adoSchedule(tasks_.data) {
  BindFields();
  PutTogether();
  SetTabOrder();
  SetRules();
}

void frmTransactionMaint::BindFields() {
  const std::pair<ui::BoundControl*, const char*> unnamed[] = {{&Text1, "ID"}, {&Text2, "Notes"}};
  for (const auto& [control, column] : unnamed) Data().Bind(*control, column);
  struct Field {
    ui::BoundControl* control;
    const char* column;
    const char* label;
  };
  const Field fields[] = {{&txtAssetID, "Asset ID", "Asset ID"},
                          {&Text8, "Transaction Date", "Date"},
                          {&Text9, "Work Order Number", "Work Order"},
                          {&Text11, "Year", "Fiscal Yr/Per"},
                          {&Text10, "Period", "Fiscal Yr/Per"},
                          {&MaskEdBox3, "Mileage", "Mileage"},
                          {&MaskedEdit5, "Internal Fuel Units", "Internal Fuel Quantity"},
                          {&edtUnleadedCost, "Internal Fuel Cost", "Internal Fuel Cost"},
                          {&txtOilUnits, "Oil", "Internal Oil Quantity"},
                          {&MaskedEdit9, "Oil Cost", "Internal Oil Cost"},
                          {&MaskEdBox2, "Time", "Labor Quantity"},
                          {&MaskEdBox1, "Internal Time Cost", "Labor Cost"},
                          {&MaskedEdit3, "Parts Cost", "Internal Other Costs"},
                          {&MaskedEdit16, "Outside Fuel Units", "External Fuel Quantity"},
                          {&MaskedEdit1, "Outside Fuel Cost", "External Fuel Cost"},
                          {&txtOutsideOil, "Outside Oil Units", "External Oil Quantity"},
                          {&MaskedEdit2, "Outside Oil Cost", "External Oil Cost"},
                          {&MaskedEdit18, "Outside Cost", "External Other Costs"}};
  for (const Field& field : fields) {
    Data().Bind(*field.control, field.column, field.label);
    field.control->Widget()->setAccessibleName(field.label);
  }
  Text11.setAccessibleName("Fiscal Year");
  Text10.setAccessibleName("Fiscal Period");
  Data().Bind(Label4.emplace_back("Label4(4)"), "When Posted");
}

void frmTransactionMaint::SetRules() {
  // Each rule holds back while Cancel is being pressed, and while the check of the whole window goes to the
  // field that is wrong.
  const auto leaving = [this](ui::TextBox& field, std::function<bool()> rule) {
    field.onLeave = [this, rule = std::move(rule)] { return CancelPressed() || checking_ || rule(); };
  };
  leaving(txtAssetID, [this] {
    if (!CheckAssetID(txtAssetID.Text())) return false;
    ShowAssetSerial();
    return true;
  });
  leaving(Text8, [this] { return CheckDate(); });
  leaving(Text10, [this] { return CheckPeriod(Text10.Text()); });
  for (ui::TextBox* cost :
       std::initializer_list<ui::TextBox*>{&edtUnleadedCost, &MaskEdBox1, &MaskedEdit1, &MaskedEdit18,
                                           &MaskedEdit2, &MaskedEdit3, &MaskedEdit9})
    leaving(*cost, [cost] { return CheckCost(cost->Text()); });
  const auto priced = [&](OwnUnits kind, ui::TextBox& units, ui::TextBox& cost) {
    leaving(units, [this, kind, &units, &cost] {
      PriceField(kind, units, cost);
      return true;
    });
  };
  priced(OwnUnits::Fuel, MaskedEdit5, edtUnleadedCost);
  priced(OwnUnits::Labor, MaskEdBox2, MaskEdBox1);
  priced(OwnUnits::Oil, txtOilUnits, MaskedEdit9);

  for (QWidget* control : tabOrder_)
    if (auto* field = dynamic_cast<ui::TextBox*>(control); field && field != &txtAssetID)
      field->SelectOnEntry();
  const auto filled = [](ui::TextBox& field, const char* text) {
    field.onEnter = [&field, text] {
      if (field.Text().empty()) field.SetText(text);
    };
  };
  for (ui::TextBox* field : std::initializer_list<ui::TextBox*>{&MaskedEdit1, &MaskedEdit18, &MaskedEdit2,
                                                                &MaskedEdit3, &txtOutsideOil})
    filled(*field, "0.00");
  filled(MaskedEdit16, "0.0");

  // A double click adds a task wherever it falls; Space shows the one that is chosen.
  grdTasks.onAdd = grdTasks.onDoubleClick = [this] { AddTask(); };
  grdTasks.SetDoubleClickAnywhere(true);
  grdTasks.onDetail = [this] { ShowTask(); };
  grdTasks.onDelete = [this] { DeleteTask(); };
  ui::OnClick(*cmdUnpost, [this] { Unpost(); });
}

bool frmTransactionMaint::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::FocusOut) {
    for (std::size_t i = 0; i < tabOrder_.size(); ++i)
      if (tabOrder_[i] == watched) LastTabIndex = static_cast<std::int16_t>(i);
  }
  return DetailForm::eventFilter(watched, event);
}

void frmTransactionMaint::OnActivate() {
  DetailForm::OnActivate();
  if (LoadedOK && !Minimised()) RestoreFocus();
}

void frmTransactionMaint::RestoreFocus() {
  const auto last = static_cast<std::size_t>(LastTabIndex);
  for (std::size_t i = 0; i < tabOrder_.size(); ++i) {
    QWidget* control = tabOrder_[(last + i) % tabOrder_.size()];
    if (!control->isEnabled() || !control->isVisibleTo(this)) continue;
    control->setFocus();
    return;
  }
}

void frmTransactionMaint::RecordLoaded() {
  // A field that is disabled with the focus in it would hand the focus on, and rules would run on the way.
  const std::int16_t last = LastTabIndex;
  if (focusWidget()) focusWidget()->clearFocus();
  LastTabIndex = last;
  txtAssetID.setEnabled(AssetID.empty());
  const bool posted = !Data().Recordset()->Get("When Posted").IsNull();
  for (QWidget* field :
       std::initializer_list<QWidget*>{&MaskedEdit5, &edtUnleadedCost, &txtOilUnits, &MaskedEdit9,
                                       &MaskEdBox1, &MaskEdBox2, &MaskedEdit3, &MaskedEdit16, &MaskedEdit1,
                                       &txtOutsideOil, &MaskedEdit2, &MaskedEdit18, &Text8, &Text11, &Text10})
    field->setEnabled(!posted);
  cmdUnpost->setEnabled(posted);
  // Labour and parts go with the fuel; what stands to the right of them moves into their place.
  fraTab[1]->setVisible(InternalFuelAvailable());
  ShowAssetSerial();
}

void frmTransactionMaint::ShowAssetSerial() {
  lblAssetSerial->setText(QString::fromStdString(AssetSerial(txtAssetID.Text())));
}

bool frmTransactionMaint::CheckDate() {
  const TransactionDay day = CheckTransactionDate(Text8.Text(), AddMode);
  if (day.verdict == DateVerdict::Good) {
    Text11.SetText(std::to_string(day.year));
    Text10.SetText(std::to_string(day.period));
  }
  if (day.verdict != DateVerdict::Refused) {
    Text11.setEnabled(day.verdict != DateVerdict::Good);
    Text10.setEnabled(day.verdict != DateVerdict::Good);
  }
  if (day.verdict != DateVerdict::Good) Text8.setFocus();
  return day.verdict == DateVerdict::Good;
}

void frmTransactionMaint::PriceField(OwnUnits kind, ui::TextBox& units, ui::TextBox& cost) {
  const PricedTexts priced = PriceUnits(
      kind, {.assetID = txtAssetID.Text(), .date = Text8.Text(), .units = units.Text(), .cost = cost.Text()});
  units.SetText(priced.units);
  cost.SetText(priced.cost);
}

void frmTransactionMaint::PriceFocusedField() {
  for (ui::TextBox* units : std::initializer_list<ui::TextBox*>{&MaskedEdit5, &MaskEdBox2, &txtOilUnits})
    if (units->hasFocus()) units->onLeave();
}

bool frmTransactionMaint::ValidData() {
  PriceFocusedField();
  checking_ = true;
  const bool good = CheckAll();
  checking_ = false;
  return good;
}

bool frmTransactionMaint::CheckAll() {
  const auto refuse = [](QWidget& field) {
    field.setFocus();
    return false;
  };
  if (!CheckAssetID(txtAssetID.Text())) return refuse(txtAssetID);
  if (!CheckDate()) return refuse(Text8);
  if (!CheckPeriod(Text10.Text())) return refuse(Text10);
  for (const NumericRule& rule : kNumericRules) {
    auto& field = dynamic_cast<ui::TextBox&>(*findChild<QWidget*>(rule.control));
    if (field.Text().empty() || rt::IsNumeric(field.Text())) continue;
    screen::MessageBox(rule.words, screen::Icon::Critical);
    return refuse(field);
  }
  return true;
}

bool frmTransactionMaint::CommitForTask() {
  // A record that is only read has nothing to store.
  if (Held() && !(ValidData() && SaveRecord())) return false;
  LoadAgain();
  ClearCancelPressed();
  AddMode = false;
  return true;
}

void frmTransactionMaint::AddTask() {
  if (CommitForTask()) OpenTask(true, -1);
}

void frmTransactionMaint::ShowTask() {
  if (!CommitForTask()) return;
  if (!adoSchedule.HasRows())
    TellNoRecords();
  else if (!TaskIsGone())
    return OpenTask(false, rt::Value(grdTasks.CellText(0)).AsLong());
  OnActivate();
}

bool frmTransactionMaint::TaskIsGone() {
  if (rt::IsNumeric(grdTasks.CellText(0))) return false;
  screen::MessageBox("That ID is no longer on file.", screen::Icon::Exclamation);
  RefreshGrid();
  return true;
}

void frmTransactionMaint::OpenTask(bool add, std::int32_t id) {
  OpenDetailForm<frmMaintTaskMaint>(
      grdTasks, add, id, currentTask_, adoSchedule.HasRows(),
      [this](frmMaintTaskMaint& task) { task.MaintenanceID = rt::Value(Text1.Text()).AsLong(); });
  // Where no window was opened this one goes on at once, with its record in hand.
  if (ui::ActiveForm() == this) OnActivate();
}

void frmTransactionMaint::DeleteTask() {
  if (!adoSchedule.HasRows()) {
    TellNoRecords();
    return;
  }
  if (TaskIsGone()) return;
  if (DeleteRecord(
          {.recordQuery = "SELECT * FROM [Maintenance_Performed] WHERE [ID] = " + grdTasks.CellText(0)}))
    RefreshGrid();
}

void frmTransactionMaint::Unpost() {
  if (!ValidData()) return;
  if (!Held()) {
    TellHeldElsewhere();
    return;
  }
  const DaoRecordsetPtr record = Data().Recordset();
  // Since the posting the calendar may have changed, and a code may have been typed where the window was
  // opened for no asset. The figures leave the asset and the period that they went into.
  static constexpr std::array kPlace{"Asset ID", "Year", "Period"};
  std::array<rt::Value, kPlace.size()> posted;
  std::array<rt::Value, kPlace.size()> now;
  for (std::size_t i = 0; i < kPlace.size(); ++i) posted[i] = record->Get(kPlace[i]);
  if (!StoreControls()) return;
  for (std::size_t i = 0; i < kPlace.size(); ++i) {
    now[i] = record->Get(kPlace[i]);
    record->Set(kPlace[i], posted[i]);
  }
  const std::int16_t last = LastTabIndex;
  bool held = false;
  {
    const ui::NoInput untouched(*this);
    held = UnpostHeldTransaction(record, [&] {
      for (std::size_t i = 0; i < kPlace.size(); ++i) record->Set(kPlace[i], now[i]);
    });
  }
  LastTabIndex = last;
  if (held) {
    // The fields stay as they are, closed ones too: only opening the record anew frees them.
    Data().ShowRecord();
    OnActivate();
  } else if (!Held()) {
    OkButton->setEnabled(false);
  }
}

}  // namespace dw
