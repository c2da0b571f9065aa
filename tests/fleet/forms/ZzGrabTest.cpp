#include <QApplication>
#include <QPalette>
#include <QStyleFactory>
#include "fleet/forms/frmInventoryList.h"
#include "fleet/forms/frmSchedMaintAsset.h"
#include "support/desktop/ListTest.h"
class ZzGrab : public test::ListTest {};
TEST_F(ZzGrab, All) {
  const std::string tag = qgetenv("GRAB_TAG").toStdString();
  if (tag.empty()) GTEST_SKIP();
  if (tag == "dark") {
    QPalette p;
    p.setColor(QPalette::Window, QColor(45, 45, 45)); p.setColor(QPalette::WindowText, Qt::white);
    p.setColor(QPalette::Base, QColor(30, 30, 30)); p.setColor(QPalette::AlternateBase, QColor(45, 45, 45));
    p.setColor(QPalette::Text, Qt::white); p.setColor(QPalette::Button, QColor(60, 60, 60));
    p.setColor(QPalette::ButtonText, Qt::white); p.setColor(QPalette::Highlight, QColor(42, 130, 218));
    p.setColor(QPalette::HighlightedText, Qt::white);
    p.setColor(QPalette::Disabled, QPalette::Text, QColor(140,140,140));
    p.setColor(QPalette::Disabled, QPalette::WindowText, QColor(140,140,140));
    qApp->setPalette(p);
  }
  const auto type = fleet_.Add("Maintenance Types", {{"Description", "Oil change and filter"}});
  fleet_.Add("Divisions", {{"Division ID", "N"}, {"Description", "North"}});
  for (int i = 0; i < 30; ++i)
    fleet_.AddAsset("TRK-" + std::to_string(100 + i), 1, {{"Description", "Ford pickup, long bed"}, {"VIN/Serial Number", "1FTNW21P83EB12345"}, {"Division ID", "N"}, {"Location ID", "YARD"},{"Class ID","PKUP"}, {"Purchase Date", rt::DateTime(2020, 5, 3)}, {"Purchase Price", test::Money(31250.5)}, {"Model Year", "2020"}, {"Created By", "TESTER"}});
  auto& list = OpenList<dw::frmInventoryList>();
  list.grab().save(QString::fromStdString("/tmp/assets-list-" + tag + ".png"));
  const auto id = fleet_.Add("Maintenance Schedule", {{"Asset ID", "TRK-100"}, {"Line Item", 3}, {"Type ID", type}, {"Description", "Every Spring Before The Season"}, {"Monthly Frequently", 12}, {"Usage Frequency", 15000}, {"Estimated Cost", test::Money(1049.5)}, {"Notes", "Two men\nUse the north bay."}, {"Created By", "TESTER"}, {"Date Created", rt::DateTime(2026, 2, 3, 4, 5, 6)}});
  std::int32_t row = 0;
  dw::OpenAssetDetailForm<dw::frmSchedMaintAsset>(list.Grid(), false, id, "TRK-100", row, true);
  test::Settle();
  auto& form = *ui::Existing<dw::frmSchedMaintAsset>();
  std::string order;
  for (int i = 0; i < 12; ++i) { QWidget* f = form.focusWidget(); order += (f ? f->objectName().toStdString() : "-") + " "; QTest::keyClick(f ? f : &form, Qt::Key_Tab); }
  printf("ORDER %s\n", order.c_str());
  test::Enter(form, "Text10");
  form.grab().save(QString::fromStdString("/tmp/assets-line-" + tag + ".png"));
}
