// Windows of single records, from the key that opens them until they are painted.
#include <QPushButton>

#include "bench/desktop/Desk.h"
#include "costing/forms/frmTransactionList.h"
#include "costing/forms/frmTransactionMaint.h"
#include "fleet/forms/frmDivisionList.h"
#include "fleet/forms/frmDivisionMaint.h"

namespace bench {
namespace {

constexpr int kYears = 3;
constexpr int kYearlyTransactions = 30;
constexpr int kRounds = 20;

template <class List, class Detail>
void Pair(Desk& desk) {
  const std::string list = List::kName;
  const std::string detail = Detail::kName;
  Tell(list + " opened and painted",
       Best(kRounds,
            [&] {
              desk.CloseAll();
              return desk.UntilPainted(list, [] { ui::The<List>().ShowForm(); });
            }),
       "ms");
  double there = 1e12;
  double back = 1e12;
  for (int round = 0; round < kRounds; ++round) {
    auto& grid = ui::The<List>().Grid();
    there = std::min(there, desk.UntilPainted(detail, [&] { desk.Press(grid, Qt::Key_Space, " "); }));
    back = std::min(back, desk.UntilPainted(list, [] { ui::The<Detail>().cancelButton->click(); }));
    desk.Settle();
  }
  Tell("  Space until " + detail + " is painted", there, "ms");
  Tell("  its Cancel until the list, read anew, is painted", back, "ms");
}

}  // namespace

int DeskDetail(int& argc, char** argv, int transactions) {
  Desk desk(argc, argv, transactions / (kYearlyTransactions * kYears) + 1, kYears);
  {
    PlainFile file(desk.MainFile());
    Tell("transactions",
         static_cast<double>(file.Number("SELECT COUNT(*) FROM \"Maintenance Transactions\"")), "rows");
    Tell("divisions", static_cast<double>(file.Number("SELECT COUNT(*) FROM \"Divisions\"")), "rows");
  }
  Pair<dw::frmDivisionList, dw::frmDivisionMaint>(desk);
  Pair<dw::frmTransactionList, dw::frmTransactionMaint>(desk);
  return 0;
}

}  // namespace bench
