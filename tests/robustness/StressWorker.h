// A user of the stress test, who does everything at once that users do to a data file.
#pragma once

#include <algorithm>
#include <atomic>
#include <map>
#include <random>
#include <stdexcept>
#include <string>

#include "data/BrackenfelGlobals.h"
#include "data/GenericADO.h"
#include "data/GenericDAO.h"
#include "robustness/StressLog.h"
#include "support/Apart.h"
#include "support/QuietScreen.h"

namespace stress {

constexpr int kCounters = 5;
constexpr int kGroups = 3;
constexpr int kGroupSize = 3;

/// Makes the tables: Counters and Groups, filled with zeros, and an empty Things.
inline void MakeFile(const std::string& path) {
  const auto workspace = dao::DBEngine::CreateWorkspace("Stress", "admin", "");
  const auto database = dao::DBEngine::CreateDatabase(*workspace, path);
  const auto make = [&](const char* name, std::initializer_list<dao::Field> fields) {
    dao::TableDef table(name);
    table.AppendField({.name = "ID", .type = dao::dbLong, .attributes = dao::dbAutoIncrField});
    for (const dao::Field& field : fields) table.AppendField(field);
    database->AppendTable(table);
  };
  make("Counters", {{.name = "Count", .type = dao::dbLong}});
  make("Groups", {{.name = "Group", .type = dao::dbLong}, {.name = "Count", .type = dao::dbLong}});
  make("Things", {{.name = "Owner", .type = dao::dbLong},
                  {.name = "Number", .type = dao::dbLong},
                  {.name = "Text", .type = dao::dbMemo}});
  for (int i = 0; i < kCounters; ++i) database->Execute("INSERT INTO [Counters] ([Count]) VALUES (0)");
  for (int i = 0; i < kGroups * kGroupSize; ++i)
    database->Execute("INSERT INTO [Groups] ([Group], [Count]) VALUES (" +
                      std::to_string(i / kGroupSize + 1) + ", 0)");
  workspace->Close();
}

/// The text in a row of Things, of a length that makes rows spill over pages now and then.
inline std::string TextOf(std::int64_t owner, std::int64_t number) {
  return std::to_string(owner) + ":" + std::to_string(number) +
         std::string(static_cast<std::size_t>(number * 37 % 6000), '.');
}

class Worker {
 public:
  Worker(std::string path, std::int32_t owner, const Log& log)
      : path_(std::move(path)), owner_(owner), log_(log), random_(static_cast<unsigned>(owner)) {}

  /// Works until `stop`; the faults that it met.
  std::string Run(const std::atomic<bool>& stop) {
    store::SetIdentity("STATION" + std::to_string(owner_), "USER" + std::to_string(owner_));
    user_ = test::QuietScreen::Install();
    user_->onBox = [this](const screen::Box& box) {
      if (!IsAboutALock(box.text)) faults_.Add("box: " + box.text);
    };
    Enter();
    while (!stop && faults_.Text().empty()) Step();
    Leave();
    return faults_.Text();
  }

 private:
  static bool IsAboutALock(const std::string& text) {
    return text == "Record is currently locked elsewhere." || text.ends_with("Then click OK to continue.") ||
           text.ends_with("Then click OK to continue or click Cancel to quit.") ||
           text.starts_with("This record is apparently being updated elsewhere.");
  }

  void Enter() {
    int error = 0;
    if (!dw::DaoOpenDatabase(path_, false, "admin", "", workspace_, database_, error) ||
        !dw::AdoOpenConnection(connection_, dw::FileConnect(path_), false))
      throw std::runtime_error("the file cannot be opened");
    things_ = database_->OpenRecordset("Things", dao::RecordsetType::Table);
    things_->SetIndex("PrimaryKey");
    counters_ = database_->OpenRecordset("Counters", dao::RecordsetType::Table);
    counters_->SetIndex("PrimaryKey");
    groups_ = database_->OpenRecordset("Groups", dao::RecordsetType::Table);
    groups_->SetIndex("PrimaryKey");
  }
  void Leave() {
    things_.reset();
    counters_.reset();
    groups_.reset();
    dw::CloseAll(noRows_, database_, workspace_);
    dw::CloseObject(connection_);
  }

  int Dice(int sides) { return std::uniform_int_distribution<>(0, sides - 1)(random_); }

  void Step() {
    switch (Dice(16)) {
      case 0:
      case 1:
      case 2:
        return IncrementThroughDao();
      case 3:
        return IncrementThroughAdo();
      case 4:
        return IncrementByStatement();
      case 5:
      case 6:
        return AddThroughDao();
      case 7:
        return AddThroughAdo();
      case 8:
      case 9:
        return EditOwn();
      case 10:
        return DeleteOwn();
      case 11:
        if (Dice(20) == 0) DeleteBelow();
        return;
      case 12:
      case 13:
        return ChangeTogether();
      case 14:
        return CheckGroups();
      default:
        if (Dice(10) != 0) return;
        Leave();
        return Enter();
    }
  }

