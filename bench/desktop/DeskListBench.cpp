// The list of all transactions on the screen: opened, paged through, sorted, searched.
#include <QHeaderView>
#include <QPushButton>
#include <QScrollBar>
#include <algorithm>
#include <stdexcept>
#include <string>

#include "bench/desktop/Desk.h"
#include "costing/forms/frmTransactionList.h"
#include "costing/forms/frmTransactionMaint.h"
#include "fleet/forms/frmDivisionList.h"

namespace bench {
namespace {

constexpr int kYears = 5;
constexpr int kYearlyTransactions = 30;
constexpr int kPages = 200;
constexpr int kRounds = 5;
constexpr int kAssetColumn = 1;
const std::string kList = dw::frmTransactionList::kName;

/// The shortest time that a query takes to its last row, in milliseconds.
double Stepped(PlainFile& file, const std::string& sql) {
  return Best(kRounds, [&] {
    return Seconds([&] {
             sqlite3_stmt* statement = nullptr;
             if (sqlite3_prepare_v2(file.Db(), sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
               throw std::runtime_error(sqlite3_errmsg(file.Db()));
             while (sqlite3_step(statement) == SQLITE_ROW) {
             }
             sqlite3_finalize(statement);
           }) *
           1000;
  });
}

class ListOnScreen {
 public:
  ListOnScreen(int& argc, char** argv, int transactions)
      : desk_(argc, argv, transactions / (kYearlyTransactions * kYears) + 1, kYears),
        file_(desk_.MainFile()) {
    rows_ = file_.Number("SELECT COUNT(*) FROM \"Maintenance Transactions\"");
    Tell("transactions", static_cast<double>(rows_), "rows");
  }

  void Open() {
    Tell("floor: keys in the list's order",
         Stepped(file_,
                 "SELECT ID FROM \"Maintenance Transactions\" ORDER BY \"Asset ID\", \"Transaction Date\""),
         "ms");
    // Fonts, style and the code itself are in memory once a list has been shown.
    desk_.UntilPainted(dw::frmDivisionList::kName, [] { ui::The<dw::frmDivisionList>().ShowForm(); });
    desk_.CloseAll();
    TrimMemory();
    before_ = ResidentMegabytes();
    ForgetPeak();
    const auto open = [&] {
      desk_.CloseAll();
      return desk_.UntilPainted(kList, [] { ui::The<dw::frmTransactionList>().ShowForm(); });
    };
    const double first = open();
    Tell("list opened and painted, the first time", first, "ms");
    TrimMemory();
    Tell("  memory of the open list", ResidentMegabytes() - before_, "MB");
    Tell("list opened and painted", Best(kRounds, open), "ms");
    if (Grid().RecordCount() != rows_) throw std::runtime_error("the list has not all rows");
  }

  void Page() {
    const int onPage = Grid().VisibleRows();
    Tell("rows on a page", onPage, "rows");
    PageFloor(onPage);
    const double painting =
        Best(kRounds * 4, [&] { return Seconds([&] { Grid().viewport()->repaint(); }) * 1000; });
    Tell("  a page painted again, without any reading", painting, "ms");
    double longest = 0;
    double all = 0;
    for (int page = 0; page < kPages; ++page) {
      const double one = Keyed(Qt::Key_PageDown);
      longest = std::max(longest, one);
      all += one;
    }
    if (Grid().Row() < kPages * (onPage - 2)) throw std::runtime_error("the list has not moved on");
    Tell("200 pages down, painted: each", all / kPages, "ms");
    Tell("  the longest", longest, "ms");
    Tell("End, painted",
         Best(kRounds,
              [&] {
                Keyed(Qt::Key_Home);
                return Keyed(Qt::Key_End);
              }),
         "ms");
    if (Grid().Row() != rows_ - 1) throw std::runtime_error("the list is not at its end");
    int place = 0;
    Tell("scroll bar drawn elsewhere, painted",
         Best(kRounds * 2,
              [&] {
                place += static_cast<int>(rows_) / (kRounds * 2 + 1);
                return desk_.UntilPainted(kList, [&] { Grid().verticalScrollBar()->setValue(place); });
              }),
         "ms");
  }

  void Find() {
    Grid().SetRow(static_cast<int>(rows_ - rows_ / 10));
    const std::string code = Grid().CellText(kAssetColumn);
    Tell("floor: first row of an asset near the end",
         Stepped(file_, "SELECT ID FROM \"Maintenance Transactions\" WHERE \"Asset ID\" = '" + code +
                            "' ORDER BY \"Asset ID\", \"Transaction Date\" LIMIT 8"),
         "ms");
    ToTop();
    Type("asset " + code + " typed: each key, painted", code);
    if (Grid().CellText(kAssetColumn) != code) throw std::runtime_error(code + " was not found");
  }

  void Sort(const std::string& heading) {
    int column = 0;
    while (column < Grid().model()->columnCount() &&
           Grid().model()->headerData(column, Qt::Horizontal).toString().toStdString() != heading)
      ++column;
    Tell("floor: keys by " + heading,
         Stepped(file_, "SELECT ID FROM \"Maintenance Transactions\" ORDER BY \"" + heading + "\""), "ms");
    Grid().UseDefinedOrder();
    ToTop();
    Tell("heading clicked, " + heading + ", painted",
         Best(2,
              [&] {
                return desk_.UntilPainted(kList, [&] { Grid().horizontalHeader()->sectionClicked(column); });
              }),
         "ms");
    if (!Grid().DataSource()->Sorted()) throw std::runtime_error("the list was not sorted");
    ToTop();
  }

  void Type(const std::string& name, const std::string& text) {
    double all = 0;
    double longest = 0;
    for (const char c : text) {
      const double one = desk_.UntilPainted(kList, [&] { desk_.Press(Grid(), c, std::string(1, c)); });
      longest = std::max(longest, one);
      all += one;
    }
    if (Grid().Sought().toStdString() != text)
      throw std::runtime_error("not all of " + text + " was looked for");
    Tell(name, all / static_cast<double>(text.size()), "ms");
    Tell("  the longest", longest, "ms");
  }

  void Memory() {
    TrimMemory();
    Tell("memory of the list after all this", ResidentMegabytes() - before_, "MB");
    Tell("  most memory meanwhile", PeakMegabytes() - before_, "MB");
  }

  void ThereAndBack() {
    Grid().UseDefinedOrder();
    double there = 1e12;
    double back = 1e12;
    for (int round = 0; round < kRounds; ++round) {
      Grid().SetRow(static_cast<int>(rows_ / 2));
      there = std::min(there, desk_.UntilPainted(dw::frmTransactionMaint::kName,
                                                 [&] { desk_.Press(Grid(), Qt::Key_Space, " "); }));
      back = std::min(
          back, desk_.UntilPainted(kList, [] { ui::The<dw::frmTransactionMaint>().cancelButton->click(); }));
      desk_.Settle();
    }
    Tell("Space until the transaction's window is painted", there, "ms");
    Tell("its Cancel until the list, read anew, is painted", back, "ms");
  }

 private:
  static ui::DataGrid& Grid() { return ui::The<dw::frmTransactionList>().Grid(); }

  void ToTop() {
    Grid().SetRow(0);
    desk_.Settle();
  }

  double Keyed(int key) {
    return desk_.UntilPainted(kList, [&] { desk_.Press(Grid(), key); });
  }

  /// All fields of the rows of a page by their keys: the least that any list has to read.
  void PageFloor(int rows) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(file_.Db(), "SELECT * FROM \"Maintenance Transactions\" WHERE ID = ?", -1, &statement,
                       nullptr);
    int at = 1;
    Tell("floor: all fields of a page of rows by their keys",
         Best(kPages,
              [&] {
                return Seconds([&] {
                         for (const int end = at + rows; at < end; ++at) {
                           sqlite3_bind_int(statement, 1, at);
                           if (sqlite3_step(statement) == SQLITE_ROW)
                             for (int i = 0; i < sqlite3_column_count(statement); ++i)
                               sqlite3_column_text(statement, i);
                           sqlite3_reset(statement);
                         }
                       }) *
                       1000;
              }),
         "ms");
    sqlite3_finalize(statement);
  }

  Desk desk_;
  PlainFile file_;
  std::int64_t rows_ = 0;
  double before_ = 0;  ///< memory in use before the list was opened, in MB
};

}  // namespace

int DeskList(int& argc, char** argv, int transactions) {
  ListOnScreen list(argc, argv, transactions);
  list.Open();
  list.Page();
  list.Find();
  list.ThereAndBack();
  list.Sort("Total Outside Cost");
  list.Sort("Transaction Date");
  list.Type("date 3/15 typed: each key, painted", "3/15");
  list.Memory();
  return 0;
}

}  // namespace bench
