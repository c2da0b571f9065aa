#include "costing/Unposting.h"

#include <algorithm>
#include <string>

#include "costing/CostRows.h"
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

void UnpostRow(dao::Recordset& transactions) {
  if (!UnpostTransaction(transactions)) {
    screen::MessageBox("Unable to unpost transaction.", screen::Icon::Critical);
    return;
  }
  std::int16_t error = 0;
  DaoEditRecord(transactions, error);
  if (error != 0) {
    screen::MessageBox("Unable to mark transaction as unposted.", screen::Icon::Critical);
    return;
  }
  MarkUnposted(transactions);
  DaoUpdateRecord(transactions);
  if (transactions.Editing()) transactions.CancelUpdate();
}

}  // namespace

bool UnpostTransaction(dao::Recordset& transaction) {
  MainFile file;
  if (!file.IsOpen()) return false;
  Accumulators accumulators = Accumulators::Open(file.Database());
  const TransactionFields fields(transaction);
  dao::Recordset& asset = file.Read(AssetQuery(transaction.Get(fields.assetID)));
  if (asset.AtEnd()) return false;

  // A row that is missing or that another user holds does not keep the other sums from being changed:
  // whatever was found is committed. If the engine itself fails, closing the workspace rolls the whole
  // subtraction back.
  file.Workspace().BeginTrans();
  const CostFigures figures = fields.Read(transaction, asset.Get("Fuel Type"));
  for (CostTable& table : CostTablesOf(accumulators)) table.Unpost(figures);
  file.Workspace().CommitTrans();
  accumulators.Close();
  return true;
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
  std::int16_t error = 0;
  DaoEditRecord(*transaction, error);
  if (error != 0) {
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
  const int whenPosted = transactions->FieldIndex("When Posted");
  std::int64_t rows = 0;
  if (!transactions->AtEnd()) {
    transactions->MoveLast();
    transactions->MoveFirst();
    rows = transactions->RecordCount();
  }
  for (std::int64_t seen = 1; !transactions->AtEnd(); transactions->MoveNext(), ++seen) {
    const auto posted = GetUnlessDeleted(*transactions, whenPosted);
    if (posted && !posted->IsNull()) UnpostRow(*transactions);
    // Rows that others add meanwhile are walked too, so more rows can be seen than there were at the start.
    if (progress)
      progress(rows == 0 ? 100 : static_cast<int>(std::min<std::int64_t>(seen * 100 / rows, 100)));
  }
}

}  // namespace dw
