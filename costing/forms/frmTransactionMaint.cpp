#include "costing/forms/frmTransactionMaint.h"

#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <algorithm>
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
    : RecordForm({.form = kName,
                  .title = "Transaction Detail",
                  .data = "TransactionData",
                  .table = "[Maintenance Transactions]",
                  .recordWords = "Transaction #",
                  .ok = "OkButton"}),
      assetSerial(new QLabel),
      unpostButton(new QPushButton("&Unpost")),
      tasks_(AddInnerGrid("grdTasks", "adoSchedule", TaskColumns(), std::string(kTasksQuery) + "-1",
                          [this](RecordHold&) {
                            return kTasksQuery + std::to_string(DataID) +
                                   " ORDER BY [Maintenance Types.Description]";
                          })),
      taskGrid(tasks_.grid),
      taskRows(tasks_.data) {
  BindFields();
  PutTogether();
  SetTabOrder();
  SetRules();
}

void frmTransactionMaint::BindFields() {
  Bind(recordNumber, "ID");
  Bind(notes, "Notes");
  struct Field {
    ui::TextBox* control;
    const char* column;
    const char* label;
  };
  const Field fields[] = {{&assetCode, "Asset ID", "Asset ID"},
                          {&transactionDate, "Transaction Date", "Date"},
                          {&workOrder, "Work Order Number", "Work Order"},
                          {&fiscalYear, "Year", "Fiscal Yr/Per"},
                          {&fiscalPeriod, "Period", "Fiscal Yr/Per"},
                          {&mileage, "Mileage", "Mileage"},
                          {&internalFuelUnits, "Internal Fuel Units", "Internal Fuel Quantity"},
                          {&internalFuelCost, "Internal Fuel Cost", "Internal Fuel Cost"},
                          {&internalOilUnits, "Oil", "Internal Oil Quantity"},
                          {&internalOilCost, "Oil Cost", "Internal Oil Cost"},
                          {&laborHours, "Time", "Labor Quantity"},
                          {&laborCost, "Internal Time Cost", "Labor Cost"},
                          {&partsCost, "Parts Cost", "Internal Other Costs"},
                          {&outsideFuelUnits, "Outside Fuel Units", "External Fuel Quantity"},
                          {&outsideFuelCost, "Outside Fuel Cost", "External Fuel Cost"},
                          {&outsideOilUnits, "Outside Oil Units", "External Oil Quantity"},
                          {&outsideOilCost, "Outside Oil Cost", "External Oil Cost"},
                          {&outsideCost, "Outside Cost", "External Other Costs"}};
  for (const Field& field : fields) {
    Bind(*field.control, field.column, field.label);
    field.control->setAccessibleName(field.label);
    figures_.emplace_back(field.column, field.control);
  }
  fiscalYear.setAccessibleName("Fiscal Year");
  fiscalPeriod.setAccessibleName("Fiscal Period");
  Bind(auditLabels.emplace_back("Label4(4)"), "When Posted");
}

