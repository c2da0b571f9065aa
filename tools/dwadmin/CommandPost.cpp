// Commands that change data: post, unpost and compact.
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "costing/Posting.h"
#include "costing/Unposting.h"
#include "data/Catalogue.h"
#include "data/Compact.h"
#include "data/GenericDAO.h"
#include "data/MainFile.h"
#include "platform/store/Engine.h"
#include "tools/dwadmin/Commands.h"

namespace dw {
namespace {

/// Ends an edit that is still open, so that the record is released.
class EndOfEdit {
 public:
  explicit EndOfEdit(dao::Recordset& recordset) : recordset_(recordset) {}
  ~EndOfEdit() {
    try {
      if (recordset_.Editing()) recordset_.CancelUpdate();
    } catch (const std::exception&) {
      // Closing the file releases the record as well.
    }
  }
  EndOfEdit(const EndOfEdit&) = delete;
  EndOfEdit& operator=(const EndOfEdit&) = delete;

 private:
  dao::Recordset& recordset_;
};

/// Who holds a transaction, by its number; only holds of others.
std::map<std::int64_t, std::string> HoldersOfTransactions(store::Connection& connection) {
  const auto schema = connection.Tables();
  const store::TableInfo* transactions = schema->Find("Maintenance Transactions");
  std::map<std::int64_t, std::string> holders;
  if (!transactions) return holders;
  for (const store::HeldRecord& held : connection.Holds().HeldByOthers({transactions->number}))
    holders[held.row] = "user '" + held.holder.user + "' on machine '" + held.holder.computer + "'";
  return holders;
}

/// The unposted transactions, by the reason why.
std::map<std::string, std::vector<std::int32_t>> Unposted() {
  MainFile file;
  std::map<std::string, std::vector<std::int32_t>> unposted;
  if (!file.IsOpen()) return unposted;
  const auto holders = HoldersOfTransactions(file.Database().Connection());
  const auto rows = file.Database().OpenRecordset(
      "SELECT [Maintenance Transactions].[ID] AS Number, [Maintenance Transactions].[Asset ID] AS Code, "
      "[Vehicles].[ID] AS Asset FROM [Maintenance Transactions] LEFT JOIN [Vehicles] ON "
      "[Maintenance Transactions].[Asset ID] = [Vehicles].[Asset ID] "
      "WHERE [Maintenance Transactions].[When Posted] IS NULL ORDER BY [Maintenance Transactions].[ID]",
      dao::RecordsetType::Snapshot, dao::Access::ReadOnly);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const std::int32_t id = rows->Get("Number").AsLong();
    const std::string code = rows->Get("Code").Shown();
    const auto holder = holders.find(id);
    std::string reason = "it was added or changed during the run, or a message above says why";
    if (code.empty()) {
      reason = "no asset is named";
    } else if (rows->Get("Asset").IsNull()) {
      reason = "asset '" + code + "' is not on file";
    } else if (holder != holders.end()) {
      reason = "held by " + holder->second;
    }
    std::vector<std::int32_t>& numbers = unposted[reason];
    if (numbers.empty() || numbers.back() != id) numbers.push_back(id);
  }
  return unposted;
}

/// Names the transactions that stay unposted, one line for each reason. False if there are none.
bool TellUnposted() {
  const auto unposted = Unposted();
  for (const auto& [reason, numbers] : unposted) {
    std::cerr << "Not posted (" << reason << "): " << (numbers.size() == 1 ? "transaction" : "transactions");
    for (std::size_t i = 0; i < numbers.size(); ++i) std::cerr << (i == 0 ? " " : ", ") << numbers[i];
    std::cerr << ".\n";
  }
  return !unposted.empty();
}

}  // namespace

int Post(const SignOnRequest& signOn, const CommandScreen& screen, bool clearFirst) {
  RequireFile("DW.MDB");
  const Session session(signOn);
  Progress progress;
  PostingProgress told;
  told.status = [&](const std::string& text) {
    StopIfAsked();
    progress.Stage(text);
  };
  // Checked between two transactions: everything posted so far is complete.
  told.percent = [&](int percent) {
    StopIfAsked();
    progress.Percent(percent);
  };
  const PostingCounts counts = RunPosting(clearFirst, told);
  std::cout << counts.seen << " transactions seen, " << counts.posted << " posted; " << counts.added
            << " cost rows added, " << counts.changed << " changed.\n";
  return TellUnposted() ? kRowsLeft : screen.Complaints() > 0 ? 1 : 0;
}

int Unpost(const SignOnRequest& signOn, const CommandScreen& screen, std::int32_t transaction) {
  RequireFile("DW.MDB");
  const Session session(signOn);
  const std::string number = std::to_string(transaction);
  const std::string query = "SELECT * FROM [Maintenance Transactions] WHERE [ID] = " + number;
  {
    MainFile file;
    if (!file.IsOpen()) return 1;
    const DaoRecordsetPtr row = file.Database().OpenRecordset(query);
    if (row->AtEnd()) throw NotDone("There is no transaction " + number + ".");
    if (DaoGetRecord(*row) != 0) return 1;
    const EndOfEdit end(*row);
    if (row->Get("When Posted").IsNull()) throw NotDone("Transaction " + number + " is not posted.");
    UnpostHeldTransaction(row);
  }
  // The messages have said what failed; only the file shows what has become of the transaction.
  MainFile file;
  if (!file.IsOpen()) return 1;
  dao::Recordset& row = file.Read(query);
  if (row.AtEnd() || !row.Get("When Posted").IsNull())
    throw NotDone("Transaction " + number + " is still posted." +
                  (screen.Complaints() > 0 ? " `check` says whether its sums have changed." : ""));
  std::cout << "Transaction " << number << " is unposted"
            << (screen.Complaints() > 0 ? ", but not all of its sums were changed: see `check`.\n" : ".\n");
  return screen.Complaints() > 0 ? 1 : 0;
}

int Compact(const SignOnRequest& signOn, const CommandScreen& screen) {
  for (const char* file : kDataFiles) RequireFile(file);
  const Session session(signOn);
  CompleteMainFile();
  int result = 0;
  for (const char* file : kDataFiles) {
    StopIfAsked();
    const std::string path = RequireFile(file);
    std::cerr << "Compacting " << file << "..." << std::endl;
    const auto before = store::Engine::Of(path).Bytes(path);
    CompactDatabase(path);
    if (screen.LastText() == "Compacting complete.") {
      std::cout << file << ": " << before << " bytes before, " << store::Engine::Of(path).Bytes(path)
                << " bytes now.\n";
    } else {
      std::cout << file << ": not compacted.\n";
      result = 1;
    }
  }
  return result;
}

}  // namespace dw
