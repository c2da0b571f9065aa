// The windows of select and sort definitions.
#include <QLabel>
#include <QTimer>

#include "reports/forms/ReportsTest.h"
#include "reports/forms/frmCriteriaList.h"
#include "reports/forms/frmCriteriaMaint.h"
#include "reports/forms/frmSelectMaint.h"
#include "reports/forms/frmSortMaint.h"
#include "support/OtherUser.h"
#include "support/desktop/TypeFast.h"

namespace {

using screen::Answer;
using screen::Buttons;
using screen::Icon;

constexpr const char* kHeld =
    "This record is apparently being updated elsewhere. You will not be able to change any information at "
    "this "
    "time.";

/// Starts the second process before any file is open.
struct WithOther {
  test::OtherUser other_;
};

class Criteria : public WithOther, public test::ReportsTest {
 protected:
  Criteria() {
    dw::SetReportGlobals(dw::ReportOf("DW_RptInventory"));
    engine_->tables = {"Vehicles", "Divisions"};
  }
  dw::frmCriteriaList& List(const char* table = "Vehicles") {
    auto& list = ui::The<dw::frmCriteriaList>();
    list.LoadForm();
    list.ReportID = table;
    list.ShowForm();
    test::Settle();
    list.Grid().SetRow(0);
    return list;
  }
  template <class Window>
  Window& Opened(QWidget& grid, Qt::Key key) {
    test::Press(grid, key);
    return dynamic_cast<Window&>(test::Open(Window::kName));
  }
  dw::frmCriteriaMaint& OpenFirst() { return Opened<dw::frmCriteriaMaint>(List().Grid(), Qt::Key_Space); }
  void ExpectSure(Answer answer) {
    screen_->Expect("Are you sure you want to delete this record?", Icon::Question, Buttons::YesNo, answer);
  }
  std::string Queries() { return Sands("SELECT COUNT(*) FROM [Select and Sort Queries]"); }
  std::string OfLine(const char* column, const char* table = "Selection Criteria") {
    return Sands(std::string("SELECT [") + column + "] FROM [" + table + "] ORDER BY [ID] DESC");
  }
  static std::string Shown(QLabel* label) { return label->text().toStdString(); }
};

TEST_F(Criteria, TheListHasTheDefinitionsOfItsTable) {
  auto& list = List();
  EXPECT_EQ(list.windowTitle(), "Select and Sort Definitions");
  screen_->Expect("You must first create or click on a query row.", Icon::Information);
  test::Click(list, "UseButton");
  EXPECT_TRUE(list.Grid().hasFocus());
  for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Delete}) {
    screen_->Expect("There are no records for which to display detail.", Icon::None);
    test::Press(list.Grid(), key);
  }
  list.Unload();
  test::Settle();
  Definition("Others", true, "Divisions");
  const std::int32_t mine = Definition("Mine", true);
  Condition(mine, {{"Line Number", 1}});
  Condition(mine + 1, {{"Line Number", 1}});
  auto& filled = List();
  EXPECT_EQ(filled.Grid().RecordCount(), 1);
  EXPECT_EQ(filled.Grid().CellText(1), "Mine");
  ExpectSure(Answer::Yes);
  test::Press(filled.Grid(), Qt::Key_Delete);
  EXPECT_EQ(filled.Grid().RecordCount(), 0);
  EXPECT_EQ(Queries(), "1");
  EXPECT_EQ(Sands("SELECT COUNT(*) FROM [Selection Criteria]"), "1");
  filled.Unload();
  test::Settle();
  EXPECT_EQ(List("[Divisions],[Vehicles]").Grid().RecordCount(), 1) << "up to the comma, without brackets";
}