void frmTransactionMaint::SetRules() {
  // Each rule is off while Cancel is being pressed, and while the check of the whole window moves the focus
  // to the wrong field.
  const auto leaving = [this](ui::TextBox& field, std::function<bool()> rule) {
    field.onLeave = [this, rule = std::move(rule)] { return CancelPressed() || checking_ || rule(); };
  };
  leaving(assetCode, [this] {
    if (!CheckAssetID(assetCode.Text())) return false;
    ShowAssetSerial();
    return true;
  });
  leaving(transactionDate, [this] { return CheckDate(); });
  leaving(fiscalPeriod, [this] { return CheckPeriod(fiscalPeriod.Text()); });
  for (ui::TextBox* cost :
       std::initializer_list<ui::TextBox*>{&internalFuelCost, &laborCost, &outsideFuelCost, &outsideCost,
                                           &outsideOilCost, &partsCost, &internalOilCost})
    leaving(*cost, [cost] { return CheckCost(cost->Text()); });
  const auto priced = [&](OwnUnits kind, ui::TextBox& units, ui::TextBox& cost) {
    leaving(units, [this, kind, &units, &cost] {
      PriceField(kind, units, cost);
      return true;
    });
  };
  priced(OwnUnits::Fuel, internalFuelUnits, internalFuelCost);
  priced(OwnUnits::Labor, laborHours, laborCost);
  priced(OwnUnits::Oil, internalOilUnits, internalOilCost);

  for (const auto& [column, field] : figures_)
    if (field != &assetCode) field->SelectOnEntry();
  const auto filled = [](ui::TextBox& field, const char* text) {
    field.onEnter = [&field, text] {
      if (field.Text().empty()) field.SetText(text);
    };
  };
  for (ui::TextBox* field : std::initializer_list<ui::TextBox*>{
           &outsideFuelCost, &outsideCost, &outsideOilCost, &partsCost, &outsideOilUnits})
    filled(*field, "0.00");
  filled(outsideFuelUnits, "0.0");

  // A double click adds a task wherever it falls; Space shows the selected one.
  taskGrid.onAdd = taskGrid.onDoubleClick = [this] { AddTask(); };
  taskGrid.SetDoubleClickAnywhere(true);
  taskGrid.onDetail = [this] { ShowTask(); };
  taskGrid.onDelete = [this] { DeleteTask(); };
  ui::OnClick(*unpostButton, [this] { Unpost(); });
}

void frmTransactionMaint::OnActivate() {
  RecordForm::OnActivate();
  if (LoadedOK && !Minimized()) focus_.Restore(*this);
}

void frmTransactionMaint::RecordLoaded() {
  // Disabling the field with the focus would move the focus on, and run the rules of the fields on the way.
  const std::int16_t last = focus_.LastTabIndex;
  if (focusWidget()) focusWidget()->clearFocus();
  focus_.LastTabIndex = last;
  assetCode.setEnabled(AssetID.empty());
  const bool posted = !Data().Recordset()->Get("When Posted").IsNull();
  keepsPeriod_ = posted;
  for (QWidget* field : std::initializer_list<QWidget*>{
           &internalFuelUnits, &internalFuelCost, &internalOilUnits, &internalOilCost, &laborCost,
           &laborHours, &partsCost, &outsideFuelUnits, &outsideFuelCost, &outsideOilUnits, &outsideOilCost,
           &outsideCost, &transactionDate, &fiscalYear, &fiscalPeriod})
    field->setEnabled(!posted);
  unpostButton->setEnabled(posted);
  // Labor and parts are hidden with the fuel; the fields to their right move into their place.
  costGroups[1]->setVisible(InternalFuelAvailable());
  ShowAssetSerial();
}

void frmTransactionMaint::ShowAssetSerial() {
  assetSerial->setText(QString::fromStdString(AssetSerial(assetCode.Text())));
}

bool frmTransactionMaint::CheckDate() {
  const TransactionDay day = CheckTransactionDate(transactionDate.Text(), AddMode);
  if (day.verdict == DateVerdict::Good && !keepsPeriod_) {
    fiscalYear.SetText(std::to_string(day.year));
    fiscalPeriod.SetText(std::to_string(day.period));
  }
  if (day.verdict != DateVerdict::Refused && !keepsPeriod_) {
    fiscalYear.setEnabled(day.verdict != DateVerdict::Good);
    fiscalPeriod.setEnabled(day.verdict != DateVerdict::Good);
  }
  if (day.verdict != DateVerdict::Good) transactionDate.setFocus();
  return day.verdict == DateVerdict::Good;
}

void frmTransactionMaint::PriceField(OwnUnits kind, ui::TextBox& units, ui::TextBox& cost) {
  const PricedTexts priced = PriceUnits(kind, {.assetID = assetCode.Text(),
                                               .date = transactionDate.Text(),
                                               .units = units.Text(),
                                               .cost = cost.Text()});
  units.SetText(priced.units);
  cost.SetText(priced.cost);
}

