// Opening a long list, compared with merely reading its keys.
#include <cstdio>

#include "bench/Measure.h"
#include "data/BrackenfelGlobals.h"
#include "data/GenericADO.h"

namespace bench {

int Lists(int transactions) {
  Directory directory;
  const int years = 5;
  MakeFleet(directory.Path(), transactions / (30 * years) + 1, years);
  const std::string path = directory.Path("DW.MDB");
  double scan = 1e9;
  std::int64_t rows = 0;
  {
    PlainFile file(path);
    for (int round = 0; round < 5; ++round) {
      scan = std::min(scan, Seconds([&] {
                        sqlite3_stmt* statement = nullptr;
                        sqlite3_prepare_v2(file.Db(), "SELECT ID FROM \"Maintenance Transactions\"", -1,
                                           &statement, nullptr);
                        rows = 0;
                        while (sqlite3_step(statement) == SQLITE_ROW) ++rows;
                        sqlite3_finalize(statement);
                      }));
    }
  }
  Tell("transactions", static_cast<double>(rows), "rows");
  Tell("floor: bare key scan", scan * 1000, "ms");

  double open = 1e9;
  double memory = 0;
  for (int round = 0; round < 5; ++round) {
    const double before = ResidentMegabytes();
    dw::AdoConnectionPtr connection;
    dw::AdoRecordsetPtr list;
    open = std::min(open, Seconds([&] {
                      if (!dw::AdoOpenConnection(connection, dw::DataConnect, false)) return;
                      list = dw::AdoOpenRecordset(
                          connection,
                          "SELECT * FROM [Maintenance Transactions] ORDER BY [Asset ID], [Transaction Date]",
                          ado::adOpenKeyset, ado::adLockOptimistic);
                      for (int i = 0; i < 50; ++i) {
                        for (int field = 0; field < 28; ++field) list->Get(field);
                        list->MoveNext();
                      }
                    }));
    if (!list || list->RecordCount() != rows) return 1;
    memory = std::max(memory, ResidentMegabytes() - before);
    if (round == 4) {
      const double jump = Seconds([&] {
        list->Move(rows / 2);
        for (int i = 0; i < 50; ++i) {
          for (int field = 0; field < 28; ++field) list->Get(field);
          list->MoveNext();
        }
      });
      Tell("50 rows from the middle of the open list", jump * 1000, "ms");
    }
    list->Close();
    connection->Close();
  }
  Tell("list in its order until the first 50 rows are there", open * 1000, "ms");
  Tell("  times the floor", open / scan, "");
  Tell("  memory of the open list", memory, "MB");
  return 0;
}

}  // namespace bench