TEST_F(Criteria, ANewDefinitionIsStoredAtOnceAndGoesWithCancel) {
  auto& form = Opened<dw::frmCriteriaMaint>(List().Grid(), Qt::Key_Insert);
  EXPECT_EQ(Sands("SELECT [Primary Table] FROM [Select and Sort Queries]"), "Vehicles");
  EXPECT_EQ(form.recordNumber.Text(), std::to_string(form.DataID));
  EXPECT_EQ(Shown(form.meaning), "All records.");
  ASSERT_TRUE(form.focusWidget());
  EXPECT_EQ(form.focusWidget()->objectName(), "Text1");
  test::Click(form, "CancelButton");
  EXPECT_EQ(Queries(), "0");

  auto& kept = Opened<dw::frmCriteriaMaint>(List().Grid(), Qt::Key_Insert);
  test::Type(kept, "Text1", "Old trucks");
  test::Click(kept, "Check1");
  test::Press(kept.description, Qt::Key_Return);
  EXPECT_EQ(
      Sands("SELECT [Description] & [Created By] FROM [Select and Sort Queries] WHERE [Permanent] = TRUE "
            "AND [Updated By] IS NULL"),
      "Old trucksTESTER");
  EXPECT_EQ(ui::Existing<dw::frmCriteriaList>()->Grid().CellText(1), "Old trucks") << "the list shows it";

  auto& changed = OpenFirst();
  test::Type(changed, "Text1", "Trucks");
  test::Click(changed, "CancelButton");
  EXPECT_EQ(Sands("SELECT [Description] FROM [Select and Sort Queries]"), "Old trucks");
}

TEST_F(Criteria, AConditionIsEnteredChecksItsFieldsAndStoresItsLiteral) {
  const std::int32_t query = Definition("Trucks", true);
  Condition(query, {{"Line Number", 4},
                    {"Field Name", "Class ID"},
                    {"Comparison Operator", "="},
                    {"Value", "'TRK'"},
                    {"Connector", "AND"}});
  engine_->rows = {1234, true};
  auto& form = OpenFirst();
  ASSERT_TRUE(QTest::qWaitFor([&] { return Shown(form.matchCount) == "1,234 records match now."; }, 5000))
      << Shown(form.matchCount);
  auto& line = Opened<dw::frmSelectMaint>(form.SelectGrid(), Qt::Key_Insert);
  EXPECT_EQ(line.windowTitle(), "New Selection Row");
  EXPECT_EQ(line.lineNumber.Text(), "5");
  EXPECT_EQ(OfLine("Query ID"), "Null") << "a run meanwhile does not see it";
  EXPECT_EQ(line.tableName.Text(), "Vehicles");
  EXPECT_TRUE(line.tableName.HasItem("Divisions"));
  EXPECT_TRUE(line.fieldName.HasItem("Purchase Date"));

  screen_->Expect("You must select a field.", Icon::Critical);
  test::Click(line, "OkButton");
  test::Type(line, "Combo1", "No such");
  screen_->Expect("The field name does not exist in the table. Select from the dropdown list.",
                  Icon::Information);
  test::Enter(line, "Combo2");
  EXPECT_TRUE(line.fieldName.hasFocus());
  test::Enter(line, "Combo1");
  line.fieldName.lineEdit()->selectAll();
  QTest::keyClicks(&line.fieldName, "purchase d");
  test::Enter(line, "Combo2");
  EXPECT_EQ(line.fieldName.Text(), "Purchase Date") << "completed";
  screen_->Expect("You must select a comparison operator.", Icon::Critical);
  test::Enter(line, "Text1");
  screen_->Expect("You must select a comparison operator.", Icon::Critical);
  test::Click(line, "OkButton");
  line.comparison.SetText(">=");
  test::Type(line, "Text1", "1/1/99");
  test::Enter(line, "Text3");
  EXPECT_EQ(line.value.Text(), "Date(1999,1,1)");
  test::Type(line, "Text3", "(");
  test::Type(line, "Text5", "since when");
  EXPECT_EQ(line.prompt.Text(), "Since When");
  test::Type(line, "Text1", "1/2/1999");
  test::Press(line.value, Qt::Key_Return);
  EXPECT_FALSE(IsOpen("frmSelectMaint"));
  EXPECT_EQ(OfLine("Field Name") + OfLine("Table Name") + OfLine("Value") + OfLine("Open Parentheses") +
                OfLine("Comparison Operator") + OfLine("Runtime Value Prompt") + OfLine("Created By"),
            "Purchase DateVehiclesDate(1999,1,2)(>=Since WhenTESTER");
  EXPECT_EQ(OfLine("Query ID"), std::to_string(query));
  EXPECT_EQ(Shown(form.meaning), "Class ID is TRK and (Purchase Date is on or after 1/2/1999");
  EXPECT_EQ(form.SelectGrid().RecordCount(), 2);

  // The engine's fault is told where the definition is made.
  engine_->fault = "Selection formula, column 60: ')' is missing.";
  form.SelectGrid().SetRow(1);
  auto& again = Opened<dw::frmSelectMaint>(form.SelectGrid(), Qt::Key_Space);
  EXPECT_EQ(again.windowTitle(), "Selection Row");
  test::Type(again, "Combo4", "Nowhere");
  screen_->Expect("You must enter a valid table from the list.", Icon::None);
  test::Enter(again, "Text2");
  EXPECT_TRUE(again.tableName.hasFocus());
  test::Click(again, "CancelButton");
  EXPECT_EQ(Shown(form.engineFault),
            "The report would refuse this selection: Selection formula, column 60: ')' is missing.");
  engine_->rows = {4096, false};
  EXPECT_EQ(engine_->asked.back(),
            "{Vehicles.Class ID} = 'TRK' AND ({Vehicles.Purchase Date} >= Date(1999,1,2)  ");
  EXPECT_FALSE(form.matchCount->isVisible());

  engine_->fault.clear();
  ExpectSure(Answer::Yes);
  form.SelectGrid().SetRow(1);
  test::Press(form.SelectGrid(), Qt::Key_Delete);
  EXPECT_EQ(Shown(form.meaning), "Class ID is TRK and (nothing)");
  EXPECT_EQ(Shown(form.matchCount), "More than 4,096 records match now.");
  EXPECT_EQ(Sands("SELECT COUNT(*) FROM [Selection Criteria]"), "1");
}

