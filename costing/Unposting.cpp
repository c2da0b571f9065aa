#include "costing/Unposting.h"

#include <algorithm>
#include <string>
#include <vector>

#include "costing/CostRows.h"
#include "costing/RowGroup.h"
#include "data/BrackenfelGlobals.h"
#include "data/MainFile.h"
#include "platform/runtime/Clock.h"
#include "platform/screen/Screen.h"

namespace dw {
namespace {

void MarkUnposted(dao::Recordset& transaction) {
  transaction.Set("When Posted", rt::Null{});
  transaction.Set("Last Updated", rt::Now());
  transaction.Set("Updated By", CurrentUserName);
}

/// Subtracts transactions of one recordset, each in an engine transaction of its own.
class Subtraction {
 public:
  Subtraction(MainFile& file, dao::Recordset& transactions, dao::Commit how)
      : workspace_(file.Workspace()),
        transactions_(transactions),
        how_(how),
        fields_(transactions),
        tables_(CostTablesOf(Accumulators::Open(file.Database()))),
        fuelTypes_(file.Database()) {}

  /// See UnpostTransaction; the recordset's current row.
  bool Subtract() {
    const auto fuelType = fuelTypes_.Of(transactions_.Get(fields_.assetID));
    if (!fuelType) return false;
    // A row that is missing or that another user holds does not keep the other sums from being changed:
    // whatever was found is committed. If the engine itself fails, the whole subtraction is rolled back.
    RowTransaction subtraction(workspace_, how_);
    const CostFigures figures = fields_.Read(transactions_, *fuelType);
    for (CostTable& table : tables_) table.Unpost(figures);
    subtraction.Commit();
    return true;
  }

  bool Posted() const {
    const auto posted = GetUnlessDeleted(transactions_, fields_.whenPosted);
    return posted && !posted->IsNull();
  }

 private:
  dao::Workspace& workspace_;
  dao::Recordset& transactions_;
  dao::Commit how_;
  TransactionFields fields_;
  std::vector<CostTable> tables_;
  AssetFuelTypes fuelTypes_;
};

/// The transaction of the cost rows is settled before the row is asked for, so a row that another user holds
/// keeps its mark although its figures are out. Where nothing has to be waited for, both steps go to the disk
/// in the same commit.
void UnpostRow(dao::Workspace& workspace, dao::Recordset& transactions, Subtraction& subtraction) {
  if (!subtraction.Subtract()) {
    screen::MessageBox("Unable to unpost transaction.", screen::Icon::Critical);
    return;
  }
  RowTransaction marking(workspace, dao::Commit::WithGroup);
  const bool held = DaoEditRecord(transactions) == 0;
  if (held) {
    MarkUnposted(transactions);
    DaoUpdateRecord(transactions);
    if (transactions.Editing()) transactions.CancelUpdate();
  }
  marking.Commit();
  if (held) return;
  RequireDataFile();
  screen::MessageBox("Unable to mark transaction as unposted.", screen::Icon::Critical);
}

}  // namespace

bool UnpostTransaction(dao::Recordset& transaction) {
  MainFile file;
  if (!file.IsOpen()) return false;
  return Subtraction(file, transaction, dao::Commit::Now).Subtract();
}

bool UnpostHeldTransaction(const DaoRecordsetPtr& transaction, const std::function<void()>& beforeUpdate) {
  const bool subtracted = UnpostTransaction(*transaction);
  const screen::Hourglass hourglass;
  if (!subtracted) {
    screen::MessageBox("Unable to unpost transaction.", screen::Icon::Critical);
    return false;
  }
  MarkUnposted(*transaction);
  if (beforeUpdate) beforeUpdate();
  const std::int32_t id = transaction->Get("ID").AsLong();
  DaoUpdateRecord(*transaction);
  if (transaction->Editing()) return false;
  transaction->FindFirst("[ID]=" + std::to_string(id));
  if (DaoEditRecord(*transaction) != 0) {
    screen::MessageBox("Unable to retrieve transaction after unposting.", screen::Icon::Critical);
    return false;
  }
  return true;
}

void UnpostAll(const std::function<void(int percent)>& progress) {
  MainFile file;
  if (!file.IsOpen()) return;
  const DaoRecordsetPtr transactions =
      file.Database().OpenRecordset("Maintenance Transactions", dao::RecordsetType::Table);
  std::int64_t rows = 0;
  if (!transactions->AtEnd()) {
    transactions->MoveLast();
    transactions->MoveFirst();
    rows = transactions->RecordCount();
  }
  Subtraction subtraction(file, *transactions, dao::Commit::WithGroup);
  RowGroup group(file.Workspace());
  for (std::int64_t seen = 1; !transactions->AtEnd(); transactions->MoveNext(), ++seen) {
    if (subtraction.Posted()) {
      // The row may have been read before somebody else unposted it. Inside the group nobody else can change
      // it, so a second look there decides.
      group.Enter();
      if (subtraction.Posted()) UnpostRow(file.Workspace(), *transactions, subtraction);
    }
    // Rows that others add meanwhile are walked too, so more rows can be seen than there were at the start.
    if (progress)
      progress(rows == 0 ? 100 : static_cast<int>(std::min<std::int64_t>(seen * 100 / rows, 100)));
  }
  group.Finish();
}

}  // namespace dw
