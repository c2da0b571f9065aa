#include "costing/Posting.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "costing/CostRows.h"
#include "costing/PostTransaction.h"
#include "costing/RowGroup.h"
#include "data/Attempt.h"
#include "data/MainFile.h"
#include "platform/runtime/RuntimeError.h"
#include "platform/screen/Screen.h"

namespace dw {
namespace {

constexpr std::pair<const char*, const char*> kClearing[] = {
    {"Clearing Assets Period Costs...", "DELETE * FROM [Assets Period Costs]"},
    {"Clearing Assets Annual Costs...", "DELETE * FROM [Assets Annual Costs]"},
    {"Clearing Assets Lifetime Costs...", "DELETE * FROM [Assets Lifetime Costs]"},
    {"Clearing Fuel Period Costs...", "DELETE * FROM [Fuel Period Costs]"},
    {"Clearing Fuel Annual Costs...", "DELETE * FROM [Fuel Annual Costs]"},
    {"Clearing When Posted...",
     "UPDATE [Maintenance Transactions] SET [When Posted] = Null WHERE [When Posted] IS NOT Null"},
};

void TellStatus(const PostingProgress& progress, const char* text) {
  if (progress.status) progress.status(text);
}

void TellPercent(const PostingProgress& progress, int percent) {
  if (progress.percent) progress.percent(percent);
}

/// The transaction at which an error ended the run, if it can still be read.
std::string PlaceOf(dao::Recordset& transactions) {
  std::string place;
  Try([&] {
    if (transactions.AtEnd()) return;
    const std::string id = transactions.Get("ID").Shown();
    place =
        "\r\rThe run was at transaction " + id + " of asset '" + transactions.Get("Asset ID").Shown() + "'.";
  });
  return place;
}

/// Posts the row unless it is posted already. The row that was read may be out of date, because another run
/// may be at work. Inside the group nobody else can change it, so a second look there decides, and no row is
/// counted twice.
bool PostIfWaiting(TransactionPoster& poster, RowGroup& group, PostingCounts& counts) {
  if (!poster.Waiting()) return false;
  group.Enter();
  return poster.Waiting() && poster.PostTransaction(counts);
}

void PostEachRow(MainFile& file, dao::Recordset& transactions, const Accumulators& accumulators,
                 const PostingProgress& progress, PostingCounts& counts) {
  TransactionPoster poster(file.Workspace(), file.Database(), transactions, accumulators);
  // The result of this query is not used. It is here that a run on an empty table ends with an error.
  file.Read(AssetQuery(transactions.Get("Asset ID")));
  TellPercent(progress, 0);
  std::int64_t rows = 0;
  if (!transactions.AtEnd()) {
    transactions.MoveLast();
    transactions.MoveFirst();
    rows = transactions.RecordCount();
  }
  RowGroup group(file.Workspace());
  while (!transactions.AtEnd()) {
    ++counts.seen;
    if (PostIfWaiting(poster, group, counts)) ++counts.posted;
    // Rows that others add meanwhile are walked too, so the count can exceed the number of rows at the start.
    TellPercent(progress,
                rows == 0 ? 100 : static_cast<int>(std::min<std::int64_t>(counts.seen * 100 / rows, 100)));
    screen::DoEvents();
    transactions.MoveNext();
  }
  group.Finish();
}

/// As PostEachRow; an error names the transaction at which it ended the run.
void PostRows(MainFile& file, dao::Recordset& transactions, const Accumulators& accumulators,
              const PostingProgress& progress, PostingCounts& counts) {
  try {
    PostEachRow(file, transactions, accumulators, progress, counts);
  } catch (const rt::Error& error) {
    throw dao::StoreError(error.Number(), error.what() + PlaceOf(transactions));
  }
}

bool IsLock(int number) {
  return number == store::kSaveLocked || number == store::kSessionLocked || number == store::kEditLocked ||
         number == store::kRecordLocked || number == store::kTableLocked;
}

bool IsCleared(const std::string& table) {
  return table == "Maintenance Transactions" ||
         std::any_of(kCostTables.begin(), kCostTables.end(),
                     [&](const CostTableKind& kind) { return table == kind.table; });
}

/// Who holds which record of the tables that a clearing changes, one line each, ten at most.
std::string HoldersInTheWay(store::Connection& connection) {
  constexpr int kMostLines = 10;
  const auto schema = connection.Tables();
  std::vector<int> cleared;
  for (const store::TableInfo& table : schema->tables)
    if (IsCleared(table.name)) cleared.push_back(table.number);
  std::string lines;
  int count = 0;
  for (const store::HeldRecord& held : connection.Holds().HeldByOthers(cleared)) {
    const auto table = std::find_if(schema->tables.begin(), schema->tables.end(),
                                    [&](const store::TableInfo& info) { return info.number == held.table; });
    if (table == schema->tables.end()) continue;
    if (++count > kMostLines) return lines + "...\r";
    lines += table->name + (held.row == 0 ? ", all records" : ", record " + std::to_string(held.row)) +
             ": user '" + held.holder.user + "' on machine '" + held.holder.computer + "'\r";
  }
  return lines;
}

/// The statements run one after the other, outside any transaction. They share one physical commit: a run
/// that dies among them cannot leave posted rows beside empty cost tables, and if a statement is refused
/// because somebody holds a transaction, nothing has been cleared.
void ClearCosts(MainFile& file, const PostingProgress& progress) {
  file.Workspace().EnterGroup();
  try {
    for (const auto& [text, statement] : kClearing) {
      TellStatus(progress, text);
      file.Database().Execute(statement);
    }
    file.Workspace().FinishGroup();
  } catch (const dao::StoreError& error) {
    file.Workspace().AbandonGroup();
    if (!IsLock(error.Number())) throw;
    throw ClearingRefused(error.Number(), std::string(error.what()) + "\r\r" +
                                              HoldersInTheWay(file.Database().Connection()) +
                                              "\rNothing has been cleared or posted.");
  } catch (...) {
    file.Workspace().AbandonGroup();
    throw;
  }
}

PostingCounts Run(bool clearFirst, const PostingProgress& progress) {
  const screen::Hourglass hourglass;
  PostingCounts counts;
  MainFile file;
  if (!file.IsOpen()) return counts;
  if (clearFirst) ClearCosts(file, progress);
  TellStatus(progress, "Posting. Please stand by...");
  DaoRecordsetPtr transactions =
      file.Database().OpenRecordset("Maintenance Transactions", dao::RecordsetType::Table);
  transactions->SetIndex("PrimaryKey");
  Accumulators accumulators = Accumulators::Open(file.Database());
  PostRows(file, *transactions, accumulators, progress, counts);
  TellPercent(progress, 100);
  screen::DoEvents();
  screen::MessageBox("Posting is Complete.", screen::Icon::Information);
  accumulators.Close();
  CloseObject(transactions);
  return counts;
}

}  // namespace

PostingCounts RunPosting(bool clearFirst, const PostingProgress& progress) {
  try {
    return Run(clearFirst, progress);
  } catch (const rt::RuntimeError& error) {
    throw dao::StoreError(error.Number(), error.what());
  }
}

}  // namespace dw
