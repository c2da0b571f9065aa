// One process of a random walk.
#include <time.h>
#include <unistd.h>

#include <functional>
#include <memory>
#include <random>
#include <stdexcept>

#include "costing/Posting.h"
#include "data/BrackenfelGlobals.h"
#include "data/Compact.h"
#include "data/GenericADO.h"
#include "platform/store/Connection.h"
#include "platform/store/Cursor.h"
#include "support/Apart.h"
#include "support/QuietScreen.h"
#include "support/WalkLog.h"

namespace walk {
namespace {

using store::StoreError;

/// Whether an error says that another user holds the record for now.
bool IsRefusal(int number) {
  return number == store::kEditLocked || number == store::kRecordLocked || number == store::kSaveLocked ||
         number == store::kSessionLocked;
}
bool IsInUse(int number) { return number == store::kFileInUse || number == store::kOpenedExclusively; }

/// Ends a transaction when another user holds one of its records: it is rolled back.
struct Refused {};

class Worker {
 public:
  Worker(std::string directory, int worker, unsigned seed, const Options& options, Shared& shared, Log& log)
      : directory_(std::move(directory)),
        worker_(worker),
        options_(options),
        shared_(shared),
        log_(log),
        random_(seed) {}

  std::string Run() {
    store::SetIdentity("STATION" + std::to_string(worker_), "USER" + std::to_string(worker_));
    screen_ = test::QuietScreen::Install();
    screen_->onBox = [this](const screen::Box& box) {
      if (!IsExpected(box.text)) faults_.Add(At() + "box: " + box.text);
    };
    if (chdir(directory_.c_str()) != 0) throw std::runtime_error("no directory");
    while (!shared_.stop && faults_.Text().empty()) {
      if (shared_.wanted > 0 && Dice(60) != 0) {
        Leave();
        Nap(1 + Dice(8));
        continue;
      }
      if (!file_ && !Enter()) {
        Nap(1 + Dice(5));
        continue;
      }
      if (Dice(40) == 0) {
        Leave();
        continue;
      }
      ++step_;
      Step();
    }
    Leave();
    return faults_.Text();
  }

 private:
  static bool IsExpected(const std::string& text) {
    return text == "Record is currently locked elsewhere." || text.ends_with("Then click OK to continue.") ||
           text.ends_with("Then click OK to continue or click Cancel to quit.") ||
           text.starts_with("This record is apparently being updated elsewhere.") ||
           text.starts_with("Unknown error #3218 during record edit.") ||
           text == "Unable to lock transaction for updating." || text == "Posting is Complete." ||
           text == "Compacting complete." || text == "Cannot compact at this time. Currently in use.";
  }

  int Dice(int sides) { return std::uniform_int_distribution<>(0, sides - 1)(random_); }
  static void Nap(int milliseconds) {
    const timespec nap{0, milliseconds * 1000000L};
    nanosleep(&nap, nullptr);
  }
  std::string At() const {
    return "step " + std::to_string(step_) + " (" + kWorkNames[static_cast<std::size_t>(work_)] + "): ";
  }

  /// A message box that is open for a moment: meanwhile, the file belongs to the others.
  void Wait() {
    store::YieldFiles();
    Nap(Dice(4));
  }
  void PerhapsWait() {
    if (Dice(5) == 0) Wait();
  }

  // --- opening

  std::string DirectoryName() {
    switch (options_.otherPaths ? Dice(4) : 0) {
      case 1:
        return ".";
      case 2:
        return directory_ + "/same";
      case 3:
        return directory_ + "/beside/..";
      default:
        return directory_;
    }
  }
  std::string FileName() {
    if (options_.otherPaths && Dice(4) == 0) return directory_ + "/beside/DW.MDB";
    return DirectoryName() + "/DW.MDB";
  }

  bool Enter() {
    try {
      file_ = store::Connection::Open({FileName()});
    } catch (const StoreError& error) {
      if (!IsInUse(error.Number())) faults_.Add(At() + "open: " + error.what());
      return false;
    }
    rows_ = store::Cursor::OpenTable(file_, "Walk", store::Locking::Pessimistic);
    rows_->SetIndex("PrimaryKey");
    named_ = store::Cursor::OpenTable(file_, "Walk", store::Locking::Pessimistic);
    named_->SetIndex("By Name");
    maintenance_ = store::Cursor::OpenTable(file_, "Maintenance Transactions", store::Locking::Pessimistic);
    maintenance_->SetIndex("PrimaryKey");
    numberField_ = maintenance_->FieldIndex("Work Order Number");
    return true;
  }
  void Leave() {
    rows_.reset();
    named_.reset();
    maintenance_.reset();
    file_.reset();
  }

