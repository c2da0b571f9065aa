// Where things stand on the asset's window.
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

/// A page with a row of controls above what fills it.
QWidget* Page(QLayout* above, QWidget& content) {
  auto* page = new QWidget;
  auto* column = new QVBoxLayout(page);
  if (above) column->addLayout(above);
  column->addWidget(&content, 1);
  return page;
}

}  // namespace

void frmInventoryMaint::BindControls() {
  Bind(IDText, "ID");
  Bind(AssetText, "Asset ID", "Asset ID");
  Bind(Text9, "Description", "Description");
  Bind(dcDivisions, "Division ID", "Division ID");
  Bind(dcClasses, "Class ID", "Class ID");
  Bind(Text13, "Location ID", "Location ID");
  Bind(Text12, "VIN/Serial Number", "VIN/Serial #");
  Bind(Text15, "Type", "Type ID");
  Bind(Text20, "Meter Type", "Meter Type");
  Bind(Text14, "Model Year", "Model Year");
  Bind(Text1, "Purchase Price", "Price");
  Bind(dcFuelTypes, "Fuel Type", "Fuel Type");
  Bind(chkNotInService, "No_Longer_In_Service");
  Bind(Text8, "Notes", "Notes");
  Bind(imgAsset, "Photograph");
  grdMaintenance.SetColumns(MaintenanceColumns());
  grdSchedule.SetColumns(ScheduleColumns());
  OdometerGrid.SetColumns(OdometerColumns());
}

QLayout* frmInventoryMaint::LayOutFields() {
  auto* code = new QHBoxLayout;
  code->addWidget(&AssetText, 1);
  code->addWidget(cmdRename);
  auto* left = new ui::FieldRows;
  left->addWidget(ui::Prompt("Asset ID", AssetText), 0, 0);
  left->addLayout(code, 0, 1);
  left->Row("Description", {&Text9});
  left->Row("VIN/Serial #", {&Text12});
  left->Row("Type ID", {&Text15});
  left->Row("Model Year", {&Text14});
  left->addWidget(&chkNotInService, left->rowCount(), 1);

  auto* middle = new ui::FieldRows;
  middle->Row("Division ID", {&dcDivisions});
  middle->Row("Class ID", {&dcClasses});
  middle->Row("Location ID", {&Text13});
  middle->Row("Fuel Type", {&dcFuelTypes});
  middle->Row("Meter Type", {&Text20});
  middle->setRowStretch(middle->rowCount(), 1);

  auto* right = new ui::FieldRows;
  right->Row("Entry Date", {&Text3});
  right->Row("Purchase Date", {&Text16});
  right->Row("Replace Date", {&Text17});
  right->Row("Price", {&Text1});
  right->Row("Database ID", {&IDText});
  right->setRowStretch(right->rowCount(), 1);

  for (ui::TextBox* date : {&Text3, &Text16, &Text17}) ui::SetWidth(*date, ui::kDateWidth);
  ui::SetWidth(Text14, 6);
  ui::SetWidth(Text1, ui::kMoneyWidth);
  ui::SetWidth(IDText, ui::kNumberWidth);
  IDText.SetDisplayOnly();
  for (ui::DataCombo* combo : {&dcDivisions, &dcClasses, &dcFuelTypes}) combo->setMinimumContentsLength(18);
  Text9.setMinimumWidth(fontMetrics().averageCharWidth() * 30);

  auto* groups = new QHBoxLayout;
  groups->addLayout(left, 3);
  groups->addSpacing(12);
  groups->addLayout(middle, 2);
  groups->addSpacing(12);
  groups->addLayout(right, 0);
  return groups;
}

QLayout* frmInventoryMaint::LayOutPicture() {
  imgAsset.setFixedSize(fontMetrics().averageCharWidth() * 28, fontMetrics().height() * 8);
  auto* buttons = new QHBoxLayout;
  for (QPushButton* button : cmdPicture) buttons->addWidget(button);
  auto* column = new QVBoxLayout;
  column->addWidget(&imgAsset);
  column->addLayout(buttons);
  column->addStretch(1);
  return column;
}