  void IncrementThroughDao() {
    const std::int32_t counter = 1 + Dice(kCounters);
    counters_->Seek({counter});
    int error = 0;
    dw::DaoGetRecord(*counters_, error);
    if (error == store::kEditLocked || error == store::kRecordLocked) return;
    if (error != 0) return faults_.Add("edit of a counter: " + std::to_string(error));
    log_.Write(Event::Increment, counter);
    counters_->Set("Count", counters_->Get("Count").AsLong() + 1);
    dw::DaoUpdateRecord(*counters_);
    End(!counters_->Editing());
  }

  void IncrementThroughAdo() {
    const std::int32_t counter = 1 + Dice(kCounters);
    const auto rows =
        dw::AdoOpenRecordset(connection_, "SELECT * FROM [Counters] WHERE [ID] = " + std::to_string(counter),
                             ado::adOpenKeyset, ado::adLockPessimistic);
    // The probe takes the record; only from then on is the count one that nobody else can change.
    const int probe = dw::AdoTestRecordLock(ado::Field(*rows, rows->FieldIndex("ID")), true);
    if (probe == 2) faults_.Add("the probe failed");
    if (probe != 0) return;
    log_.Write(Event::Increment, counter);
    rows->Set("Count", rows->Get("Count").AsLong() + 1);
    End(dw::AdoUpdateRS(*rows, true, true));
  }

  void IncrementByStatement() {
    const std::int32_t counter = 1 + Dice(kCounters);
    log_.Write(Event::Increment, counter);
    End(ExecuteUnlessHeld("UPDATE [Counters] SET [Count] = [Count] + 1 WHERE [ID] = " +
                          std::to_string(counter)) == 1);
  }

  /// The number of records, 0 where a held one refused the statement.
  std::int64_t ExecuteUnlessHeld(const std::string& sql) {
    try {
      return database_->Execute(sql);
    } catch (const dao::StoreError& error) {
      if (error.Number() != store::kRecordLocked && error.Number() != store::kSessionLocked)
        faults_.Add(std::string("statement: ") + error.what());
      return 0;
    }
  }

  void AddThroughDao() {
    const std::int32_t number = ++lastNumber_;
    log_.Write(Event::Add, number);
    dw::DaoAddRecord(*things_);
    // Some windows ask for the number of the new row before it is stored.
    const bool askFirst = Dice(2) == 0;
    std::int32_t id = askFirst ? things_->Get("ID").AsLong() : 0;
    FillThing(number);
    dw::DaoUpdateRecord(*things_);
    if (things_->Editing()) return End(false);
    things_->SetBookmark(things_->LastModified());
    if (askFirst) faults_.Equal(things_->Get("ID").AsLong(), id, "the number of a new row");
    Added(things_->Get("ID").AsLong(), number);
  }

  void FillThing(std::int32_t number) {
    things_->Set("Owner", owner_);
    things_->Set("Number", number);
    things_->Set("Text", TextOf(owner_, number));
  }

  void Added(std::int32_t id, std::int32_t number) {
    own_[id] = number;
    log_.Write(Event::Done, id);
  }

  void AddThroughAdo() {
    const std::int32_t number = ++lastNumber_;
    const auto rows = dw::AdoOpenRecordset(connection_, "SELECT * FROM [Things] WHERE [ID] = 0",
                                           ado::adOpenKeyset, ado::adLockOptimistic);
    log_.Write(Event::Add, number);
    if (!dw::AdoAutoAddRS(*rows)) return End(false);
    rows->Set("Owner", owner_);
    rows->Set("Number", number);
    rows->Set("Text", TextOf(owner_, number));
    if (!dw::AdoUpdateRS(*rows, true, true)) return End(false);
    Added(rows->Get("ID").AsLong(), number);
  }

  /// The place of one of the own rows in `things_`; false where there is none.
  bool FindOwn(std::int32_t& id) {
    if (own_.empty()) return false;
    auto row = own_.lower_bound(1 + Dice(own_.rbegin()->first));
    id = row->first;
    things_->Seek({id});
    if (things_->NoMatch()) {
      faults_.Add("own row " + std::to_string(id) + " is not there");
      return false;
    }
    faults_.Equal(things_->Get("Number").AsLong(), row->second, "number in own row " + std::to_string(id));
    return true;
  }