  // --- one piece of work

  void Step() {
    static constexpr std::pair<Work, int> kShares[] = {
        {Work::Edit, 20},     {Work::EditByAdo, 6},   {Work::Compare, 8},
        {Work::Several, 14},  {Work::Transfer, 10},   {Work::BulkInTransaction, 8},
        {Work::Bulk, 6},      {Work::Add, 8},         {Work::Remove, 6},
        {Work::Group, 8},     {Work::Maintenance, 6}, {Work::Posting, 2},
        {Work::Compaction, 1}};
    int at = Dice(103);
    for (const auto& [work, share] : kShares) {
      work_ = work;
      if ((at -= share) < 0) break;
    }
    current_ = {};
    current_.token = worker_ * kTokensOfWorker + step_;
    current_.work = work_;
    intended_ = false;
    try {
      Do();
    } catch (const Refused&) {
      TakeBack();
    } catch (const StoreError& error) {
      if (!IsRefusal(error.Number())) faults_.Add(At() + std::to_string(error.Number()) + " " + error.what());
      TakeBack();
    } catch (const ado::Error& error) {
      if (!IsRefusal(error.Native())) faults_.Add(At() + error.what());
      TakeBack();
    }
  }
  /// The work has not finished: the file has nothing of it.
  void TakeBack() {
    for (const auto* cursor : {&rows_, &named_, &maintenance_})
      if (*cursor && (*cursor)->Editing()) (*cursor)->CancelUpdate();
    if (file_ && file_->TransactionDepth() > 0) file_->RollbackTrans();
    if (!intended_) log_.Intend(current_);
    log_.Tell(current_.token, End::Refused);
  }
  void Intend() {
    intended_ = true;
    log_.Intend(current_);
  }
  void Acknowledge(std::int64_t row = 0) { log_.Tell(current_.token, End::Acknowledged, row); }

  void Do() {
    switch (work_) {
      case Work::Edit:
        return EditAlone(*rows_, AnyRow());
      case Work::EditByAdo:
        return EditByAdo();
      case Work::Compare:
        return Compare();
      case Work::Several:
        return InTransaction([this] {
          for (int rows = 2 + Dice(3); rows > 0; --rows) Change(AnyRow(), 1 + Dice(9));
        });
      case Work::Transfer:
        return InTransaction([this] {
          constexpr int kRows = RowsIn(kTransfers);
          const int from = Dice(kRows);
          const int to = (from + 1 + Dice(kRows - 1)) % kRows;
          const int amount = 1 + Dice(9);
          Change(FirstRow(kTransfers) + from, -amount);
          PerhapsWait();
          Change(FirstRow(kTransfers) + to, amount);
        });
      case Work::BulkInTransaction:
        return InTransaction([this] { BulkInTransaction(); });
      case Work::Bulk:
        return Bulk();
      case Work::Add:
        return Add();
      case Work::Remove:
        return InTransaction([this] { Remove(); });
      case Work::Group:
        return Group();
      case Work::Maintenance:
        return EditMaintenance();
      case Work::Posting:
        return Post();
      case Work::Compaction:
        return Compact();
      case Work::kCount:
        return;
    }
  }

  /// A fixed row outside the transfers; mostly one of the few that every process uses.
  int FixedRow() {
    if (Dice(4) == 0) return FirstRow(kLarge) + Dice(RowsIn(kLarge));
    return 1 + Dice(FirstRow(kLarge) - 1);
  }
  /// A fixed row, or one of those that come and go.
  std::int64_t AnyRow() {
    if (Dice(4) != 0 || lastAdded_ <= kFixedRows) return FixedRow();
    return kFixedRows + 1 + Dice(static_cast<int>(lastAdded_) - kFixedRows);
  }

