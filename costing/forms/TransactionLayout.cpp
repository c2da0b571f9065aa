// Where the controls of the transaction window stand.
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
  lblAssetSerial->setObjectName("lblAssetSerial");
  lblAssetSerial->setTextFormat(Qt::PlainText);
  lblAssetSerial->setTextInteractionFlags(Qt::TextSelectableByMouse);
  for (ui::TextBox* field : {&txtAssetID, &Text9}) ui::SetWidth(*field, ui::kCodeWidth);
  ui::SetWidth(Text8, ui::kDateWidth);
  ui::SetWidth(Text11, 5);
  ui::SetWidth(Text10, 3);
  ui::SetWidth(MaskEdBox3, ui::kNumberWidth);
  ShowNumber(Text1);
  Label4[4].setMinimumWidth(fontMetrics().averageCharWidth() * 24);

  auto* fiscal = new QHBoxLayout;
  fiscal->addWidget(&Text11);
  fiscal->addWidget(&Text10);
  fiscal->addStretch(1);
  fiscal->setSpacing(6);
  auto* header = new QGridLayout;
  header->addWidget(ui::Prompt("Asset ID", txtAssetID), 0, 0);
  header->addWidget(&txtAssetID, 0, 1);
  header->addWidget(lblAssetSerial, 0, 2, 1, 2);
  header->addWidget(ui::Prompt("Database ID", Text1), 0, 4);
  header->addWidget(&Text1, 0, 5);
  header->addWidget(ui::Prompt("Date", Text8), 1, 0);
  header->addWidget(&Text8, 1, 1);
  header->addWidget(ui::Prompt("Fiscal Yr/Per", Text11), 1, 2);
  header->addLayout(fiscal, 1, 3);
  header->addWidget(new QLabel("When Posted:"), 1, 4);
  header->addWidget(&Label4[4], 1, 5);
  header->addWidget(ui::Prompt("Work Order", Text9), 2, 0);
  header->addWidget(&Text9, 2, 1);
  header->addWidget(ui::Prompt("Mileage", MaskEdBox3), 2, 2);
  header->addWidget(&MaskEdBox3, 2, 3);
  header->setHorizontalSpacing(10);
  header->setColumnStretch(5, 1);
  return header;
}

QWidget* frmTransactionMaint::TasksGroup() {
  auto* inside = new QVBoxLayout;
  inside->addWidget(&grdTasks);
  grdTasks.setAccessibleName("Fixed Recurring Maintenance Items");
  grdTasks.setMinimumHeight(grdTasks.fontMetrics().lineSpacing() * 7);
  return ui::Group("Fixed Recurring Maintenance Items", inside);
}

void frmTransactionMaint::PutTogether() {
  cmdUnpost->setObjectName("cmdUnpost");
  MakeHeadings<5>(lblExternals, "lblExternals", {"Quantity", "Cost", "Other Costs", "Oil", "Fuel"});
  MakeHeadings<6>(lblInternals, "lblInternals", {"Fuel", "Oil", "Cost", "Quantity", "Labor", "Other Costs"});
  fraTab[0] = CostTable("External Costs ", "fraTab(0)", lblExternals[0], lblExternals[1],
                        {{lblExternals[4], &MaskedEdit16, &MaskedEdit1},
                         {lblExternals[3], &txtOutsideOil, &MaskedEdit2},
                         {lblExternals[2], nullptr, &MaskedEdit18}});
  fraTab[1] = CostTable("Internal Costs ", "fraTab(1)", lblInternals[3], lblInternals[2],
                        {{lblInternals[0], &MaskedEdit5, &edtUnleadedCost},
                         {lblInternals[1], &txtOilUnits, &MaskedEdit9},
                         {lblInternals[4], &MaskEdBox2, &MaskEdBox1},
                         {lblInternals[5], nullptr, &MaskedEdit3}});
  auto* costs = new QHBoxLayout;
  costs->addWidget(fraTab[1], 1);
  costs->addWidget(fraTab[0], 1);
  auto* fields = new QVBoxLayout;
  fields->addLayout(Header());
  fields->addLayout(costs);
  LayOut(fields, {NotesGroup(Text2), TasksGroup()}, {cmdUnpost});
}

void frmTransactionMaint::SetTabOrder() {
  tabOrder_ = {&txtAssetID,  &Text8,           &Text11,      &Text10,        &Text9,       &MaskEdBox3,
               &MaskedEdit5, &edtUnleadedCost, &txtOilUnits, &MaskedEdit9,   &MaskEdBox2,  &MaskEdBox1,
               &MaskedEdit3, &MaskedEdit16,    &MaskedEdit1, &txtOutsideOil, &MaskedEdit2, &MaskedEdit18,
               &Text2,       &grdTasks,        cmdUnpost,    OkButton,       CancelButton};
  QWidget* earlier = nullptr;
  for (QWidget* control : tabOrder_) {
    if (earlier) QWidget::setTabOrder(earlier, control);
    earlier = control;
    control->installEventFilter(this);
  }
}

}  // namespace dw
