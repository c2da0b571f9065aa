#include "platform/controls/DataGrid.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QLabel>
#include <QLayout>
#include <QMenu>
#include <QScrollBar>
#include <QVBoxLayout>
#include <fstream>
#include <sstream>

#include "controls/GridTest.h"

namespace {

/// A window with a list of all assets and a field beside it.
class DataGridTest : public test::GridTest {
 protected:
  void Open(int count, const std::string& source = "SELECT * FROM Assets ORDER BY Code") {
    MakeAssets(count);
    auto* layout = new QVBoxLayout(&window);
    layout->addWidget(grid);
    layout->addWidget(field);
    grid->SetColumns({{"ID", "", "", 0},
                      {"Code", "Asset Code", "", 0},
                      {"Cost", "", "\"$\"#,##0.00", 0},
                      {"Bought", "", "MM/dd/yyyy", 0},
                      {"Active", "", "", 0},
                      {"Notes", "", "", 0}});
    Bind(rows, source);
    grid->SetDataSource(rows);
    Show(window);
  }
  void ClickHeading(int column) {
    auto* header = grid->horizontalHeader();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                      {header->sectionViewportPosition(column) + 8, header->height() / 2});
    test::Settle();
  }
  QPoint Middle(int row, int column = 0) {
    return grid->visualRect(grid->model()->index(row, column)).center();
  }
  std::string Codes() {
    std::string codes;
    for (int row = 0; row < grid->model()->rowCount(); ++row)
      codes += (row == 0 ? "" : " ") + grid->CellValue(row, "Code").Shown();
    return codes;
  }

  QWidget window;
  ui::Adodc rows{"adoAssets"};  // destroyed before its grid, like the member of a form
  ui::DataGrid* grid = new ui::DataGrid("grdAssets");
  QLineEdit* field = new QLineEdit;
};

TEST_F(DataGridTest, ARowFoundByTypingIsAmongItsNeighbors) {
  Open(400);
  ASSERT_TRUE(grid->FindText("K200"));
  const QRect row = grid->visualRect(grid->currentIndex());
  const int height = grid->viewport()->height();
  EXPECT_GT(row.top(), height / 4);
  EXPECT_LT(row.bottom(), height * 3 / 4);
}

TEST_F(DataGridTest, DecimalsOfAColumnAgreeAndDatesFit) {
  Open(40);
  Change("UPDATE Assets SET Miles = 7 WHERE ID = 1");
  Change("UPDATE Assets SET Miles = 2.5 WHERE ID = 2");
  Change("UPDATE Assets SET Miles = NULL WHERE ID = 3");
  Change("UPDATE Assets SET Bought = #1/1/2001 1:01:01 AM#");
  grid->SetColumns({{"Miles"}, {"Bought"}, {"ID"}});
  rows.Refresh();
  const auto shown = [&](int row, int column) { return grid->model()->index(row, column).data().toString(); };
  EXPECT_EQ(shown(0, 0), "7.00");
  EXPECT_EQ(shown(1, 0), "2.50");
  EXPECT_EQ(shown(2, 0), "");
  EXPECT_EQ(shown(3, 0), "12.25");
  EXPECT_EQ(shown(0, 2), "1");
  QFont bold = grid->font();
  bold.setBold(true);
  EXPECT_GT(grid->columnWidth(1), QFontMetrics(bold).horizontalAdvance("10/28/2008 10:08:08 PM"));
}

TEST_F(DataGridTest, AnEmptyGridShowsThatItHasTheFocus) {
  Open(0);
  field->setFocus();
  test::Settle();
  const QImage without = grid->viewport()->grab().toImage();
  grid->setFocus();
  test::Settle();
  EXPECT_NE(grid->viewport()->grab().toImage(), without);
}

