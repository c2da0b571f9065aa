// The window through which every report runs, and the launches that lead to it.
#include <QTimer>

#include "reports/forms/DateRangeForm.h"
#include "reports/forms/ReportsTest.h"
#include "reports/forms/frmCriteriaList.h"
#include "support/desktop/TypeFast.h"

namespace {

using screen::Icon;

using ReportWindow = test::ReportsTest;

std::string Titles(dw::ReportForm& form) {
  std::string titles;
  for (auto& line : form.titleLines) titles += line.Text() + "|";
  return titles;
}

TEST_F(ReportWindow, TakesItsTitlesFromTheLaunch) {
  auto& form = LaunchReport("DW_RptInventory");
  EXPECT_EQ(form.windowTitle(), "Inventory Listing");
  EXPECT_EQ(Titles(form), "Inventory Listing||||");
  EXPECT_TRUE(form.toScreen.isChecked());
  EXPECT_EQ(engine_->Joined(), "PEOpenEngine");
  test::Click(form, "CancelButton");
  EXPECT_FALSE(IsOpen("ReportForm"));
  EXPECT_EQ(engine_->Joined(), "PEOpenEngine\nPECloseEngine");

  // A caller that presets some titles, and one that wants the organisation's address.
  dw::ReportForm& preset = ui::The<dw::ReportForm>();
  preset.Title2 = "Second";
  preset.LoadForm();
  EXPECT_EQ(Titles(preset), "Inventory Listing|Second|||");
  preset.Unload();
  test::Settle();
  for (const bool row : {false, true}) {
    fleet_.Run("DELETE * FROM [Parameters]");
    if (row)
      fleet_.Add(
          "Parameters",
          {{"ID", 1}, {"Organization Name", "County"}, {"Address Line 2", "Town"}, {"Contact Phone", ""}});
    dw::ReportForm& addressed = ui::The<dw::ReportForm>();
    addressed.UseAddress = true;
    addressed.LoadForm();
    EXPECT_EQ(Titles(addressed), row ? "County||Town||" : "Inventory Listing||||");
    addressed.Unload();
    test::Settle();
  }
}

TEST_F(ReportWindow, ThreeLaunchesShowTheTitleOfTheLaunchBefore) {
  LaunchReport("DW_RptInventory").Unload();
  test::Settle();
  auto& form = LaunchReport("Rpt_MaintenanceTypes");
  EXPECT_EQ(form.windowTitle(), "Inventory Listing");
  EXPECT_EQ(Titles(form), "Inventory Listing||||");
  EXPECT_TRUE(form.isVisible());
  EXPECT_EQ(dw::RptTitle, "Scheduled Maintenance Types Listing");
  test::Click(form, "ProceedButton");
  EXPECT_NE(engine_->Joined("PEOpenPrintJob").find("dwr014.rpt"), std::string::npos);
  EXPECT_FALSE(IsOpen("ReportForm"));

  // The oil report looks at the selection of the launch before, and so lets the user define one.
  dw::RptSelection.clear();
  ui::The<dw::frmRptDWR017>().ShowForm();
  test::Click(test::Open("frmRptDWR017"), "cmdProceed");
  auto& oil = *ui::Existing<dw::ReportForm>();
  EXPECT_EQ(oil.windowTitle(), "Scheduled Maintenance Types Listing");
  EXPECT_NE(dw::RptSelection, "");
  QTimer::singleShot(0, [] { test::Click(test::Open("frmCriteriaList"), "CloseButton"); });
  test::Click(oil, "SelectButton");
  EXPECT_FALSE(IsOpen("frmCriteriaList"));
}

TEST_F(ReportWindow, ASecondLaunchShowsTheSameForm) {
  auto& form = LaunchReport("DW_RptInventory");
  test::Type(form, "Text1(1)", "typed");
  EXPECT_EQ(&LaunchReport("DW_RptDivisionCodes"), &form);
  EXPECT_EQ(form.windowTitle(), "Inventory Listing");
  EXPECT_EQ(Titles(form), "Inventory Listing|typed|||");
  test::Press(form, Qt::Key_Return);
  EXPECT_NE(engine_->Joined("PEOpenPrintJob").find("dwr001.rpt"), std::string::npos);
  EXPECT_EQ(engine_->Joined("PEOpenEngine"), "PEOpenEngine") << "one for each showing";
}

TEST_F(ReportWindow, WithoutAnEngineItClosesAfterTheMessage) {
  engine_->failing = {"PEOpenEngine"};
  screen_->Expect("Crystal Reports print engine is not available.", Icon::None);
  dw::LaunchFromMenu(dw::ReportOf("DW_RptInventory"));
  test::Settle();
  EXPECT_FALSE(IsOpen("ReportForm"));
  EXPECT_EQ(engine_->Joined(), "PEOpenEngine") << "nothing to close";
}

TEST_F(ReportWindow, HandsItsFieldsToTheRun) {
  auto& form = LaunchReport("DW_RptInventory");
  form.SectionPageBreak = true;
  form.Aux2 = "aux";
  test::Type(form, "Text1(0)", "");
  test::Type(form, "Text1(3)", "He said \"now\"");
  test::Click(form, "Option3");
  test::Click(form, "Check1");
  test::Click(form, "ProceedButton");
  EXPECT_EQ(engine_->Joined("PESetFormula"),
            "PESetFormula RptTitle4~ \"He said \"now\"\"~\n"
            "PESetFormula RptGenedBy~ \"TESTER\"~\n"
            "PESetFormula RptAux2~ \"aux\"~");
  EXPECT_NE(engine_->Joined("PEExportTo"), "");
  EXPECT_NE(engine_->Joined("PEGetNGroups"), "");
  EXPECT_NE(engine_->Joined("PESetSectionFormat 4000"), "");
  EXPECT_EQ(engine_->calls.back(), "PECloseEngine");

  auto& none = LaunchReport("DW_RptInventory");
  none.toScreen.setAutoExclusive(false);
  none.toScreen.setChecked(false);
  screen_->Expect("Invalid Option Box checked.", Icon::None);
  test::Click(none, "ProceedButton");
  EXPECT_FALSE(IsOpen("ReportForm"));
}

TEST_F(ReportWindow, StaysUntilThePreviewIsClosedAndEndsWithCancel) {
  auto& form = LaunchReport("DW_RptInventory");
  engine_->looks = 3;
  bool looked = false;
  QTimer::singleShot(20, [&] {
    looked = true;
    EXPECT_TRUE(form.isVisible());
    EXPECT_FALSE(form.proceedButton->isEnabled());
    EXPECT_EQ(screen_->CurrentPointer(), screen::Pointer::Normal);
    // Other windows go on working meanwhile.
    ui::The<dw::frmRptDWR004>().ShowForm();
  });
  test::Click(form, "ProceedButton");
  EXPECT_TRUE(looked);
  EXPECT_FALSE(IsOpen("ReportForm"));
  EXPECT_TRUE(IsOpen("frmRptDWR004"));

  auto& again = LaunchReport("DW_RptInventory");
  engine_->looks = 1000000;
  engine_->calls.clear();
  QTimer::singleShot(20, [&] { test::Click(again, "CancelButton"); });
  test::Click(again, "ProceedButton");
  EXPECT_FALSE(IsOpen("ReportForm"));
  EXPECT_EQ(engine_->Joined("PEC"), "PEClosePrintJob\nPECloseEngine");

  // The end of the program takes the form away in the middle.
  auto& last = LaunchReport("DW_RptInventory");
  engine_->looks = 1000000;
  QTimer::singleShot(20, [&] { last.Unload(); });
  test::Click(last, "ProceedButton");
  EXPECT_FALSE(IsOpen("ReportForm"));
}

TEST_F(ReportWindow, ASelectionOfItsOwnIsRefusedForReportsWithDates) {
  ui::The<dw::frmRptDWR004>().ShowForm();
  test::Click(test::Open("frmRptDWR004"), "cmdProceed");
  auto& form = *ui::Existing<dw::ReportForm>();
  screen_->Expect("You cannot specify your own select criteria.", Icon::None);
  test::Click(form, "SelectButton");
}

TEST_F(ReportWindow, ATemporarySelectionIsGoneAfterTheRunAndItsLinesStay) {
  for (const char* end : {"CancelButton", "ProceedButton"}) {
    fleet_.Run("DELETE * FROM [Select and Sort Queries]", kSands);
    const std::int32_t temporary = Definition("Trucks", false);
    Condition(temporary, {{"Field Name", "Class ID"}, {"Comparison Operator", "="}, {"Value", "'TRK'"}});
    auto& form = LaunchReport("DW_RptInventory");
    QTimer::singleShot(0, [&] {
      auto& list = dynamic_cast<dw::frmCriteriaList&>(test::Open("frmCriteriaList"));
      EXPECT_EQ(list.ReportID, "Vehicles");
      EXPECT_EQ(list.Grid().CellText(1), "Trucks");
      test::Click(list, "UseButton");
    });
    test::Click(form, "SelectButton");
    EXPECT_EQ(dw::RptQueryID, temporary);
    EXPECT_EQ(dw::RptSelection, "{Vehicles.Class ID} = 'TRK'  ");
    EXPECT_EQ(Sands("SELECT COUNT(*) FROM [Select and Sort Queries]"), "1");
    test::Click(form, end);
    EXPECT_EQ(Sands("SELECT COUNT(*) FROM [Select and Sort Queries]"), "0") << end;
  }
  EXPECT_EQ(Sands("SELECT COUNT(*) FROM [Selection Criteria]"), "2");
  EXPECT_EQ(engine_->Joined("PESetSelectionFormula"), "PESetSelectionFormula {Vehicles.Class ID} = 'TRK'  ~");

  // A new form starts without a definition.
  Definition("Kept", true);
  auto& form = LaunchReport("DW_RptInventory");
  EXPECT_EQ(dw::RptQueryID, 0);
  QTimer::singleShot(0, [&] { test::Click(test::Open("frmCriteriaList"), "UseButton"); });
  test::Click(form, "SelectButton");
  test::Click(form, "CancelButton");
  EXPECT_EQ(Sands("SELECT [Description] FROM [Select and Sort Queries]"), "Kept");
}

TEST_F(ReportWindow, DateFormsCheckTheirDatesAndStayOpen) {
  auto& form = ui::The<dw::frmRptDWR006>();
  form.LoadForm();
  form.AssetID = "O'BRIEN";
  form.ShowForm();
  test::Settle();
  EXPECT_EQ(form.windowTitle(), "Equipment Costs Listing Parameters");
  EXPECT_EQ(form.startDate.Text() + " " + form.endDate.Text(), "2/15/2026 3/1/2026");
  EXPECT_NE(test::Find<QLabel>(form, "lblNote").text().indexOf("O'BRIEN"), -1);

  screen_->Expect("A date is required for this field.", Icon::Critical);
  test::Type(form, "txtStartDate", "");
  test::Enter(form, "txtEndDate");
  EXPECT_TRUE(form.startDate.hasFocus());
  test::Type(form, "txtStartDate", "1/1/1799");
  screen_->Expect("Year cannot be less than 1800. Please try again.", Icon::Exclamation);
  test::Press(form.startDate, Qt::Key_Return);
  EXPECT_FALSE(IsOpen("ReportForm"));
  test::Type(form, "txtStartDate", "5/1/26");
  test::Type(form, "txtEndDate", "soon");
  screen_->Expect("That is not a valid date. Please try again.", Icon::Exclamation);
  test::Press(form.endDate, Qt::Key_Return);
  EXPECT_FALSE(IsOpen("ReportForm"));
  test::Type(form, "txtEndDate", "4/30/2026");
  test::Press(form.endDate, Qt::Key_Return);
  EXPECT_TRUE(IsOpen("ReportForm"));
  EXPECT_TRUE(IsOpen("frmRptDWR006"));
  EXPECT_EQ(dw::RptSelection,
            "{Maintenance Transactions.Transaction Date} >= Date(2026,5,1) AND "
            "{Maintenance Transactions.Transaction Date} <= Date(2026,4,30) AND "
            "{Maintenance Transactions.Asset ID} = 'O''BRIEN'")
      << "an end before the start is taken";
  test::Type(form, "txtEndDate", "wrong");
  test::Click(form, "cmdCancel");
  EXPECT_FALSE(IsOpen("frmRptDWR006")) << "a wrong date does not keep the user";
  EXPECT_EQ(ui::The<dw::frmRptDWR006>().AssetID, "");
}

TEST_F(ReportWindow, KeysTypedWithoutALookReachTheirWindows) {
  ui::The<dw::frmRptDWR004>().ShowForm();
  test::Settle();
  std::vector<test::Key> keys = test::Letters("1/1/2026");
  keys.push_back({Qt::Key_Tab});
  for (const test::Key& key : test::Letters("2/1/2026")) keys.push_back(key);
  keys.push_back({Qt::Key_Return});
  for (const test::Key& key : test::Letters("Costs of January")) keys.push_back(key);
  keys.push_back({Qt::Key_Return});
  EXPECT_EQ(test::TypeFast(keys, 1), 0);
  EXPECT_FALSE(IsOpen("ReportForm"));
  EXPECT_NE(engine_->Joined("PESetFormula").find("\"Costs of January\""), std::string::npos)
      << engine_->Joined("PESetFormula");
  EXPECT_NE(engine_->Joined("PESetSelection").find("Date(2026,1,1)"), std::string::npos);
  EXPECT_NE(engine_->Joined("PESetSelection").find("Date(2026,2,1)"), std::string::npos);
}

}  // namespace
