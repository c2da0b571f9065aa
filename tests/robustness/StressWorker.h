// A user of the stress test, who does everything at once that users do to a data file.
#pragma once

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
        return ChangeTogetherThroughDao();
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
    const auto rows = dw::AdoOpenRecordset(
        connection_, "SELECT * FROM [Counters] WHERE [ID] = " + std::to_string(counter), ado::adOpenKeyset,
        ado::adLockPessimistic);
    // The probe takes the record, and only then is the count read that others cannot change any more.
    if (dw::AdoTestRecordLock(ado::Field(*rows, rows->FieldIndex("Count")), true) != 0) return;
    rows->CancelUpdate();
    try {
      rows->Set("Count", rows->Get("Count"));
    } catch (const ado::Error& error) {
      if (error.Number() != ado::kProviderFailure) faults_.Add(std::string("ADO edit: ") + error.what());
      return;
    }
    rows->Requery();
    const std::int32_t before = rows->Get("Count").AsLong();
    try {
      rows->Set("Count", before);
      const bool same = rows->Get("Count").AsLong() == before;
      if (!same) return;
    } catch (const ado::Error&) {
      return;
    }
    rows->CancelUpdate();
  }

  std::string path_;
  std::int32_t owner_;
  const Log& log_;
  std::mt19937 random_;
};

}  // namespace stress