  void InTransaction(const std::function<void()>& work) {
    file_->BeginTrans();
    work();
    PerhapsWait();
    if (current_.changes.empty() || Dice(5) == 0) throw Refused();
    Intend();
    file_->CommitTrans();
    Acknowledge();
  }

  // --- single rows

  enum Field { kId, kName, kGroup, kVersion, kToken, kAmount, kNotes };

  /// Begins an edit of the row and changes its fields; 3021 and 3167 mean that another process has deleted
  /// it.
  void Begin(store::Cursor& cursor, std::int64_t row, int amount) {
    cursor.Seek({static_cast<std::int32_t>(row)});
    BeginAtPlace(cursor, row, amount);
  }
  void BeginAtPlace(store::Cursor& cursor, std::int64_t row, int amount) {
    if (cursor.NoMatch()) return Gone(row);
    try {
      cursor.Edit();
    } catch (const StoreError& error) {
      if (error.Number() == store::kRecordDeleted) return Gone(row);
      throw;
    }
    PerhapsWait();
    walk::Change change;
    change.row = row;
    change.version = cursor.Get(kVersion).AsLong();
    change.token = cursor.Get(kToken).AsLong();
    change.amount = amount;
    PerhapsWait();
    cursor.Set(kVersion, static_cast<std::int32_t>(change.version + 1));
    cursor.Set(kToken, static_cast<std::int32_t>(current_.token));
    cursor.Set(kAmount, cursor.Get(kAmount).AsLong() + amount);
    current_.changes.push_back(change);
  }
  void Gone(std::int64_t row) {
    if (row <= kFixedRows) faults_.Add(At() + "row " + std::to_string(row) + " is gone");
    throw Refused();
  }
  void Change(std::int64_t row, int amount) {
    Begin(*rows_, row, amount);
    rows_->Update();
    PerhapsWait();
  }
  void EditAlone(store::Cursor& cursor, std::int64_t row) {
    Begin(cursor, row, 1 + Dice(9));
    Intend();
    cursor.Update();
    Acknowledge();
  }

  /// A window of the other object model: its edit holds the record, alone or in a transaction.
  void EditByAdo() {
    dw::AdoConnectionPtr connection;
    if (!dw::AdoOpenConnection(connection, dw::FileConnect(FileName()), false)) throw Refused();
    const bool transaction = Dice(2) == 0;
    if (transaction) connection->BeginTrans();
    const std::int64_t row = AnyRow();
    ado::Recordset rows;
    rows.Open("SELECT * FROM [Walk] WHERE [ID] = " + std::to_string(row), connection, ado::adOpenKeyset,
              ado::adLockPessimistic);
    if (rows.AtEnd()) return Gone(row);
    const int amount = 1 + Dice(9);
    rows.Set(kToken, static_cast<std::int32_t>(current_.token));  // takes the record
    PerhapsWait();
    walk::Change change;
    change.row = row;
    change.version = rows.Get(kVersion).AsLong();
    change.token = -1;
    change.amount = amount;
    rows.Set(kVersion, static_cast<std::int32_t>(change.version + 1));
    rows.Set(kAmount, rows.Get(kAmount).AsLong() + amount);
    PerhapsWait();
    current_.changes.push_back(change);
    Intend();
    rows.Update();
    if (transaction) {
      PerhapsWait();
      connection->CommitTrans();
    }
    Acknowledge();
  }

  void Compare() {
    const auto sum = store::Cursor::OpenQuery(
        file_, "SELECT SUM([Amount]) FROM [Walk] WHERE [Group] = " + std::to_string(kTransfers),
        store::Locking::ReadOnly);
    if (sum->Get(0).AsLong() != 0) faults_.Add(At() + "a half of a transfer is seen");
    const std::int64_t row = AnyRow();
    walk::Change change;
    change.row = row;
    {
      const auto read = store::Cursor::OpenQuery(
          file_, "SELECT [Version], [Token] FROM [Walk] WHERE [ID] = " + std::to_string(row),
          store::Locking::ReadOnly);
      if (read->AtEnd()) return Gone(row);
      try {
        change.version = read->Get(0).AsLong();
      } catch (const StoreError& error) {
        // Another process has deleted the row since the query found its key.
        if (error.Number() == store::kRecordDeleted) return Gone(row);
        throw;
      }
      change.token = -1;
    }
    change.amount = 1 + Dice(9);
    current_.changes.push_back(change);
    PerhapsWait();
    Intend();
    const std::string sql =
        "UPDATE [Walk] SET [Version] = [Version] + 1, [Token] = " + std::to_string(current_.token) +
        ", [Amount] = [Amount] + " + std::to_string(change.amount) + " WHERE [ID] = " + std::to_string(row) +
        " AND [Version] = " + std::to_string(change.version);
    if (file_->Execute(sql) == 0) throw Refused();
    Acknowledge();
  }

