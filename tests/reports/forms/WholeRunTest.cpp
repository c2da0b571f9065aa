// The windows of reports with the program's own engine, definition files and preview.
#include <QTimer>
#include <filesystem>

#include "platform/print/job/Destinations.h"
#include "platform/print/view/PreviewWindow.h"
#include "reports/DateRange.h"
#include "reports/PrintEngineCalls.h"
#include "reports/forms/DateRangeForm.h"
#include "reports/forms/ReportsTest.h"
#include "reports/forms/frmCriteriaList.h"
#include "reports/forms/frmCriteriaMaint.h"
#include "support/TempDirectory.h"
#include "tools/dwadmin/Sample.h"

namespace {

class WholeRun : public testing::Test {
 protected:
  WholeRun() {
    std::filesystem::create_directory(directory_.Path("data"));
    dw::MakeSample(directory_.Path("data"), 6, 1, 3, {});
    dw::SetDataPath(directory_.Path("data"));
    dw::CurrentUserName = "Zoë \"Z\" O'Neil";
    sys::UseSettingsFile(directory_.Path("settings"));
    dw::InstallPrintCalls(dw::PrintEngineCalls());
    print::InstallPrintDialog(dialog_);
    print::InstallViewer(std::make_shared<print::PreviewViewer>());
    dw::ForgetPrinters();
  }
  ~WholeRun() override {
    dw::InstallPrintCalls(nullptr);
    print::InstallPrintDialog(nullptr);
    print::InstallViewer(nullptr);
    sys::UseSettingsFile({});
  }
  /// Launches a report as its menu entry does; its definition file is the one of the source tree.
  dw::ReportForm& Launched(const dw::ReportEntry& report) {
    if (report.route == dw::ReportRoute::DateRange)
      dw::Launch(report, dw::DateRangeSelection(dw::DateRangeOf(report.dateForm), rt::DateTime(2020, 1, 1),
                                                rt::DateTime(2030, 1, 1)));
    else
      dw::LaunchFromMenu(report);
    dw::RptFile = std::string(REPORT_DEFINITIONS) + "/" + report.file;
    test::Settle();
    return *ui::Existing<dw::ReportForm>();
  }

  test::TempDirectory directory_;
  std::shared_ptr<test::FakePrintDialog> dialog_ = std::make_shared<test::FakePrintDialog>();
  test::ScreenScript screen_;
  test::FormsEnd end_;
};

TEST_F(WholeRun, EveryReportIsPrintedWithoutABox) {
  for (const dw::ReportEntry& report : dw::ReportTable()) {
    auto& form = Launched(report);
    test::Type(form, "Text1(0)", "A \"quoted\" title, 50% [of] 'all'");
    test::Click(form, "Option2");
    test::Click(form, "Check1");
    form.SectionPageBreak = true;
    const std::string file = directory_.Path(std::string(report.number) + ".pdf");
    dialog_->result = {.chosen = true, .choice = {.paper = "A4", .pdfFile = file}};
    test::Click(form, "ProceedButton");
    EXPECT_EQ(ui::FindForm("ReportForm"), nullptr);
    ASSERT_TRUE(std::filesystem::exists(file)) << report.number;
    EXPECT_GT(std::filesystem::file_size(file), 1000u) << report.number;
  }
}

TEST_F(WholeRun, ThePreviewKeepsTheFormUntilItIsClosed) {
  auto& form = Launched(dw::ReportOf("DW_RptInventory"));
  bool seen = false;
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, [&] {
    auto* preview = dynamic_cast<print::PreviewWindow*>(ui::FindForm("PreviewWindow"));
    if (!preview || !preview->isVisible()) return;
    look.stop();
    seen = true;
    EXPECT_TRUE(form.isVisible());
    EXPECT_EQ(preview->windowTitle().indexOf("Inventory Listing") >= 0, true);
    preview->close();
  });
  look.start(5);
  test::Click(form, "ProceedButton");
  EXPECT_TRUE(seen);
  EXPECT_EQ(ui::FindForm("ReportForm"), nullptr);

  // Cancel closes both.
  auto& again = Launched(dw::ReportOf("DW_RptInventory"));
  QTimer cancel;
  QObject::connect(&cancel, &QTimer::timeout, [&] {
    if (!ui::FindForm("PreviewWindow")) return;
    cancel.stop();
    test::Click(again, "CancelButton");
  });
  cancel.start(5);
  test::Click(again, "ProceedButton");
  test::Settle();
  EXPECT_EQ(ui::FindForm("ReportForm"), nullptr);
  EXPECT_EQ(ui::FindForm("PreviewWindow"), nullptr);
}

TEST_F(WholeRun, AStoredSelectionIsCountedRefusedWhereItIsWrongAndUsed) {
  const auto sands = store::Connection::Open({.path = dw::SandsFile});
  Launched(dw::ReportOf("DW_RptInventory"));
  auto& list = ui::The<dw::frmCriteriaList>();
  list.LoadForm();
  list.ReportID = "Vehicles";
  list.ShowForm();
  test::Settle();
  list.Grid().SetRow(0);
  test::Press(list.Grid(), Qt::Key_Space);
  auto& form = dynamic_cast<dw::frmCriteriaMaint&>(test::Open("frmCriteriaMaint"));
  EXPECT_TRUE(form.engineFault->text().isEmpty() || !form.engineFault->isVisible())
      << form.engineFault->text().toStdString();
  const std::string expected = [] {
    const auto rows = store::Cursor::OpenQuery(
        store::Connection::Open({.path = dw::DataFile}),
        "SELECT COUNT(*) FROM Vehicles WHERE [Class ID] = 'PICKUP' OR [Class ID] = 'VAN'",
        store::Locking::ReadOnly);
    return rows->Get(0).AsText();
  }();
  EXPECT_TRUE(QTest::qWaitFor(
      [&] { return form.matchCount->text().startsWith(QString::fromStdString(expected)); }, 10000))
      << form.matchCount->text().toStdString() << " instead of " << expected;
  test::Click(form, "CancelButton");

  sands->Execute("UPDATE [Selection Criteria] SET [Close Parentheses] = NULL");
  test::Press(list.Grid(), Qt::Key_Space);
  auto& wrong = dynamic_cast<dw::frmCriteriaMaint&>(test::Open("frmCriteriaMaint"));
  EXPECT_TRUE(wrong.engineFault->isVisible());
  EXPECT_TRUE(wrong.engineFault->text().startsWith("The report would refuse this selection: "));
  test::Click(wrong, "CancelButton");
}

}  // namespace
