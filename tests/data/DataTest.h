// What the tests of the access layers share: a scripted screen, a directory of their own, a small file of
// vehicles.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "data/Application.h"
#include "data/BrackenfelGlobals.h"
#include "platform/store/Connection.h"
#include "platform/store/Cursor.h"
#include "support/ScreenScript.h"
#include "support/SecondProcess.h"
#include "support/TempDirectory.h"

namespace dwtest {

/// Another workstation, "OFFICE" with the user "Bert", that holds a record or keeps a file open until the
/// test says to let go. It is a process of its own, and starts before this one opens anything that the two
/// could share.
class OtherWorkstation {
 public:
  enum class Keeps { Record, RecordInTransaction, FileShared, FileExclusively };

  OtherWorkstation() : process_(Work) {}
  /// Returns when the other workstation holds vehicle 1, or has the file open.
  void Keep(const std::string& path, Keeps what) {
    process_.Talk().Say(std::to_string(static_cast<int>(what)) + path);
    process_.Talk().Hear();
  }
  void LetGo() {
    process_.Talk().Say("let go");
    process_.Talk().Hear();
  }
  void Die() { process_.Kill(); }

 private:
  static void Work(test::SecondProcess::Channel& channel) {
    store::SetIdentity("OFFICE", "Bert");
    for (;;) {
      const std::string order = channel.Hear();
      const auto what = static_cast<Keeps>(order.front() - '0');
      auto connection = store::Connection::Open(
          {order.substr(1), what == Keeps::FileExclusively ? store::Share::Exclusive : store::Share::Shared});
      auto cursor = what == Keeps::Record
                        ? store::Cursor::OpenQuery(connection, "SELECT * FROM [Vehicles] WHERE [ID] = 1",
                                                   store::Locking::Pessimistic)
                        : nullptr;
      if (cursor) cursor->Edit();
      if (what == Keeps::RecordInTransaction) {
        connection->BeginTrans();
        connection->Execute("UPDATE [Vehicles] SET [Odometer] = 200 WHERE [ID] = 1");
      }
      // A transaction's writes would block other writers; only the hold should stay.
      store::YieldFiles();
      channel.Say("kept");
      channel.Hear();
      if (cursor) cursor->CancelUpdate();
      if (what == Keeps::RecordInTransaction) connection->RollbackTrans();
      cursor.reset();
      connection.reset();
      channel.Say("free");
    }
  }

  test::SecondProcess process_;
};

/// A user who expects certain boxes, a data directory of its own, and nothing installed by the shell.
class DataTest : public ::testing::Test {
 protected:
  DataTest() {
    store::SetIdentity("FRONT DESK", "Anna");
    dw::SetDataPath(directory_.Path());
  }
  ~DataTest() override {
    dw::InstallFileLocator({});
    dw::InstallFileRepair({});
    dw::InstallEndApplication({});
  }

  /// Three vehicles, numbered 1 to 3.
  static void MakeVehicles(const std::string& path) {
    store::Connection::Create(path);
    const auto connection = store::Connection::Open({path});
    store::TableInfo table;
    table.name = "Vehicles";
    table.columns = {{.name = "ID", .type = store::ColumnType::Counter},
                     {.name = "Asset ID", .type = store::ColumnType::Text, .size = 20},
                     {.name = "Odometer", .type = store::ColumnType::Long}};
    table.indexes = {
        {.name = "PrimaryKey", .columns = {"ID"}, .primary = true, .unique = true, .required = true}};
    connection->CreateTable(table);
    for (const char* asset : {"TRUCK 1", "TRUCK 2", "TRUCK 3"})
      connection->Execute("INSERT INTO [Vehicles] ([Asset ID], [Odometer]) VALUES ('" + std::string(asset) +
                          "', 100)");
  }
  std::string MakeVehicles() const {
    std::string path = directory_.Path("DW.MDB");
    MakeVehicles(path);
    return path;
  }
  /// The Asset ID of a vehicle in the file; empty if it is not there.
  static std::string AssetOf(const std::string& path, int id) {
    const auto cursor = store::Cursor::OpenQuery(
        store::Connection::Open({path}), "SELECT * FROM [Vehicles] WHERE [ID] = " + std::to_string(id),
        store::Locking::ReadOnly);
    return cursor->AtEnd() ? "" : cursor->Get(cursor->FieldIndex("Asset ID")).AsText();
  }
  static std::string BytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  /// Replaces the file with a new one.
  static void WriteBytes(const std::string& path, const std::string& bytes) {
    std::filesystem::remove(path);
    std::ofstream(path, std::ios::binary) << bytes;
  }

  static constexpr const char* kOwnWindow =
      "This record is open in another window of this program. Close that window and try again.";
  OtherWorkstation other_;
  test::TempDirectory directory_;
  test::ScreenScript user_;
};

}  // namespace dwtest
