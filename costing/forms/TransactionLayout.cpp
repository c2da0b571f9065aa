// The layout of the transaction window.
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "costing/forms/frmTransactionMaint.h"
#include "platform/controls/Layout.h"

namespace dw {
namespace {

/// One row of a table of costs; some have no quantity.
struct CostRow {
  QLabel* heading;
  ui::TextBox* quantity;
  ui::TextBox* cost;
};

QGroupBox* CostTable(const char* title, const char* name, QLabel* quantity, QLabel* cost,
                     std::initializer_list<CostRow> rows) {
  auto* grid = new QGridLayout;
  quantity->setAlignment(Qt::AlignRight);
  cost->setAlignment(Qt::AlignRight);
  grid->addWidget(quantity, 0, 1);
  grid->addWidget(cost, 0, 2);
  int line = 0;
  for (const CostRow& row : rows) {
    ++line;
    grid->addWidget(row.heading, line, 0);
    row.heading->setBuddy(row.quantity ? row.quantity : row.cost);
    if (row.quantity) {
      ui::SetWidth(*row.quantity, ui::kNumberWidth);
      grid->addWidget(row.quantity, line, 1);
    }
    ui::SetWidth(*row.cost, ui::kMoneyWidth);
    grid->addWidget(row.cost, line, 2);
  }
  grid->setHorizontalSpacing(10);
  grid->setColumnStretch(3, 1);
  grid->setRowStretch(line + 1, 1);
  QGroupBox* group = ui::Group(title, grid);
  group->setObjectName(name);
  return group;
}

template <std::size_t N>
void MakeHeadings(std::array<QLabel*, N>& labels, const char* name,
                  const std::array<const char*, N>& captions) {
  for (std::size_t i = 0; i < N; ++i) {
    labels[i] = new QLabel(captions[i]);
    labels[i]->setObjectName(QString("%1(%2)").arg(name).arg(i));
  }
}

}  // namespace

QLayout* frmTransactionMaint::Header() {
  assetSerial->setObjectName("lblAssetSerial");
  assetSerial->setTextFormat(Qt::PlainText);
  assetSerial->setTextInteractionFlags(Qt::TextSelectableByMouse);
  for (ui::TextBox* field : {&assetCode, &workOrder}) ui::SetWidth(*field, ui::kCodeWidth);
  ui::SetWidth(transactionDate, ui::kDateWidth);
  ui::SetWidth(fiscalYear, 5);
  ui::SetWidth(fiscalPeriod, 3);
  ui::SetWidth(mileage, ui::kNumberWidth);
  ShowNumber(recordNumber);
  auditLabels[4].setMinimumWidth(ui::DateTimeWidth(auditLabels[4]));

  auto* fiscal = new QHBoxLayout;
  fiscal->addWidget(&fiscalYear);
  fiscal->addWidget(&fiscalPeriod);
  fiscal->addStretch(1);
  fiscal->setSpacing(6);
  auto* header = new QGridLayout;
  header->addWidget(ui::Prompt("Asset ID", assetCode), 0, 0);
  header->addWidget(&assetCode, 0, 1);
  header->addWidget(assetSerial, 0, 2, 1, 2);
  header->addWidget(ui::Prompt("Database ID", recordNumber), 0, 4);
  header->addWidget(&recordNumber, 0, 5);
  header->addWidget(ui::Prompt("Date", transactionDate), 1, 0);
  header->addWidget(&transactionDate, 1, 1);
  header->addWidget(ui::Prompt("Fiscal Yr/Per", fiscalYear), 1, 2);
  header->addLayout(fiscal, 1, 3);
  header->addWidget(ui::Prompt("When Posted:", auditLabels[4]), 1, 4);
  header->addWidget(&auditLabels[4], 1, 5);
  header->addWidget(ui::Prompt("Work Order", workOrder), 2, 0);
  header->addWidget(&workOrder, 2, 1);
  header->addWidget(ui::Prompt("Mileage", mileage), 2, 2);
  header->addWidget(&mileage, 2, 3);
  header->setHorizontalSpacing(10);
  header->setColumnStretch(5, 1);
  return header;
}

QWidget* frmTransactionMaint::TasksGroup() {
  auto* inside = new QVBoxLayout;
  inside->addWidget(&taskGrid);
  taskGrid.setAccessibleName("Fixed Recurring Maintenance Items");
  taskGrid.setMinimumHeight(taskGrid.fontMetrics().lineSpacing() * 4);
  return ui::Group("Fixed Recurring Maintenance Items", inside);
}

void frmTransactionMaint::PutTogether() {
  unpostButton->setObjectName("cmdUnpost");
  MakeHeadings<5>(externalHeadings, "lblExternals", {"Quantity", "Cost", "Other Costs", "Oil", "Fuel"});
  MakeHeadings<6>(internalHeadings, "lblInternals",
                  {"Fuel", "Oil", "Cost", "Quantity", "Labor", "Other Costs"});
  costGroups[0] = CostTable("External Costs ", "fraTab(0)", externalHeadings[0], externalHeadings[1],
                            {{externalHeadings[4], &outsideFuelUnits, &outsideFuelCost},
                             {externalHeadings[3], &outsideOilUnits, &outsideOilCost},
                             {externalHeadings[2], nullptr, &outsideCost}});
  costGroups[1] = CostTable("Internal Costs ", "fraTab(1)", internalHeadings[3], internalHeadings[2],
                            {{internalHeadings[0], &internalFuelUnits, &internalFuelCost},
                             {internalHeadings[1], &internalOilUnits, &internalOilCost},
                             {internalHeadings[4], &laborHours, &laborCost},
                             {internalHeadings[5], nullptr, &partsCost}});
  auto* costs = new QHBoxLayout;
  costs->addWidget(costGroups[1], 1);
  costs->addWidget(costGroups[0], 1);
  auto* fields = new QVBoxLayout;
  fields->addLayout(Header());
  fields->addLayout(costs);
  LayOut(fields, {NotesGroup(notes), TasksGroup()}, {unpostButton});
}

void frmTransactionMaint::SetTabOrder() {
  focus_.Follow({&assetCode,
                 &transactionDate,
                 &fiscalYear,
                 &fiscalPeriod,
                 &workOrder,
                 &mileage,
                 &internalFuelUnits,
                 &internalFuelCost,
                 &internalOilUnits,
                 &internalOilCost,
                 &laborHours,
                 &laborCost,
                 &partsCost,
                 &outsideFuelUnits,
                 &outsideFuelCost,
                 &outsideOilUnits,
                 &outsideOilCost,
                 &outsideCost,
                 &notes,
                 &taskGrid,
                 unpostButton,
                 okButton,
                 cancelButton});
}

}  // namespace dw
