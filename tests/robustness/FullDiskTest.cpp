// A full disk: a clear error, nothing half written, and all works again once there is room.
#include "robustness/FullDisk.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "costing/Posting.h"
#include "data/BrackenfelGlobals.h"
#include "data/Catalogue.h"
#include "data/Compact.h"
#include "data/GenericADO.h"
#include "data/GenericDAO.h"
#include "support/QuietScreen.h"
#include "support/TempDirectory.h"
#include "support/WholeFleet.h"

namespace {

namespace fs = std::filesystem;
using test::Disk;
using test::DiskKind;
using test::Faults;
using test::RunApart;

const std::string kLong(300000, 'n');

class FullDisk : public testing::TestWithParam<DiskKind> {
 protected:
  static void SetUpTestSuite() {
    fleet_ = new test::TempDirectory;
    ASSERT_EQ(RunApart([] {
                test::MakeFleet(fleet_->Path(), 12, 3);
                fs::copy_file(fleet_->Path("DW.MDB"), fleet_->Path("WAITING.MDB"));
                Faults faults;
                test::Post(fleet_->Path(), false, faults);
                return faults.Text();
              }),
              "");
  }
  static void TearDownTestSuite() { delete fleet_; }

  /// The result of work on a fleet of its own, in a process and on a disk of its own.
  std::string OnDisk(const std::function<void(Disk&, Faults&)>& work) {
    return RunApart([&] {
      Disk disk(GetParam(), directory_.Path());
      dw::SetDataPath(directory_.Path());
      fs::copy_file(fleet_->Path("DW.MDB"), path_);
      fs::copy_file(fleet_->Path("WAITING.MDB"), directory_.Path("WAITING.MDB"));
      user_ = test::QuietScreen::Install();
      Faults faults;
      work(disk, faults);
      disk.Free();
      faults.Take(test::CheckMainFile(path_), "in the end");
      return faults.Text();
    });
  }
  void SetUp() override {
    if (GetParam() == DiskKind::FileLimit) return;
    const std::string refused = RunApart([&] { return Disk::Mount(directory_.Path()); });
    if (!refused.empty()) GTEST_SKIP() << "no small disk on this machine: " << refused;
  }

  /// The number of the engine's error.
  template <class Work>
  static int ErrorOf(Work work) {
    try {
      work();
    } catch (const dao::StoreError& error) {
      return error.Number();
    }
    return 0;
  }
  std::string Ask(const std::string& sql) const { return test::AskFile(path_, sql); }

  static test::TempDirectory* fleet_;
  test::TempDirectory directory_;
  std::string path_ = directory_.Path("DW.MDB");
  std::shared_ptr<test::QuietScreen> user_;
};
test::TempDirectory* FullDisk::fleet_ = nullptr;

INSTANTIATE_TEST_SUITE_P(Disks, FullDisk, testing::Values(DiskKind::FileLimit, DiskKind::SmallDisk),
                         [](const auto& disk) {
                           return disk.param == DiskKind::FileLimit ? "FileLimit" : "SmallDisk";
                         });

/// A data file, opened as the windows open it.
struct Opened {
  explicit Opened(const std::string& path) {
    int error = 0;
    if (!dw::DaoOpenDatabase(path, false, "admin", "", workspace, database, error))
      throw std::runtime_error("not opened");
    vehicles = database->OpenRecordset("Vehicles", dao::RecordsetType::Table);
    vehicles->SetIndex("PrimaryKey");
  }
  ~Opened() { dw::CloseAll(vehicles, database, workspace); }
  Opened(const Opened&) = delete;
  Opened& operator=(const Opened&) = delete;
  void EditNotes(int id, const std::string& notes) {
    vehicles->Seek({id});
    vehicles->Edit();
    vehicles->Set("Notes", notes);
  }

