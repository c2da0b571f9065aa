#include "platform/controls/ScanSetupDialog.h"

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "platform/controls/Layout.h"
#include "platform/runtime/Waits.h"

namespace ui {
namespace {

/// Shows a single choice, or none, without a way to change it.
void Finish(QComboBox& box, const char* name, int chosen) {
  box.setObjectName(name);
  if (chosen >= 0) box.setCurrentIndex(chosen);
  box.setEnabled(box.count() > 1);
}

}  // namespace

bool AskScanSetup(QWidget* over, sys::ScanSetup& setup) {
  QDialog dialog(over);
  dialog.setObjectName("ScanSetup");
  dialog.setWindowTitle("Scanner Setup");

  QComboBox resolutions;
  for (const int one : setup.resolutions) resolutions.addItem(QString("%1 dots per inch").arg(one), one);
  if (resolutions.count() == 0) resolutions.addItem("As the scanner is set", setup.resolution);
  Finish(resolutions, "cboResolution", resolutions.findData(setup.resolution));
  QComboBox modes;
  for (const std::string& one : setup.modes) modes.addItem(QString::fromStdString(one));
  if (modes.count() == 0) modes.addItem("As the scanner is set");
  Finish(modes, "cboMode", modes.findText(QString::fromStdString(setup.mode)));

  auto* rows = new FieldRows;
  rows->addWidget(Caption(setup.device), 0, 0, 1, 2);
  rows->Row("&Resolution:", {&resolutions});
  rows->Row("Color &mode:", {&modes});
  auto* scan = new QPushButton("&Scan");
  auto* cancel = new QPushButton("Cancel");
  scan->setObjectName("OKButton");
  cancel->setObjectName("CancelButton");
  scan->setDefault(true);
  QObject::connect(scan, &QPushButton::clicked, &dialog, &QDialog::accept);
  QObject::connect(cancel, &QPushButton::clicked, &dialog, &QDialog::reject);
  auto* all = new QVBoxLayout(&dialog);
  all->addLayout(rows);
  all->addLayout(ButtonRow({scan, cancel}));
  TabOrder({&resolutions, &modes, scan, cancel});
  (resolutions.isEnabled() ? static_cast<QWidget*>(&resolutions) : scan)->setFocus();

  rt::AboutToWait();
  if (dialog.exec() != QDialog::Accepted) return false;
  if (!setup.resolutions.empty()) setup.resolution = resolutions.currentData().toInt();
  if (!setup.modes.empty()) setup.mode = modes.currentText().toStdString();
  return true;
}

}  // namespace ui