void frmInventoryMaint::AddTabs() {
  auto* horizon = new QHBoxLayout;
  horizon->addWidget(ui::Prompt("Due By:", txtDueBy));
  horizon->addWidget(&txtDueBy);
  horizon->addSpacing(12);
  horizon->addWidget(ui::Prompt("Extra Usage:", txtUsage));
  horizon->addWidget(&txtUsage);
  horizon->addSpacing(12);
  horizon->addWidget(cmdDue);
  horizon->addStretch(1);
  ui::SetWidth(txtDueBy, ui::kDateWidth);
  ui::SetWidth(txtUsage, ui::kNumberWidth);
  txtDue.setReadOnly(true);
  txtDue.setAccessibleName("Maintenance Due");
  SSIndexTab1.addTab(Page(horizon, txtDue), "Maintenance Due");

  const QString later = "Will print what this asset has cost; the cost reports come with a later version.";
  cmdPrint->setEnabled(false);
  cmdPrint->setToolTip(later);
  cmdPrint->setStatusTip(later);
  auto* choice = new QHBoxLayout;
  choice->addWidget(&chkNonFuelOnly);
  choice->addStretch(1);
  choice->addWidget(cmdPrint);
  SSIndexTab1.addTab(Page(choice, grdMaintenance), "Maintenance Performed");
  SSIndexTab1.addTab(Page(nullptr, grdSchedule), "Maintenance Schedule");
  SSIndexTab1.addTab(Page(nullptr, Text8), "Notes");
  SSIndexTab1.addTab(Page(nullptr, OdometerGrid), "Odometer Readings");
  grdMaintenance.setAccessibleName("Maintenance Performed");
  grdSchedule.setAccessibleName("Maintenance Schedule");
  OdometerGrid.setAccessibleName("Odometer Readings");
  Text8.setAccessibleName("Notes");
  Text8.onEnter = [this] { SetDefault(nullptr); };
  Text8.onLeave = [this] {
    SetDefault(OKButton);
    return true;
  };
  const std::pair<const char*, int> turns[] = {
      {"Ctrl+Tab", 1}, {"Ctrl+PgDown", 1}, {"Ctrl+Shift+Tab", -1}, {"Ctrl+PgUp", -1}};
  for (const auto& [keys, step] : turns) {
    auto* turn = new QShortcut(QKeySequence(QString(keys)), this);
    connect(turn, &QShortcut::activated, this, [this, by = step] { ui::Guard([&] { TurnPage(by); }); });
  }
}

void frmInventoryMaint::TurnPage(int step) {
  SSIndexTab1.setCurrentIndex((SSIndexTab1.currentIndex() + step + SSIndexTab1.count()) %
                              SSIndexTab1.count());
  // From elsewhere in the window the way into the page is one step then.
  if (!SSIndexTab1.isAncestorOf(focusWidget())) SSIndexTab1.tabBar()->setFocus(Qt::ShortcutFocusReason);
}

void frmInventoryMaint::LayOut() {
  auto* top = new QHBoxLayout;
  top->addLayout(LayOutFields(), 1);
  top->addSpacing(12);
  top->addLayout(LayOutPicture());
  AddTabs();

  auto* foot = new QHBoxLayout;
  foot->addLayout(AuditLines(Label4), 1);
  auto* buttons = ui::ButtonRow({cmdUnpost, OKButton, CancelButton});
  foot->addLayout(buttons);
  foot->setAlignment(buttons, Qt::AlignBottom);

  auto* column = new QVBoxLayout(this);
  column->addLayout(top);
  column->addWidget(&SSIndexTab1, 1);
  column->addLayout(foot);
  const QSize hint = sizeHint();
  resize(std::max(hint.width(), fontMetrics().averageCharWidth() * 150),
         std::max(hint.height(), fontMetrics().height() * 36));

  stops_ = {&AssetText,
            cmdRename,
            &Text9,
            &Text12,
            &Text15,
            &Text14,
            &chkNotInService,
            &dcDivisions,
            &dcClasses,
            &Text13,
            &dcFuelTypes,
            &Text20,
            &Text3,
            &Text16,
            &Text17,
            &Text1,
            cmdPicture[0],
            cmdPicture[1],
            SSIndexTab1.tabBar(),
            &txtDueBy,
            &txtUsage,
            cmdDue,
            &txtDue,
            &chkNonFuelOnly,
            cmdPrint,
            &grdMaintenance,
            &grdSchedule,
            &Text8,
            &OdometerGrid,
            cmdUnpost,
            OKButton,
            CancelButton};
  for (std::size_t i = 1; i < stops_.size(); ++i) setTabOrder(stops_[i - 1], stops_[i]);
}

}  // namespace dw