TEST_F(DataGridTest, ShowsFormattedRowsAndLeavesTheRecordsetsPlace) {
  Open(300);
  Change("UPDATE Assets SET Notes = 'two\r\nlines', Cost = NULL WHERE ID = 2");
  rows.Refresh();
  EXPECT_EQ(grid->Row(), 0);
  EXPECT_EQ(grid->CellText(1), "K001");
  EXPECT_EQ(grid->CellText(2), "-$93.50");
  EXPECT_EQ(grid->CellText(3), "02/02/2001");
  EXPECT_EQ(grid->CellText(4), "No");
  QTest::keyClick(grid, Qt::Key_Down);
  EXPECT_EQ(grid->CellText(2), "");
  EXPECT_EQ(grid->CellText(5), "two lines");
  EXPECT_EQ(grid->CellValue(1, "Assets.Notes").AsText(), "two\r\nlines");
  EXPECT_TRUE(grid->CellValue(1, "Nothing").IsNull());
  EXPECT_EQ(rows.Recordset()->Get("Code").AsText(), "K002");  // the recordset follows

  // A caller moves through the rows while the grid goes on painting.
  rows.Recordset()->MoveLast();
  grid->verticalScrollBar()->setValue(100);
  window.grab();
  EXPECT_EQ(rows.Recordset()->Get("Code").AsText(), "K300");
  EXPECT_TRUE(grid->MoveToCurrent());
  EXPECT_EQ(rows.Recordset()->Get("Code").AsText(), "K002");

  QTest::keyClick(grid, Qt::Key_End);
  EXPECT_EQ(grid->Row(), 299);
  EXPECT_EQ(grid->CellText(1), "K300");
  QTest::keyClick(grid, Qt::Key_PageUp);
  EXPECT_LT(grid->Row(), 299 - grid->VisibleRows() / 2);
  rows.Refresh();
  EXPECT_EQ(grid->Row(), 0);
  EXPECT_EQ(grid->verticalScrollBar()->value(), 0);
  QTest::keyClick(grid, Qt::Key_Tab);
  EXPECT_TRUE(field->hasFocus());

  Bind(rows, "SELECT * FROM Assets WHERE ID = -1");
  rows.Refresh();
  EXPECT_EQ(grid->Row(), -1);
  EXPECT_EQ(grid->CellText(0), "");
  EXPECT_EQ(grid->model()->columnCount(), 6);
}

TEST_F(DataGridTest, ReadsOnlyWhatIsSeen) {
  Open(999);
  window.grab();
  // Changes by others to rows that were read appear only after a refresh; the grid reads other rows when they
  // become visible.
  Change("DELETE FROM Assets WHERE ID = 3 OR ID = 700");
  Change("UPDATE Assets SET Code = 'new' WHERE ID = 701");
  window.grab();
  grid->SetRow(2);
  EXPECT_EQ(grid->CellText(1), "K003");
  grid->SetRow(699);
  window.grab();
  EXPECT_EQ(grid->CellText(0), "#Deleted");
  EXPECT_TRUE(grid->CellValue(699, "Code").IsNull());
  QTest::keyClick(grid, Qt::Key_Down);
  EXPECT_EQ(grid->CellText(1), "new");
  EXPECT_EQ(grid->RecordCount(), 999);
  rows.Refresh();
  EXPECT_EQ(grid->RecordCount(), 997);
}

TEST_F(DataGridTest, TellsOnceOfRowsThatCannotBeRead) {
  Open(999);
  window.grab();
  other->DropTable("Assets");
  screen->ExpectPart("Assets", screen::Icon::Critical);
  grid->verticalScrollBar()->setValue(500);
  window.grab();
  test::Settle();
  EXPECT_EQ(grid->RecordCount(), 0);
  window.grab();
  test::Settle();
}

TEST_F(DataGridTest, KeysAndDoubleClicks) {
  Open(50);
  std::string done;
  QTest::keyClick(grid, Qt::Key_Insert);  // nothing happens until the form sets an action
  QTest::keyClick(grid, Qt::Key_Space);
  grid->onAdd = [&] { done += "add "; };
  grid->onDetail = [&] { done += "detail" + grid->CellText(0) + " "; };
  grid->onDelete = [&] { done += "delete" + grid->CellText(0) + " "; };
  QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, Middle(3));
  EXPECT_TRUE(grid->hasFocus());
  QTest::keyClick(grid, Qt::Key_Insert);
  QTest::keyClick(grid, Qt::Key_Delete);
  QTest::keyClick(grid, Qt::Key_Space);
  QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, Middle(5));
  QTest::mouseDClick(grid->viewport(), Qt::RightButton, {}, Middle(5));
  QTest::mouseDClick(grid->horizontalHeader()->viewport(), Qt::LeftButton, {}, {30, 5});
  EXPECT_EQ(done, "add delete4 detail4 detail6 ");

  done.clear();
  rows.RecordSource = "SELECT * FROM Assets WHERE ID < 3";
  rows.Refresh();
  const QPoint below(100, grid->viewport()->height() - 5);
  QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, below);
  EXPECT_EQ(done, "");
  EXPECT_EQ(grid->selectionModel()->selectedRows().size(), 1);  // the current row stays marked
  grid->SetDoubleClickAnywhere(true);
  grid->onDoubleClick = [&] { done += "double "; };
  QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, below);
  grid->SetDoubleClickAnywhere(false);
  rows.RecordSource = "SELECT * FROM Assets WHERE ID = -1";
  rows.Refresh();
  QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, below);
  EXPECT_EQ(done, "double double ");
}