void frmTransactionMaint::PriceFocusedField() {
  for (ui::TextBox* units :
       std::initializer_list<ui::TextBox*>{&internalFuelUnits, &laborHours, &internalOilUnits})
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
  if (!CheckAssetID(assetCode.Text())) return refuse(assetCode);
  if (!CheckDate()) return refuse(transactionDate);
  if (!CheckPeriod(fiscalPeriod.Text())) return refuse(fiscalPeriod);
  for (const NumericRule& rule : kNumericRules) {
    const auto figure = std::find_if(figures_.begin(), figures_.end(),
                                     [&](const auto& candidate) { return candidate.first == rule.column; });
    ui::TextBox& field = *figure->second;
    if (field.Text().empty() || rt::IsNumeric(field.Text())) continue;
    return Refuse(field, rule.words);
  }
  return true;
}

bool frmTransactionMaint::CommitForTask() {
  if (Held()) return SaveForChild();
  // A record that is open for reading has nothing to store.
  Rearm();
  return true;
}

void frmTransactionMaint::AddTask() {
  if (CommitForTask()) OpenTask(true, -1);
}

void frmTransactionMaint::ShowTask() {
  if (!CommitForTask()) return;
  if (!taskRows.HasRows())
    ReportNoRecords();
  else if (const auto id = RowNumber(taskGrid, [this] { RefreshGrid(); }))
    return OpenTask(false, *id);
  OnActivate();
}

void frmTransactionMaint::OpenTask(bool add, std::int32_t id) {
  OpenDetailForm<frmMaintTaskMaint>(
      taskGrid, add, id, currentTask_, taskRows.HasRows(),
      [this](frmMaintTaskMaint& task) { task.MaintenanceID = rt::Value(recordNumber.Text()).AsLong(); });
  // If no window was opened, this one goes on at once and holds its record.
  if (ui::ActiveForm() == this) OnActivate();
}

void frmTransactionMaint::DeleteTask() {
  if (!taskRows.HasRows()) {
    ReportNoRecords();
    return;
  }
  const auto id = RowNumber(taskGrid, [this] { RefreshGrid(); });
  if (id && DeleteRecord(
                {.recordQuery = "SELECT * FROM [Maintenance_Performed] WHERE [ID] = " + std::to_string(*id)}))
    RefreshGrid();
}

void frmTransactionMaint::Unpost() {
  // After the unposting the row belongs to the period of its date in the present calendar. If it stays
  // posted, the year and period of its sums are put back.
  const std::string year = fiscalYear.Text();
  const std::string period = fiscalPeriod.Text();
  keepsPeriod_ = false;
  UnpostAtItsPlace();
  if (Data().Recordset()->Get("When Posted").IsNull()) return;
  keepsPeriod_ = true;
  fiscalYear.SetText(year);
  fiscalPeriod.SetText(period);
  fiscalYear.setEnabled(false);
  fiscalPeriod.setEnabled(false);
}

void frmTransactionMaint::UnpostAtItsPlace() {
  if (!ValidData()) return;
  if (!Held()) {
    ReportHeldElsewhere();
    return;
  }
  const DaoRecordsetPtr record = Data().Recordset();
  // Since the posting the calendar may have changed, and if the window was opened for no asset, another code
  // may have been typed. The figures leave the asset and the period to which they were added.
  static constexpr std::array kPlace{"Asset ID", "Year", "Period"};
  std::array<rt::Value, kPlace.size()> posted;
  std::array<rt::Value, kPlace.size()> now;
  for (std::size_t i = 0; i < kPlace.size(); ++i) posted[i] = record->Get(kPlace[i]);
  if (!StoreControls()) return;
  for (std::size_t i = 0; i < kPlace.size(); ++i) {
    now[i] = record->Get(kPlace[i]);
    record->Set(kPlace[i], posted[i]);
  }
  const std::int16_t last = focus_.LastTabIndex;
  bool held = false;
  {
    const ui::NoInput untouched(*this);
    held = UnpostHeldTransaction(record, [&] {
      for (std::size_t i = 0; i < kPlace.size(); ++i) record->Set(kPlace[i], now[i]);
    });
  }
  focus_.LastTabIndex = last;
  if (held) {
    // The fields stay as they are, disabled ones too: only opening the record anew enables them.
    Data().ShowRecord();
    OnActivate();
  } else if (!Held()) {
    okButton->setEnabled(false);
  }
}

}  // namespace dw