  dw::DaoWorkspacePtr workspace;
  dw::DaoDatabasePtr database;
  dw::DaoRecordsetPtr vehicles;
};

TEST_P(FullDisk, AnUpdateKeepsItsEditAndTheEarlierValue) {
  EXPECT_EQ(OnDisk([&](Disk& disk, Faults& faults) {
              Opened file(path_);
              const std::string before = Ask("SELECT [Notes] FROM [Vehicles] WHERE [ID] = 2");
              file.EditNotes(2, kLong);
              disk.Fill(path_, 0);
              dw::DaoUpdateRecord(*file.vehicles);
              faults.Equal(user_->Texts().size(), std::size_t{1}, "boxes");
              const std::string box = user_->TakeTexts();
              if (!box.starts_with("<Unknown error #3026 during record update.Not enough space on the disk"))
                faults.Add("box: " + box);
              faults.Equal(file.vehicles->Editing(), true, "editing goes on");
              faults.Equal(Ask("SELECT [Notes] FROM [Vehicles] WHERE [ID] = 2"), before, "earlier value");
              disk.Free();
              dw::DaoUpdateRecord(*file.vehicles);
              faults.Equal(user_->TakeTexts(), std::string(), "boxes with room");
              faults.Equal(Ask("SELECT [Notes] FROM [Vehicles] WHERE [ID] = 2") == kLong, true, "new value");
            }),
            "");
}

TEST_P(FullDisk, AnAdoUpdateAndAStatementAreToldAndChangeNothing) {
  EXPECT_EQ(OnDisk([&](Disk& disk, Faults& faults) {
              const std::string notes = "SELECT COUNT(*) FROM [Maintenance Transactions] WHERE [Notes] = '" +
                                        std::string(900, 'n') + "'";
              dw::AdoConnectionPtr connection;
              if (!dw::AdoOpenConnection(connection, dw::MainFileConnect(path_), false))
                faults.Add("not open");
              const auto rows = dw::AdoOpenRecordset(connection, "SELECT * FROM [Vehicles] WHERE [ID] = 2",
                                                     ado::adOpenKeyset, ado::adLockPessimistic);
              rows->Set("Notes", kLong);
              disk.Fill(path_, 8192);
              user_->okOrCancel = screen::Answer::Cancel;
              faults.Equal(dw::AdoUpdateRS(*rows, true, true), false, "stored without room");
              const std::string box = user_->TakeTexts();
              if (box.find("Not enough space on the disk") == std::string::npos) faults.Add("box: " + box);
              const std::string update =
                  "UPDATE [Maintenance Transactions] SET [Notes] = '" + std::string(900, 'n') + "'";
              faults.Equal(dw::AdoExecute(connection, update) != 0, true, "the statement's error");
              Opened file(path_);
              faults.Equal(ErrorOf([&] { file.database->Execute(update); }), 3026, "the statement's error");
              faults.Equal(Ask(notes), std::string("0"), "rows changed without room");
              disk.Free();
              faults.Equal(dw::AdoUpdateRS(*rows, true, true), true, "stored with room");
              faults.Equal(dw::AdoExecute(connection, update), 0, "the statement with room");
              faults.Equal(Ask(notes), Ask("SELECT COUNT(*) FROM [Maintenance Transactions]"),
                           "rows changed with room");
              dw::CloseObject(connection);
            }),
            "");
}

TEST_P(FullDisk, WhatWasAddedBeforeTheDiskWasFullIsThere) {
  EXPECT_EQ(OnDisk([&](Disk& disk, Faults& faults) {
              Opened file(path_);
              const std::string before = Ask("SELECT COUNT(*) FROM [Vehicles]");
              disk.Fill(path_, 200000);
              int added = 0;
              int error = 0;
              while (error == 0 && added < 1000) {
                file.vehicles->AddNew();
                file.vehicles->Set("Notes", std::string(3000, 'n'));
                error = ErrorOf([&] { file.vehicles->Update(); });
                if (error == 0) ++added;
              }
              faults.Equal(error, 3026, "the error of the last one");
              if (added < 5) faults.Add("only " + std::to_string(added) + " were added");
              faults.Equal(std::stoi(Ask("SELECT COUNT(*) FROM [Vehicles]")) - std::stoi(before), added,
                           "rows added");
              disk.Free();
              file.vehicles->Update();
              faults.Equal(std::stoi(Ask("SELECT COUNT(*) FROM [Vehicles]")) - std::stoi(before), added + 1,
                           "rows added with room");
            }),
            "");
}

TEST_P(FullDisk, ATransactionIsStoredWholeOrNotAtAll) {
  EXPECT_EQ(OnDisk([&](Disk& disk, Faults& faults) {
              const auto stored = [&](const std::string& text) {
                return std::stoi(Ask("SELECT COUNT(*) FROM [Vehicles] WHERE [Notes] LIKE '" + text + "*'"));
              };
              Opened file(path_);
              // The failed edit can be stored later, and earlier changes stay.
              file.workspace->BeginTrans();
              file.EditNotes(2, "first");
              file.vehicles->Update();
              file.EditNotes(3, "first" + kLong);
              disk.Fill(path_, 0);
              faults.Equal(ErrorOf([&] {
                             file.vehicles->Update();
                             file.workspace->CommitTrans();
                           }),
                           3026, "the transaction without room");
              faults.Equal(stored("first"), 0, "rows changed without room");
              disk.Free();
              if (file.vehicles->Editing()) file.vehicles->Update();
              file.workspace->CommitTrans();
              faults.Equal(stored("first"), 2, "rows changed with room");

              // A transaction that is rolled back leaves nothing.
              file.workspace->BeginTrans();
              for (int id = 2; id < 6; ++id) {
                file.EditNotes(id, "second" + std::string(id == 2 ? 10 : 100000, 'n'));
                if (id == 5) disk.Fill(path_, 20000);
                const int error = ErrorOf([&] { file.vehicles->Update(); });
                if (id != 5) faults.Equal(error, 0, "edit of " + std::to_string(id));
              }
              file.workspace->RollbackTrans();
              faults.Equal(stored("second"), 0, "rows changed by what was rolled back");
              disk.Free();
              faults.Equal(stored("first"), 2, "rows changed in the end");
            }),
            "");
}

TEST_P(FullDisk, APostingEndsWithWholeRowsAndTheNextOneFinishesIt) {
  const std::string totals = RunApart([&] { return test::CostTotals(fleet_->Path("DW.MDB")); });
  int toldOfTheDisk = 0;
  for (const bool clearFirst : {false, true}) {
    for (const bool roomIsMade : {false, true}) {
      // If files have a limit below the data file's present size, even the journal cannot be written.
      for (const std::int64_t room : {-400000, -200000, 0, 4096, 20000, 50000, 100000, 200000}) {
        if (room <= 0 && GetParam() == DiskKind::SmallDisk) continue;  // no room to open the file
        const std::string told = OnDisk([&](Disk& disk, Faults& faults) {
          if (!clearFirst) fs::rename(directory_.Path("WAITING.MDB"), path_);
          user_->onBox = [&](const screen::Box&) {
            if (roomIsMade) disk.Free();
          };
          disk.Fill(path_, room);
          const int error = ErrorOf([&] { dw::RunPosting(clearFirst, {}); });
          std::string texts = user_->TakeTexts();
          const bool told3026 = error == 3026 || texts.find("#3026 ") != std::string::npos;
          if (!told3026 && (error != 0 || texts != "<Posting is Complete.>"))
            faults.Add("the run ended with " + std::to_string(error) + " " + texts);
          disk.Free();
          faults.Take(test::CheckMainFile(path_), "after the run: " + texts.substr(0, 500));
          dw::RunPosting(false, {});
          faults.Equal(user_->TakeTexts(), std::string("<Posting is Complete.>"), "boxes with room");
          faults.Equal(test::WaitingRows(path_), std::int64_t{0}, "rows that wait in the end");
          faults.Equal(test::CostTotals(path_), totals, "totals");
          if (faults.Text().empty() && told3026) faults.Add("told");
        });
        if (told == "told\n") ++toldOfTheDisk;
        EXPECT_TRUE(told.empty() || told == "told\n")
            << told << (clearFirst ? "clearing first, " : "") << (roomIsMade ? "made " : "") << room
            << " bytes of room";
        fs::remove_all(directory_.Path());
        fs::create_directory(directory_.Path());
      }
    }
  }
  EXPECT_GT(toldOfTheDisk, 8);
}

TEST_P(FullDisk, ACompactionLeavesTheFirstFileAsItIs) {
  EXPECT_EQ(
      OnDisk([&](Disk& disk, Faults& faults) {
        const std::string bytes = test::BytesOf(path_);
        const auto files = [&] {
          std::string names;
          for (const auto& entry : fs::directory_iterator(directory_.Path()))
            if (entry.path().extension() != ".MDB" && entry.path().filename() != "filler" &&
                fs::file_size(entry) > 0)
              names += entry.path().filename().string() + " ";
          return names;
        };
        for (const std::int64_t room : {8192, 100000, 300000}) {
          disk.Fill(path_, GetParam() == DiskKind::FileLimit
                               ? room - static_cast<std::int64_t>(fs::file_size(path_))
                               : room);
          dw::CompactDatabase(path_);
          const std::string box = user_->TakeTexts();
          if (!box.starts_with("<Error #3183.\n") || !box.ends_with("\n\nFree up space and try again.>"))
            faults.Add("box: " + box);
          faults.Equal(test::BytesOf(path_) == bytes, true, "the first file is as it was");
          faults.Equal(files(), std::string(), "files left behind");
          disk.Free();
        }
        dw::CompactDatabase(path_);
        faults.Equal(user_->TakeTexts(), std::string("<Compacting complete.>"), "box with room");
      }),
      "");
}

TEST_P(FullDisk, ANewFileIsMadeWholeOrNotAtAll) {
  EXPECT_EQ(OnDisk([&](Disk& disk, Faults& faults) {
              for (const std::int64_t room : {4096, 12000, 40000}) {
                disk.Fill(path_, GetParam() == DiskKind::FileLimit
                                     ? room - static_cast<std::int64_t>(fs::file_size(path_))
                                     : room);
                const fs::path made = directory_.Path("DW_USERS.MDB");
                const int error = ErrorOf([&] { dw::CreateDataFile(directory_.Path(), "DW_USERS.MDB"); });
                faults.Equal(error, 3026, "the error with " + std::to_string(room) + " bytes");
                faults.Equal(fs::exists(made), false, "a file of " + std::to_string(room) + " bytes is left");
                disk.Free();
              }
              dw::CreateDataFile(directory_.Path(), "DW_USERS.MDB");
            }),
            "");
}

}  // namespace