TEST_F(Criteria, ASortFieldIsEnteredAndTurnedRound) {
  const std::int32_t query = Definition("Trucks", true);
  auto& form = OpenFirst();
  screen_->Expect("There are no records for which to display detail.", Icon::None);
  test::Press(form.SortGrid(), Qt::Key_Space);
  auto& line = Opened<dw::frmSortMaint>(form.SortGrid(), Qt::Key_Insert);
  EXPECT_EQ(line.windowTitle(), "New Sort Row");
  EXPECT_TRUE(line.ascending.isChecked());
  line.tableName.SetText("Divisions");
  screen_->Expect("You must select a field.", Icon::Critical);
  test::Click(line, "OkButton");
  test::Type(line, "FieldCombo", "Class ID");
  screen_->Expect("The field name does not exist in the table. Select from the dropdown list.",
                  Icon::Information);
  test::Click(line, "OkButton");
  EXPECT_TRUE(line.fieldName.hasFocus());
  line.fieldName.SetText("Division ID");
  test::Click(line, "Option2");
  test::Click(line, "OkButton");
  EXPECT_EQ(OfLine("Field Name", "Sort Criteria") + OfLine("Ascending or Descending", "Sort Criteria") +
                OfLine("Line Number", "Sort Criteria"),
            "Division IDD1");
  EXPECT_EQ(Shown(form.meaning), "All records.\nSorted by Division ID of Divisions (descending)");
  auto& again = Opened<dw::frmSortMaint>(form.SortGrid(), Qt::Key_Space);
  EXPECT_TRUE(again.descending.isChecked());
  test::Click(again, "Option1");
  test::Click(again, "OkButton");
  EXPECT_EQ(OfLine("Ascending or Descending", "Sort Criteria") + OfLine("Updated By", "Sort Criteria"),
            "ATESTER");
  EXPECT_EQ(OfLine("Query ID", "Sort Criteria"), std::to_string(query));
}

TEST_F(Criteria, WhatSomebodyElseHoldsIsForReading) {
  const std::int32_t query = Definition("Trucks", true);
  Condition(query, {{"Line Number", 1}, {"Field Name", "Class ID"}});
  other_.Hold(fleet_.Path(kSands), "SELECT * FROM [Select and Sort Queries]");
  screen_->Expect(kHeld, Icon::Information);
  screen_->ExpectPart("Current Computers In Use:", Icon::Information);
  auto& form = OpenFirst();
  EXPECT_FALSE(form.okButton->isEnabled());
  EXPECT_FALSE(form.description.isEnabled());
  EXPECT_EQ(form.SelectGrid().RecordCount(), 1);
  test::Click(form, "CancelButton");
  EXPECT_EQ(Queries(), "1");
  other_.Leave();

  auto& mine = OpenFirst();
  EXPECT_TRUE(mine.okButton->isEnabled());
  EXPECT_THROW(fleet_.Run("UPDATE [Select and Sort Queries] SET [Description] = 'x'", kSands),
               store::StoreError)
      << "held until OK or Cancel";
  mine.Unload();
}