  // --- many rows

  std::string BulkStatement(int group, int amount) const {
    return "UPDATE [Walk] SET [Version] = [Version] + 1, [Token] = " + std::to_string(current_.token) +
           ", [Amount] = [Amount] + " + std::to_string(amount) + " WHERE [Group] = " + std::to_string(group);
  }
  void BulkInTransaction() {
    const int group = 1 + Dice(options_.wholeTables ? kLarge : kLarge - 1);
    const int amount = 1 + Dice(9);
    const std::int64_t changed = file_->Execute(BulkStatement(group, amount));
    if (changed != RowsIn(group))
      faults_.Add(At() + "changed " + std::to_string(changed) + " rows of a group");
    PerhapsWait();
    const auto read = store::Cursor::OpenQuery(
        file_, "SELECT [ID], [Version] FROM [Walk] WHERE [Token] = " + std::to_string(current_.token),
        store::Locking::ReadOnly);
    for (; !read->AtEnd(); read->MoveNext())
      current_.changes.push_back({'C', 'W', read->Get(0).AsLong(), read->Get(1).AsLong() - 1, -1, amount});
    if (static_cast<std::int64_t>(current_.changes.size()) != changed)
      faults_.Add(At() + "reads " + std::to_string(current_.changes.size()) + " of the rows that it changed");
    if (Dice(2) == 0) Change(AnyRow(), 1 + Dice(9));
  }
  void Bulk() {
    current_.group = 1 + Dice(kLarge);
    current_.groupAmount = 1 + Dice(9);
    Intend();
    const std::int64_t changed =
        file_->Execute(BulkStatement(current_.group, static_cast<int>(current_.groupAmount)));
    if (changed != RowsIn(current_.group))
      faults_.Add(At() + "changed " + std::to_string(changed) + " rows of a group");
    Acknowledge();
  }

  // --- rows that come and go

  void Add() {
    const bool transaction = Dice(2) == 0;
    const bool numberFirst = Dice(2) == 0;
    if (transaction) file_->BeginTrans();
    if (transaction && Dice(2) == 0) Change(AnyRow(), 1 + Dice(9));
    walk::Change change;
    change.kind = 'N';
    change.amount = 1 + Dice(9);
    rows_->AddNew();
    if (numberFirst) change.row = rows_->Get(kId).AsLong();
    PerhapsWait();
    rows_->Set(kVersion, 1);
    rows_->Set(kGroup, 0);
    rows_->Set(kToken, static_cast<std::int32_t>(current_.token));
    rows_->Set(kAmount, static_cast<std::int32_t>(change.amount));
    rows_->Set(kNotes, std::string(static_cast<std::size_t>(Dice(3000)), '.'));
    current_.changes.push_back(change);
    if (!transaction) Intend();
    rows_->Update();
    if (transaction) {
      PerhapsWait();
      current_.changes.back().row = rows_->LastModified().at(0);
      CheckNumber(change.row, current_.changes.back().row);
      if (Dice(6) == 0) throw Refused();
      Intend();
      file_->CommitTrans();
    }
    const std::int64_t row = rows_->LastModified().at(0);
    CheckNumber(change.row, row);
    lastAdded_ = row;
    Acknowledge(row);
  }
  void CheckNumber(std::int64_t first, std::int64_t now) {
    if (first != 0 && first != now)
      faults_.Add(At() + "a new row was promised the number " + std::to_string(first) + " and has " +
                  std::to_string(now));
  }
  void Remove() {
    if (lastAdded_ <= kFixedRows) throw Refused();
    const std::int64_t row = kFixedRows + 1 + Dice(static_cast<int>(lastAdded_) - kFixedRows);
    Begin(*rows_, row, 0);
    rows_->CancelUpdate();
    current_.changes.back().kind = 'X';
    PerhapsWait();
    rows_->Delete();
  }