TEST_F(DataGridTest, BoldWithTheFocusAndNothingMoves) {
  Open(50);
  field->setFocus();
  test::Settle();
  EXPECT_FALSE(grid->font().bold());
  const QRect cell = grid->visualRect(grid->model()->index(9, 3));
  grid->setFocus();
  test::Settle();
  EXPECT_TRUE(grid->font().bold());
  EXPECT_FALSE(grid->horizontalHeader()->font().bold());
  EXPECT_EQ(grid->visualRect(grid->model()->index(9, 3)), cell);
  field->setFocus();
  test::Settle();
  EXPECT_FALSE(grid->font().bold());
  // A width that the user chose stays after a refresh.
  grid->horizontalHeader()->resizeSection(1, 222);
  rows.Refresh();
  EXPECT_EQ(grid->columnWidth(1), 222);
}

TEST_F(DataGridTest, HeadingsSortAndKeepTheCurrentRecord) {
  Open(5);
  Change("UPDATE Assets SET Cost = 1 WHERE ID = 4");
  grid->SetRow(2);
  ClickHeading(2);
  EXPECT_EQ(Codes(), "K001 K002 K003 K005 K004");
  EXPECT_EQ(grid->CellText(1), "K003");
  ClickHeading(2);
  EXPECT_EQ(Codes(), "K004 K005 K003 K002 K001");
  EXPECT_TRUE(grid->horizontalHeader()->isSortIndicatorShown());
  EXPECT_EQ(grid->horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
  grid->SetRow(1);
  Change("DELETE FROM Assets WHERE ID = 5");
  ClickHeading(1);
  EXPECT_EQ(Codes(), "K001 K002 K003 K004");
  EXPECT_EQ(grid->Row(), 0);  // another user has deleted that record
  rows.Refresh();
  EXPECT_EQ(grid->horizontalHeader()->sortIndicatorSection(), 1);

  grid->SetRow(3);
  QContextMenuEvent event(QContextMenuEvent::Mouse, Middle(0, 0),
                          grid->viewport()->mapToGlobal(Middle(0, 0)));
  QApplication::sendEvent(grid->viewport(), &event);
  ASSERT_NE(grid->findChild<QMenu*>(), nullptr);
  grid->findChild<QAction*>("mnuDefinedOrder")->trigger();
  EXPECT_FALSE(grid->horizontalHeader()->isSortIndicatorShown());
  EXPECT_EQ(grid->CellText(1), "K004");
}

TEST_F(DataGridTest, TypingFindsARow) {
  Open(500);
  grid->setFocus();
  QTest::keyClicks(grid, "k30");
  EXPECT_EQ(grid->CellText(1), "K300");
  const auto* sought = grid->findChild<QLabel*>("lblSought");
  EXPECT_EQ(sought->text(), "Asset Code: k30");
  EXPECT_FALSE(sought->geometry().intersects(
      grid->visualRect(grid->currentIndex()).translated(grid->viewport()->pos())))
      << "the hint does not cover the row";
  QTest::keyClicks(grid, "x");
  EXPECT_EQ(grid->CellText(1), "K300");
  EXPECT_EQ(grid->findChild<QLabel*>("lblSought")->text(), "Asset Code: k30x - not found");
  QTest::keyClick(grid, Qt::Key_Backspace);
  QTest::keyClicks(grid, "7");
  EXPECT_EQ(grid->CellText(1), "K307");
  ClickHeading(2);
  ClickHeading(2);
  QTest::keyClicks(grid, "$2,");
  EXPECT_EQ(grid->CellText(2), "$2,994.50");  // the first of them in the visible order
  std::string opened;
  grid->onDetail = [&] { opened = grid->CellText(0); };
  QTest::keyClick(grid, Qt::Key_Space);  // opens, even in the middle of typing
  EXPECT_EQ(opened, grid->CellText(0));
  // A row that is not in the list yet is not found.
  Change("INSERT INTO Assets (Code) VALUES ('ZZZ')");
  EXPECT_FALSE(grid->FindText("zzz"));
  rows.RecordSource = "SELECT TOP 20 * FROM Assets ORDER BY Code";
  rows.ClearSort();
  rows.Refresh();
  EXPECT_TRUE(grid->FindText("k01"));
  EXPECT_EQ(grid->CellText(1), "K010");
}

TEST_F(DataGridTest, CopiesAndSavesRows) {
  Open(4);
  Change("UPDATE Assets SET Notes = 'a \"b\",\r\nc' WHERE ID = 3");
  rows.Refresh();
  grid->ShowColumn(4, false);
  grid->setFocus();
  grid->SetRow(1);
  QTest::keyClick(grid, Qt::Key_Down, Qt::ShiftModifier);
  QTest::keyClick(grid, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(),
            "ID\tAsset Code\tCost\tBought\tNotes\n"
            "2\tK002\t-$86.50\t03/03/2002\t\n"
            "3\tK003\t-$79.50\t04/04/2003\ta \"b\", c\n");

  const std::string file = directory.Path("list.csv");
  const auto content = [&] {
    std::stringstream all;
    all << std::ifstream(file, std::ios::binary).rdbuf();
    return all.str();
  };
  grid->setAccessibleName("Assets");
  grid->askFileName = [&](const std::string& suggested) { return suggested == "Assets.csv" ? file : ""; };
  QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, {}, {});
  QApplication::sendEvent(grid->viewport(), &menuKey);
  ASSERT_NE(grid->findChild<QAction*>("mnuSaveCsv"), nullptr);
  grid->findChild<QAction*>("mnuSaveCsv")->trigger();
  EXPECT_EQ(content(),
            "\xEF\xBB\xBFID,Asset Code,Cost,Bought,Notes\r\n"
            "1,K001,-93.5,02/02/2001,\r\n"
            "2,K002,-86.5,03/03/2002,\r\n"
            "3,K003,-79.5,04/04/2003,\"a \"\"b\"\",\r\nc\"\r\n"
            "4,K004,-72.5,05/05/2004,\r\n");
  EXPECT_EQ(grid->CellText(0), "3");
  screen->ExpectPart("could not be saved", screen::Icon::Exclamation);
  EXPECT_FALSE(grid->SaveCsv(directory.Path("no/such/folder.csv")));
  // An earlier file stays if the rows cannot be read any more.
  const std::string before = content();
  Bind(rows, "SELECT * FROM Assets");
  rows.Refresh();
  other->DropTable("Assets");
  screen->ExpectPart("Assets", screen::Icon::Critical);
  grid->SetRow(0);
  EXPECT_FALSE(grid->SaveCsv(file));
  test::Settle();
  EXPECT_EQ(content(), before);
}

TEST_F(DataGridTest, KeepsItsPlaceAroundAChange) {
  Open(300);
  ui::GridPlace place;
  grid->SetRow(150);
  AdoRefreshGrid(*grid, rows, place);
  EXPECT_TRUE(place.armed);
  EXPECT_EQ(place.topRow, 150);
  Change("DELETE FROM Assets WHERE ID = 10");
  grid->SetRow(0);
  AdoRefreshGrid(*grid, rows, place, true);
  EXPECT_TRUE(grid->hasFocus());
  EXPECT_EQ(grid->CellText(1), "K152");
  const int top = grid->verticalScrollBar()->value();
  const int half = grid->VisibleRows() / 2;
  EXPECT_NEAR(top + half, 150, 2);
  place.topRow = 5000;
  AdoRefreshGrid(*grid, rows, place);
  EXPECT_EQ(grid->Row(), 298);
  EXPECT_EQ(place.topRow, 298);
  place.topRow = -1;
  AdoRefreshGrid(*grid, rows, place);
  EXPECT_EQ(grid->Row(), 0);
  Change("DELETE FROM Assets");
  AdoRefreshGrid(*grid, rows, place);
  EXPECT_EQ(grid->Row(), -1);
}

}  // namespace