TEST_F(Criteria, ADefinitionThatIsOpenHereIsNotDeleted) {
  const std::int32_t query = Definition("Trucks", true);
  Condition(query, {{"Line Number", 1}});
  auto& form = OpenFirst();
  auto& list = *ui::Existing<dw::frmCriteriaList>();
  list.activateWindow();
  test::Settle();
  ExpectSure(Answer::Yes);
  screen_->Expect("This record is open in another window of this program. Close that window and try again.",
                  Icon::Exclamation);
  test::Press(list.Grid(), Qt::Key_Delete);
  EXPECT_EQ(Queries() + Sands("SELECT COUNT(*) FROM [Selection Criteria]"), "11")
      << "its lines are there, too";
  // The definition is used as it is stored, and its window stays.
  test::Click(list, "UseButton");
  EXPECT_EQ(dw::RptQueryID, query);
  EXPECT_TRUE(IsOpen("frmCriteriaMaint"));
  test::Click(form, "OkButton");
}

TEST_F(Criteria, AVanishedDefinitionAndAVanishedLineAreTold) {
  const std::int32_t query = Definition("Trucks", true);
  const std::int32_t id = Condition(query, {{"Line Number", 1}});
  auto& form = OpenFirst();
  fleet_.Run("DELETE * FROM [Selection Criteria]", kSands);
  screen_->Expect("Internal Error: Unable to re-read record #" + std::to_string(id) + ".", Icon::Information);
  test::Press(form.SelectGrid(), Qt::Key_Space);
  EXPECT_FALSE(IsOpen("frmSelectMaint"));
  EXPECT_EQ(form.SelectGrid().RecordCount(), 0);
  test::Click(form, "CancelButton");
  auto& list = List();
  fleet_.Run("DELETE * FROM [Select and Sort Queries]", kSands);
  screen_->Expect("Internal Error: Unable to re-read record #" + std::to_string(query) + ".",
                  Icon::Information);
  test::Press(list.Grid(), Qt::Key_Space);
  EXPECT_FALSE(IsOpen("frmCriteriaMaint"));
}

TEST_F(Criteria, TheWindowsOfAModalListTakeInputAndASecondOneKeepsItsRecord) {
  const std::int32_t first = Definition("A first", true);
  Definition("B second", true);
  auto& list = ui::The<dw::frmCriteriaList>();
  list.LoadForm();
  list.ReportID = "Vehicles";
  QTimer::singleShot(0, [&] {
    list.Grid().SetRow(0);
    auto& form = Opened<dw::frmCriteriaMaint>(list.Grid(), Qt::Key_Space);
    auto& line = Opened<dw::frmSelectMaint>(form.SelectGrid(), Qt::Key_Insert);
    test::Click(line, "CancelButton");
    EXPECT_FALSE(IsOpen("frmSelectMaint"));
    // Back in the list, another record does not take the place of the one that is open.
    list.activateWindow();
    list.Grid().SetRow(1);
    test::Press(list.Grid(), Qt::Key_Space);
    EXPECT_EQ(form.DataID, first);
    EXPECT_EQ(ui::ActiveForm(), &form);
    test::Click(form, "OkButton");
    test::Click(list, "CloseButton");
  });
  list.ShowModal();
  EXPECT_FALSE(IsOpen("frmCriteriaMaint"));
}

TEST_F(Criteria, KeysTypedWithoutALookReachTheirWindows) {
  test::Settle();
  List().Grid().setFocus();
  test::Settle();
  std::vector<test::Key> keys{{Qt::Key_Insert}};
  for (const test::Key& key : test::Letters("Fast")) keys.push_back(key);
  keys.push_back({Qt::Key_Return});
  keys.push_back({Qt::Key_Space});
  keys.push_back({Qt::Key_End});
  for (const test::Key& key : test::Letters("er")) keys.push_back(key);
  keys.push_back({Qt::Key_Return});
  EXPECT_EQ(test::TypeFast(keys, 1), 0);
  EXPECT_FALSE(IsOpen("frmCriteriaMaint"));
  EXPECT_EQ(Sands("SELECT [Description] FROM [Select and Sort Queries]"), "Faster");
  EXPECT_EQ(Queries(), "1");
}

}  // namespace