  // --- groups

  /// Several transactions that share a commit, as a posting makes them.
  void Group() {
    std::vector<std::int64_t> tokens;
    const auto tellAll = [&](End end) {
      for (const std::int64_t token : tokens) log_.Tell(token, end);
      tokens.clear();
    };
    file_->EnterGroup();
    try {
      for (int count = 2 + Dice(5); count > 0; --count) {
        current_ = {};
        current_.token = worker_ * kTokensOfWorker + ++step_;
        current_.work = work_;
        intended_ = false;
        const int row = FixedRow();
        file_->BeginTrans();
        named_->Seek({"ROW" + std::to_string(row)});
        BeginAtPlace(*named_, row, 1 + Dice(9));
        named_->Update();
        if (Dice(3) == 0) Change(AnyRow(), 1 + Dice(9));
        if (Dice(6) == 0) throw Refused();
        Intend();
        file_->CommitTrans(store::Commit::WithGroup);
        tokens.push_back(current_.token);
        if (Dice(6) == 0) {
          Wait();
          tellAll(End::Acknowledged);
        }
        if (count > 1) file_->EnterGroup();
      }
    } catch (...) {
      for (auto* cursor : {&rows_, &named_})
        if ((*cursor)->Editing()) (*cursor)->CancelUpdate();
      if (file_->TransactionDepth() > 0) file_->RollbackTrans();
      file_->FinishGroup();
      tellAll(End::Acknowledged);
      throw;
    }
    if (Dice(4) == 0) {
      // A part may be on the disk already.
      file_->AbandonGroup();
      return;
    }
    file_->FinishGroup();
    tellAll(End::Acknowledged);
  }

  // --- what the program itself does

  void EditMaintenance() {
    const std::int64_t row = 1 + Dice(kMaintenanceRows);
    maintenance_->Seek({static_cast<std::int32_t>(row)});
    if (maintenance_->NoMatch()) return Gone(0);
    maintenance_->Edit();
    PerhapsWait();
    walk::Change change;
    change.table = 'M';
    change.row = row;
    const std::string text = maintenance_->Get(numberField_).Shown();
    if (const auto colon = text.find(':'); colon != std::string::npos) {
      change.version = std::stoll(text.substr(0, colon));
      change.token = std::stoll(text.substr(colon + 1));
    }
    maintenance_->Set(numberField_,
                      std::to_string(change.version + 1) + ":" + std::to_string(current_.token));
    current_.changes.push_back(change);
    Intend();
    maintenance_->Update();
    Acknowledge();
  }
  void Post() {
    dw::SetDataPath(DirectoryName());
    if (Dice(2) == 0) Leave();
    Intend();
    dw::RunPosting(Dice(2) == 0, {});
    Acknowledge();
  }
  /// Asks the other processes to close the file, and tries for a while.
  void Compact() {
    Leave();
    dw::SetDataPath(DirectoryName());
    Intend();
    struct Wish {
      Shared& shared;
      explicit Wish(Shared& all) : shared(all) { ++shared.wanted; }
      ~Wish() { --shared.wanted; }
    } wish(shared_);
    for (int tries = 0; tries < 25 && !shared_.stop; ++tries) {
      screen_->TakeTexts();
      dw::CompactDatabase(FileName());
      if (screen_->TakeTexts().find("Compacting complete.") != std::string::npos) return Acknowledge();
      Nap(3 + Dice(10));
    }
    throw Refused();
  }

  std::string directory_;
  int worker_;
  const Options& options_;
  Shared& shared_;
  Log& log_;
  std::mt19937 random_;
  std::shared_ptr<test::QuietScreen> screen_;
  test::Faults faults_;
  std::shared_ptr<store::Connection> file_;
  std::unique_ptr<store::Cursor> rows_, named_, maintenance_;
  int numberField_ = 0;
  std::int64_t step_ = 0;
  std::int64_t lastAdded_ = 0;
  Work work_ = Work::Edit;
  Transaction current_;
  bool intended_ = false;
};

}  // namespace

std::string WorkOn(const std::string& directory, int worker, unsigned seed, const Options& options,
                   Shared& shared, Log& log) {
  return Worker(directory, worker, seed, options, shared, log).Run();
}

}  // namespace walk
