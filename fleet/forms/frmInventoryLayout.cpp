// The layout of the asset's window.
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

#include "fleet/forms/frmInventoryMaint.h"
#include "platform/controls/Application.h"
#include "platform/controls/Layout.h"
#include "windows/AuditLine.h"

namespace dw {
namespace {

constexpr const char* kMoney = "\"$\"#,##0.00";

std::vector<ui::GridColumn> OdometerColumns() {
  return {{"ID"},
          {.field = "Mileage", .format = "0.0"},
          {.field = "Date", .format = "MM/dd/yyyy"},
          {"Notes"},
          {"Date Created"},
          {"Created By"},
          {"Last Updated"},
          {"Updated By"}};
}

std::vector<ui::GridColumn> ScheduleColumns() {
  return {{.field = "Maintenance Schedule.ID", .caption = "ID"},
          {"Asset ID"},
          {"Type ID"},
          {"Line Item"},
          {.field = "Maintenance Types.Description", .caption = "Description"},
          {"Usage Frequency"},
          {.field = "Monthly Frequently", .caption = "Monthly Frequency"},
          {.field = "Estimated Cost", .format = kMoney},
          {.field = "Maintenance Schedule.Notes", .caption = "Notes"},
          {.field = "Maintenance Schedule.Created By", .caption = "Created By"},
          {.field = "Maintenance Schedule.Date Created", .caption = "Date Created"},
          {.field = "Maintenance Schedule.Updated By", .caption = "Updated By"},
          {.field = "Maintenance Schedule.Last Updated", .caption = "Last Updated"}};
}

std::vector<ui::GridColumn> MaintenanceColumns() {
  return {{"ID"},
          {"Transaction Date"},
          {"Time"},
          {"Internal Fuel Units"},
          {.field = "Internal Fuel Cost", .format = kMoney},
          {.field = "Outside Cost", .format = kMoney},
          {"Outside Fuel Units"},
          {.field = "Outside Fuel Cost", .format = kMoney},
          {.field = "Outside Oil Cost", .format = kMoney},
          {.field = "Oil Cost", .format = kMoney},
          {.field = "Internal Time Cost", .format = kMoney},
          {"Work Order Number"},
          {.field = "Mileage", .format = "###0.0"},
          {"Notes"},
          {"Period"},
          {"Year"},
          {"When Posted"},
          {.field = "Parts Cost", .format = kMoney},
          {.field = "Total Internal Cost", .format = kMoney},
          {.field = "Total Outside Cost", .format = kMoney},
          {"Created By"},
          {"Date Created"},
          {"Updated By"},
          {"Last Updated"},
          {"Type_ID"},
          {"Outside Oil Units"},
          {"Oil"}};
}

/// A page with a row of controls above the one that fills it.
QWidget* Page(QLayout* above, QWidget& content) {
  auto* page = new QWidget;
  auto* column = new QVBoxLayout(page);
  if (above) column->addLayout(above);
  column->addWidget(&content, 1);
  return page;
}

}  // namespace

void frmInventoryMaint::BindControls() {
  Bind(recordNumber, "ID");
  Bind(assetCode, "Asset ID", "Asset ID");
  Bind(description, "Description", "Description");
  Bind(division, "Division ID", "Division ID");
  Bind(assetClass, "Class ID", "Class ID");
  Bind(location, "Location ID", "Location ID");
  Bind(serialNumber, "VIN/Serial Number", "VIN/Serial #");
  Bind(assetType, "Type", "Type ID");
  Bind(meterType, "Meter Type", "Meter Type");
  Bind(modelYear, "Model Year", "Model Year");
  Bind(purchasePrice, "Purchase Price", "Price");
  Bind(fuelType, "Fuel Type", "Fuel Type");
  Bind(notInService, "No_Longer_In_Service");
  Bind(notes, "Notes", "Notes");
  Bind(photograph, "Photograph");
  transactionGrid.SetColumns(MaintenanceColumns());
  scheduleGrid.SetColumns(ScheduleColumns());
  readingGrid.SetColumns(OdometerColumns());
}

QLayout* frmInventoryMaint::LayOutFields() {
  auto* code = new QHBoxLayout;
  code->setSpacing(6);
  code->addWidget(&assetCode, 1);
  code->addWidget(renameButton);
  auto* left = new ui::FieldRows;
  left->addWidget(ui::Prompt("Asset ID", assetCode), 0, 0);
  left->addLayout(code, 0, 1);
  left->Row("Description", {&description});
  left->Row("VIN/Serial #", {&serialNumber});
  left->Row("Type ID", {&assetType});
  left->Row("Model Year", {&modelYear});
  left->addWidget(&notInService, left->rowCount(), 1);

  auto* middle = new ui::FieldRows;
  middle->Row("Division ID", {&division});
  middle->Row("Class ID", {&assetClass});
  middle->Row("Location ID", {&location});
  middle->Row("Fuel Type", {&fuelType});
  middle->Row("Meter Type", {&meterType});
  middle->setRowStretch(middle->rowCount(), 1);

  auto* right = new ui::FieldRows;
  right->Row("Entry Date", {&entryDate});
  right->Row("Purchase Date", {&purchaseDate});
  right->Row("Replace Date", {&replacementDate});
  right->Row("Price", {&purchasePrice});
  right->Row("Database ID", {&recordNumber});
  right->setRowStretch(right->rowCount(), 1);

  for (ui::TextBox* date : {&entryDate, &purchaseDate, &replacementDate}) ui::SetWidth(*date, ui::kDateWidth);
  ui::SetWidth(modelYear, 6);
  ui::SetWidth(purchasePrice, ui::kMoneyWidth);
  ui::SetWidth(recordNumber, ui::kNumberWidth);
  recordNumber.SetDisplayOnly();
  for (ui::DataCombo* combo : {&division, &assetClass, &fuelType}) combo->setMinimumContentsLength(18);
  description.setMinimumWidth(fontMetrics().averageCharWidth() * 30);

  auto* groups = new QHBoxLayout;
  groups->addLayout(left, 3);
  groups->addSpacing(12);
  groups->addLayout(middle, 2);
  groups->addSpacing(12);
  groups->addLayout(right, 0);
  return groups;
}

QLayout* frmInventoryMaint::LayOutPicture() {
  photograph.setFixedSize(fontMetrics().averageCharWidth() * 28, fontMetrics().height() * 8);
  auto* buttons = new QHBoxLayout;
  for (QPushButton* button : pictureButtons) buttons->addWidget(button);
  auto* column = new QVBoxLayout;
  column->addWidget(&photograph);
  column->addLayout(buttons);
  column->addStretch(1);
  return column;
}

void frmInventoryMaint::AddTabs() {
  auto* horizon = new QHBoxLayout;
  horizon->addWidget(ui::Prompt("Due By:", dueBy));
  horizon->addWidget(&dueBy);
  horizon->addSpacing(12);
  horizon->addWidget(ui::Prompt("Extra Usage:", dueUsage));
  horizon->addWidget(&dueUsage);
  horizon->addSpacing(12);
  horizon->addWidget(dueButton);
  horizon->addStretch(1);
  ui::SetWidth(dueBy, ui::kDateWidth);
  ui::SetWidth(dueUsage, ui::kNumberWidth);
  due.setReadOnly(true);
  due.setAccessibleName("Maintenance Due");
  pages.addTab(Page(horizon, due), "Maintenance Due");

  printButton->setToolTip("Prints what this asset has cost");
  auto* choice = new QHBoxLayout;
  choice->addWidget(&nonFuelOnly);
  choice->addStretch(1);
  choice->addWidget(printButton);
  pages.addTab(Page(choice, transactionGrid), "Maintenance Performed");
  pages.addTab(Page(nullptr, scheduleGrid), "Maintenance Schedule");
  pages.addTab(Page(nullptr, notes), "Notes");
  pages.addTab(Page(nullptr, readingGrid), "Odometer Readings");
  transactionGrid.setAccessibleName("Maintenance Performed");
  scheduleGrid.setAccessibleName("Maintenance Schedule");
  readingGrid.setAccessibleName("Odometer Readings");
  notes.setAccessibleName("Notes");
  EnterMakesLines(notes);
  const std::pair<const char*, int> turns[] = {
      {"Ctrl+Tab", 1}, {"Ctrl+PgDown", 1}, {"Ctrl+Shift+Tab", -1}, {"Ctrl+PgUp", -1}};
  // Two buttons have this key. It moves the focus between them and presses neither, so that an aim at the one
  // never presses the other.
  for (QPushButton* button : {printButton, unpostButton}) button->setShortcut({});
  auto* either = new QShortcut(QKeySequence("Alt+P"), this);
  connect(either, &QShortcut::activated, this, [this] { ui::Guard([this] { FocusPrintOrUnpost(); }); });
  for (const auto& [keys, step] : turns) {
    auto* turn = new QShortcut(QKeySequence(QString(keys)), this);
    connect(turn, &QShortcut::activated, this, [this, by = step] { ui::Guard([&] { TurnPage(by); }); });
  }
}

void frmInventoryMaint::TurnPage(int step) {
  const int page = (pages.currentIndex() + step + pages.count()) % pages.count();
  pages.setCurrentIndex(page);
  // A field whose content is refused keeps its page.
  if (pages.currentIndex() != page) return;
  // The focus goes into the control that fills the page, wherever it was before.
  QWidget* const contents[] = {&due, &transactionGrid, &scheduleGrid, &notes, &readingGrid};
  for (QWidget* content : contents)
    if (pages.currentWidget()->isAncestorOf(content))
      (content->isEnabled() ? content : pages.tabBar())->setFocus(Qt::ShortcutFocusReason);
}

void frmInventoryMaint::FocusPrintOrUnpost() {
  if (printButton->hasFocus() && unpostButton->isEnabled()) {
    unpostButton->setFocus(Qt::ShortcutFocusReason);
    return;
  }
  pages.setCurrentIndex(1);
  // A field whose content is refused keeps its page and the focus.
  if (pages.currentIndex() == 1) printButton->setFocus(Qt::ShortcutFocusReason);
}

void frmInventoryMaint::PutTogether() {
  auto* top = new QHBoxLayout;
  top->addLayout(LayOutFields(), 1);
  top->addSpacing(12);
  top->addLayout(LayOutPicture());
  AddTabs();

  auto* foot = new QHBoxLayout;
  foot->addLayout(AuditLines(auditLabels), 1);
  auto* buttons = ui::ButtonRow({unpostButton, okButton, cancelButton});
  foot->addLayout(buttons);
  foot->setAlignment(buttons, Qt::AlignBottom);

  auto* column = new QVBoxLayout(this);
  column->addLayout(top);
  column->addWidget(&pages, 1);
  column->addLayout(foot);
  const QSize hint = sizeHint();
  resize(std::max(hint.width(), fontMetrics().averageCharWidth() * 150),
         std::max(hint.height(), fontMetrics().height() * 36));

  focus_.Follow({&assetCode,
                 renameButton,
                 &description,
                 &serialNumber,
                 &assetType,
                 &modelYear,
                 &notInService,
                 &division,
                 &assetClass,
                 &location,
                 &fuelType,
                 &meterType,
                 &entryDate,
                 &purchaseDate,
                 &replacementDate,
                 &purchasePrice,
                 pictureButtons[0],
                 pictureButtons[1],
                 pages.tabBar(),
                 &dueBy,
                 &dueUsage,
                 dueButton,
                 &due,
                 &nonFuelOnly,
                 printButton,
                 &transactionGrid,
                 &scheduleGrid,
                 &notes,
                 &readingGrid,
                 unpostButton,
                 okButton,
                 cancelButton});
}

}  // namespace dw