  void EditOwn() {
    std::int32_t id = 0;
    if (!FindOwn(id)) return;
    int error = 0;
    dw::DaoGetRecord(*things_, error);
    // Other people's statements hold the whole table for a moment; nobody else has an own row for longer.
    if (error != 0) return;
    const std::int32_t number = ++lastNumber_;
    log_.Write(Event::Edit, id, number);
    FillThing(number);
    dw::DaoUpdateRecord(*things_);
    if (things_->Editing()) return End(false);
    own_[id] = number;
    End(true);
  }

  void DeleteOwn() {
    std::int32_t id = 0;
    if (!FindOwn(id)) return;
    log_.Write(Event::Delete, id);
    bool deleted = false;
    switch (Dice(3)) {
      case 0:
        dw::DaoDeleteRecord(*things_);
        things_->Seek({id});
        deleted = things_->NoMatch();
        break;
      case 1: {
        const auto rows =
            dw::AdoOpenRecordset(connection_, "SELECT * FROM [Things] WHERE [ID] = " + std::to_string(id),
                                 ado::adOpenKeyset, ado::adLockPessimistic);
        deleted = dw::AdoDeleteRS(*rows, true, true);
        break;
      }
      default:
        deleted = ExecuteUnlessHeld("DELETE * FROM [Things] WHERE [ID] = " + std::to_string(id)) == 1;
    }
    if (deleted) own_.erase(id);
    End(deleted);
  }

  void DeleteBelow() {
    const std::int32_t number = lastNumber_ - 20;
    const auto older = [&](const auto& row) { return row.second < number; };
    const auto count = std::count_if(own_.begin(), own_.end(), older);
    if (count == 0) return;
    log_.Write(Event::DeleteBelow, number);
    const std::int64_t deleted =
        ExecuteUnlessHeld("DELETE * FROM [Things] WHERE [Owner] = " + std::to_string(owner_) +
                          " AND [Number] < " + std::to_string(number));
    if (deleted != 0) {
      faults_.Equal(deleted, std::int64_t{count}, "own rows deleted");
      std::erase_if(own_, older);
    }
    End(deleted != 0);
  }

  /// The rows of a group and perhaps a new thing, in one transaction. The rows are taken in their order, so
  /// that two who wait for each other's cannot be.
  void ChangeTogether() {
    const int group = Dice(kGroups);
    const std::int32_t number = Dice(2) == 0 ? ++lastNumber_ : 0;
    log_.Write(Event::ChangeTogether, group + 1, number);
    workspace_->BeginTrans();
    std::int32_t id = 0;
    for (int i = 0; i < kGroupSize; ++i) {
      groups_->Seek({group * kGroupSize + i + 1});
      std::int16_t error = 0;
      dw::DaoEditRecord(*groups_, error);
      groups_->Set("Count", groups_->Get("Count").AsLong() + 1);
      dw::DaoUpdateRecord(*groups_);
      if (i == 0 && number != 0) {
        dw::DaoAddRecord(*things_);
        id = things_->Get("ID").AsLong();
        FillThing(number);
        dw::DaoUpdateRecord(*things_);
      }
      // A window stays open while its user thinks, and the file is the others' meanwhile.
      if (Dice(8) == 0) screen::Sleep(1000);
    }
    if (Dice(4) == 0) {
      workspace_->RollbackTrans();
      return End(false);
    }
    workspace_->CommitTrans();
    if (number != 0) own_[id] = number;
    log_.Write(Event::Done, id);
  }

  /// In one statement, for two would be two looks at the file.
  void CheckGroups() {
    const std::string group = std::to_string(1 + Dice(kGroups));
    const auto rows = database_->OpenRecordset(
        "SELECT MIN([Count]), MAX([Count]), COUNT(*) FROM [Groups] WHERE [Group] = " + group,
        dao::RecordsetType::Snapshot);
    faults_.Equal(rows->Get(0).AsLong(), rows->Get(1).AsLong(), "rows of group " + group);
    faults_.Equal(rows->Get(2).AsLong(), kGroupSize, "how many rows group " + group + " has");
  }

  void End(bool stored) { log_.Write(stored ? Event::Done : Event::Refused); }

  std::string path_;
  std::int32_t owner_;
  const Log& log_;
  std::mt19937 random_;
  std::shared_ptr<test::QuietScreen> user_;
  test::Faults faults_;
  dw::DaoWorkspacePtr workspace_;
  dw::DaoDatabasePtr database_;
  dw::DaoRecordsetPtr things_, counters_, groups_, noRows_;
  dw::AdoConnectionPtr connection_;
  std::int32_t lastNumber_ = 0;
  std::map<std::int32_t, std::int32_t> own_;  ///< the numbers in the own rows, by ID
};

}  // namespace stress
