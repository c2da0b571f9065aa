#include "data/GenericADO.h"

#include <filesystem>

#include "data/DataTest.h"
#include "data/GenericDAO.h"

namespace dw {
namespace {

using dwtest::OtherWorkstation;
using screen::Answer;
using screen::Buttons;
using screen::Icon;
using screen::Pointer;

class GenericADOTest : public dwtest::DataTest {
 protected:
  AdoConnectionPtr Opened(const std::string& path) {
    AdoConnectionPtr connection;
    EXPECT_TRUE(AdoOpenConnection(connection, FileConnect(path), false));
    return connection;
  }
  static constexpr const char* kFirstVehicle = "SELECT * FROM [Vehicles] WHERE [ID] = 1";
};

TEST_F(GenericADOTest, AMissingFileIsLookedForByItsBareName) {
  const test::TempDirectory found;
  MakeVehicles(found.Path("DW_USERS.MDB"));
  UsersConnect = FileConnect("Z:\\Fleet\\DW_USERS.MDB");
  std::vector<std::string> asked;
  InstallFileLocator([&](const std::string& name) {
    asked.push_back(name);
    if (asked.size() == 2) SetDataPath(found.Path());
  });
  AdoConnectionPtr connection;
  EXPECT_TRUE(AdoOpenConnection(connection, UsersConnect, false));
  EXPECT_EQ(asked, (std::vector<std::string>{"DW_USERS.MDB", "DW_USERS.MDB"}));
  EXPECT_TRUE(AdoTableExists(connection, "Vehicles"));
  EXPECT_EQ(user_->CurrentPointer(), Pointer::Normal);
  CloseObject(connection);

  // If a string does not name its file in the known form, nothing can correct it: the function fails without
  // a message.
  EXPECT_FALSE(AdoOpenConnection(
      connection, "Provider=Microsoft.Jet.OLEDB.4.0; Data Source=" + directory_.Path("none.mdb"), false));
  EXPECT_FALSE(connection->IsOpen());
  EXPECT_EQ(asked.size(), 2U);
  EXPECT_EQ(user_->CurrentPointer(), Pointer::Normal);
}

TEST_F(GenericADOTest, OpenAsksForTheSharingThatIsWanted) {
  const std::string path = MakeVehicles();
  const AdoConnectionPtr first = Opened(path);
  const AdoConnectionPtr second = Opened(path);
  AdoConnectionPtr alone;
  user_->ExpectPart(" trying to open connection.\r\r", Icon::Critical);
  EXPECT_FALSE(AdoOpenConnection(alone, FileConnect(path), true));
  EXPECT_FALSE(alone->IsOpen());
  ASSERT_EQ(user_->Shown().size(), 1U);
  EXPECT_TRUE(user_->Shown().back().text.starts_with("Unknown error #"));
  EXPECT_TRUE(
      user_->Shown().back().text.ends_with("\n\nContact your System Administrator if this continues."));
  first->Close();
  second->Close();
  EXPECT_TRUE(AdoOpenConnection(alone, FileConnect(path) + ";", true)) << "no second semicolon";
}

TEST_F(GenericADOTest, WhatIsNoDataFileIsNeverOverwritten) {
  const std::string path = directory_.Path("DW.MDB");
  for (const char* content : {"", "Dear Anna,\nplease fill in.\n"}) {
    WriteBytes(path, content);
    AdoConnectionPtr connection;
    user_->ExpectPart(" trying to open connection.\r\r", Icon::Critical);
    EXPECT_FALSE(AdoOpenConnection(connection, DataConnect, false));
    EXPECT_EQ(BytesOf(path), content);
  }
}

TEST_F(GenericADOTest, StatementsGiveTheirErrorNumber) {
  const AdoConnectionPtr connection = Opened(MakeVehicles());
  EXPECT_EQ(AdoExecute(connection, "UPDATE [Vehicles] SET [Odometer] = 5 WHERE [ID] = 2"), 0);
  EXPECT_EQ(AdoExecute(connection, "UPDATE [Vehicles] SET"), ado::kSyntax);
  EXPECT_EQ(AdoExecute(connection, "DELETE * FROM [Trailers]"), ado::kNoTable);
  EXPECT_EQ(AdoExecute(connection, "DELETE * FROM [Vehicles] WHERE [Wheels] = 4"), ado::kTooFewParameters);
  EXPECT_NE(AdoExecute(nullptr, "DELETE * FROM [Vehicles]"), 0);
  const AdoRecordsetPtr vehicles =
      AdoOpenRecordset(connection, "SELECT * FROM [Vehicles] WHERE [Odometer] = 5");
  ASSERT_NE(vehicles, nullptr);
  EXPECT_EQ(vehicles->RecordCount(), 1);

  user_->ExpectPart("Unknown error #-2147217865 trying to open recordset.\r\r", Icon::Critical);
  EXPECT_EQ(AdoOpenRecordset(connection, "SELECT * FROM [Trailers]"), nullptr);
}

TEST_F(GenericADOTest, AStatementThatMeetsALockChangesNothing) {
  const std::string path = MakeVehicles();
  other_.Keep(path, OtherWorkstation::Keeps::Record);
  const AdoConnectionPtr connection = Opened(path);
  EXPECT_EQ(AdoExecute(connection, "UPDATE [Vehicles] SET [Asset ID] = 'X'"), ado::kUnspecified);
  EXPECT_EQ(AdoLastNativeError(connection), store::kRecordLocked);
  EXPECT_EQ(AdoLastNativeError(connection), 0) << "reading the errors clears them";
  EXPECT_EQ(AssetOf(path, 2), "TRUCK 2");
}

TEST_F(GenericADOTest, RecordsAreAddedUnderAChosenID) {
  const std::string path = MakeVehicles();
  const AdoConnectionPtr connection = Opened(path);
  ado::Recordset vehicles;
  vehicles.Open("SELECT * FROM [Vehicles] WHERE [ID] = -1", connection, ado::adOpenDynamic,
                ado::adLockPessimistic);
  // Without an ID, the recordset adds the row; a statement would fail on this table's name.
  for (const int id : {0, -7}) {
    ASSERT_TRUE(AdoAddRecordWithID("Access", connection, vehicles, "No Such Table", id));
    vehicles.Set("Asset ID", "BY NUMBER");
    ASSERT_TRUE(AdoUpdateRS(vehicles, true, true));
  }
  EXPECT_EQ(AssetOf(path, 4), "BY NUMBER");
  EXPECT_EQ(AssetOf(path, 5), "BY NUMBER");

  ASSERT_TRUE(AdoAddRecordWithID("Access", connection, vehicles, "Vehicles", 50));
  EXPECT_EQ(vehicles.Get("ID"), rt::Value(50));
  vehicles.Set("Asset ID", "CHOSEN");
  ASSERT_TRUE(AdoUpdateRS(vehicles, false, false));
  EXPECT_EQ(AssetOf(path, 50), "CHOSEN");

  // It cannot make a second row of this ID, but can read one, which is enough.
  EXPECT_TRUE(AdoAddRecordWithID("Access", connection, vehicles, "Vehicles", 50));
  EXPECT_EQ(vehicles.Get("Asset ID"), rt::Value("CHOSEN"));
  EXPECT_FALSE(AdoAddRecordWithID("Access", connection, vehicles, "Trailers", 51));
  EXPECT_FALSE(AdoAddRecordWithID("SQL Server", connection, vehicles, "Vehicles", 51))
      << "this file has no identity columns to switch";
}

TEST_F(GenericADOTest, FailuresOfAddAndCancelAreTold) {
  const AdoConnectionPtr connection = Opened(MakeVehicles());
  const AdoRecordsetPtr readOnly = AdoOpenRecordset(connection, kFirstVehicle);
  user_->ExpectPart("\r\rAdd failed in AdoAutoAddRS.", Icon::Critical);
  EXPECT_FALSE(AdoAutoAddRS(*readOnly));

  const AdoRecordsetPtr vehicles =
      AdoOpenRecordset(connection, "SELECT * FROM [Vehicles]", ado::adOpenKeyset, ado::adLockPessimistic);
  ASSERT_TRUE(AdoAutoAddRS(*vehicles));
  vehicles->Set("Asset ID", "NEVER");
  EXPECT_TRUE(AdoCancelUpdateRS(*vehicles));
  vehicles->Requery();
  EXPECT_EQ(vehicles->RecordCount(), 3);

  vehicles->Close();
  user_->ExpectPart(" during CancelUpdate.\r", Icon::Information);
  EXPECT_FALSE(AdoCancelUpdateRS(*vehicles));
  user_->ExpectPart(" during record update.", Icon::Critical);
  EXPECT_FALSE(AdoUpdateRS(*vehicles, true, true));
  user_->ExpectPart("\n\n** Delete Failed **\nContact your System Administrator if this continues.",
                    Icon::Critical);
  EXPECT_FALSE(AdoDeleteRS(*vehicles, true, true));
}

TEST_F(GenericADOTest, ALockedUpdateIsAskedAbout) {
  const std::string path = MakeVehicles();
  other_.Keep(path, OtherWorkstation::Keeps::Record);
  const AdoConnectionPtr connection = Opened(path);
  const AdoRecordsetPtr vehicle =
      AdoOpenRecordset(connection, kFirstVehicle, ado::adOpenKeyset, ado::adLockOptimistic);
  vehicle->Set("Asset ID", "VAN 1");
  const std::string question =
      "\n\nContact your System Administrator about performing this function."
      "Then click OK to continue or click Cancel to quit.";

  user_->ExpectPart(question, Icon::Information, Buttons::OkCancel, Answer::Cancel);
  EXPECT_FALSE(AdoUpdateRS(*vehicle, true, true));
  EXPECT_EQ(user_->CurrentPointer(), Pointer::Hourglass) << "canceling restores the pointer";
  EXPECT_NE(user_->Shown().back().text.find("'OFFICE'"), std::string::npos) << user_->Shown().back().text;

  // OK tries again, however often.
  user_->ExpectPart(question, Icon::Information, Buttons::OkCancel, Answer::Ok);
  user_->ExpectPart(question, Icon::Information, Buttons::OkCancel, Answer::Ok);
  user_->onBox = [&](const screen::Box&) {
    if (user_->Shown().size() == 3) other_.LetGo();
  };
  EXPECT_TRUE(AdoUpdateRS(*vehicle, true, true));
  EXPECT_EQ(user_->CurrentPointer(), Pointer::Normal);
  EXPECT_EQ(user_->SleepCount(), 0);
  EXPECT_EQ(AssetOf(path, 1), "VAN 1");
}

TEST_F(GenericADOTest, ALockedDeleteWaits) {
  const std::string path = MakeVehicles();
  other_.Keep(path, OtherWorkstation::Keeps::Record);
  const AdoConnectionPtr connection = Opened(path);
  const AdoRecordsetPtr vehicle =
      AdoOpenRecordset(connection, kFirstVehicle, ado::adOpenKeyset, ado::adLockPessimistic);
  const std::string advice =
      "\nCheck other Drovewright workstations to make sure they exit their update.Then click OK to continue.";
  user_->ExpectPart(advice, Icon::Information);
  user_->ExpectPart(advice, Icon::Information);
  user_->onBox = [&](const screen::Box&) { EXPECT_EQ(user_->SleepCount() % 11, 0); };
  user_->onSleep = [&](int milliseconds) {
    EXPECT_EQ(milliseconds, 1000);
    if (user_->SleepCount() == 22) other_.LetGo();
  };
  EXPECT_TRUE(AdoDeleteRS(*vehicle, true, true));
  EXPECT_EQ(user_->SleepCount(), 22);
  EXPECT_EQ(user_->CurrentPointer(), Pointer::Normal);
  EXPECT_EQ(AssetOf(path, 1), "");
}

TEST_F(GenericADOTest, AHoldOfThisProgramIsNotWaitedFor) {
  const std::string path = MakeVehicles();
  const AdoConnectionPtr window = Opened(path);
  const AdoConnectionPtr list = Opened(path);
  user_->onSleep = [](int) { throw std::runtime_error("it waits"); };
  const auto held = AdoOpenRecordset(window, kFirstVehicle, ado::adOpenKeyset, ado::adLockPessimistic);
  const auto row = AdoOpenRecordset(list, kFirstVehicle, ado::adOpenKeyset, ado::adLockPessimistic);
  held->Set("Odometer", 7);
  user_->Expect(kOwnWindow, Icon::Exclamation);
  EXPECT_FALSE(AdoDeleteRS(*row, false, true));
  EXPECT_EQ(AssetOf(path, 1), "TRUCK 1");
  held->CancelUpdate();
  window->BeginTrans();
  ASSERT_EQ(AdoExecute(window, "UPDATE [Vehicles] SET [Odometer] = 8"), 0);
  user_->Expect(kOwnWindow, Icon::Exclamation);
  EXPECT_FALSE(AdoDeleteRS(*row, false, true));
  window->RollbackTrans();
  EXPECT_TRUE(AdoDeleteRS(*row, false, true));
  EXPECT_EQ(AssetOf(path, 1), "");
}

TEST_F(GenericADOTest, WhatNoWaitCuresEndsAtOnce) {
  const std::string path = MakeVehicles();
  const AdoConnectionPtr connection = Opened(path);
  const auto open = [&](int lock) {
    return AdoOpenRecordset(connection, kFirstVehicle, ado::adOpenKeyset, lock);
  };
  user_->onSleep = [](int) { throw std::runtime_error("it waits"); };
  const auto gone = open(ado::adLockOptimistic);
  const auto changed = open(ado::adLockOptimistic);
  changed->Set("Odometer", 7);
  ASSERT_EQ(AdoExecute(connection, "DELETE * FROM [Vehicles] WHERE [ID] = 1"), 0);
  user_->ExpectPart("Unknown error #3167 during record delete.", Icon::Critical);
  EXPECT_FALSE(AdoDeleteRS(*gone, true, true));
  user_->ExpectPart("Unknown error #3167 during record update.", Icon::Critical);
  EXPECT_FALSE(AdoUpdateRS(*changed, true, true));

  const auto second = AdoOpenRecordset(connection, "SELECT * FROM [Vehicles] WHERE [ID] = 2",
                                       ado::adOpenKeyset, ado::adLockPessimistic);
  const std::string home = std::filesystem::path(path).parent_path().string();
  std::filesystem::rename(home, home + ".away");
  user_->ExpectPart(" during record delete.", Icon::Critical);
  EXPECT_FALSE(AdoDeleteRS(*second, true, true));
  std::filesystem::rename(home + ".away", home);
  EXPECT_EQ(AssetOf(path, 2), "TRUCK 2");
}

TEST_F(GenericADOTest, TheProbeTellsFreeLockedAndFailed) {
  const std::string path = MakeVehicles();
  other_.Keep(path, OtherWorkstation::Keeps::Record);
  const AdoConnectionPtr connection = Opened(path);
  const AdoConnectionPtr second = Opened(path);
  AdoRecordsetPtr vehicle =
      AdoOpenRecordset(connection, kFirstVehicle, ado::adOpenKeyset, ado::adLockPessimistic);
  const auto field = [&] { return ado::Field(*vehicle, vehicle->FieldIndex("Asset ID")); };

  user_->Expect(
      "This record is apparently being updated elsewhere. You will not be able to change any information at "
      "this "
      "time.",
      Icon::Information);
  user_->Expect("Current Computers In Use:\rOFFICE\rFRONT DESK\r", Icon::Information);
  EXPECT_EQ(AdoTestRecordLock(field(), true, connection), 1);
  EXPECT_EQ(AdoTestRecordLock(field(), false), 1) << "no box unless the caller wants one";

  other_.LetGo();
  EXPECT_EQ(AdoTestRecordLock(field(), true, connection), 0);
  EXPECT_TRUE(AdoCancelUpdateRS(*vehicle));

  vehicle->MoveNext();
  user_->ExpectPart("Error ", Icon::None);
  EXPECT_EQ(AdoTestRecordLock(field(), true), 2);
  user_->ExpectPart("Error ", Icon::None);
  user_->ExpectPart("", Icon::Information);
  EXPECT_EQ(AdoTestRecordLock(field(), true, connection), 2);
  EXPECT_EQ(user_->Shown().back().text.find_first_not_of("-0123456789"), std::string::npos)
      << "a bare number";

  AdoListConnectedComputers(nullptr);
  UseAccess = false;
  AdoListConnectedComputers(connection);
  UseAccess = true;
}

TEST_F(GenericADOTest, TablesAndFieldsAreFoundByTheirExactNames) {
  const std::string path = MakeVehicles();
  const AdoConnectionPtr connection = Opened(path);
  EXPECT_TRUE(AdoTableExists(connection, "Vehicles"));
  EXPECT_FALSE(AdoTableExists(connection, "vehicles"));
  EXPECT_TRUE(AdoFieldExists(connection, "Vehicles", "Asset ID"));
  EXPECT_FALSE(AdoFieldExists(connection, "Vehicles", "asset id"));
  user_->Expect("Table 'Trailers' not found in database.", Icon::Information);
  EXPECT_FALSE(AdoFieldExists(connection, "Trailers", "ID"));

  EXPECT_EQ(AdoGetFieldType(FileConnect(path), "Vehicles", "Asset ID"), 202);
  EXPECT_EQ(AdoGetFieldType(FileConnect(path), "Vehicles", "ASSET ID"), 0);

  EXPECT_TRUE(AdoIgnoreDataError(3661));
  EXPECT_TRUE(AdoIgnoreDataError(16389));
  EXPECT_FALSE(AdoIgnoreDataError(0));
}

TEST_F(GenericADOTest, AddedColumnsAreNullOrTrue) {
  const AdoConnectionPtr connection = Opened(MakeVehicles());
  ado::Catalog catalog(connection);
  AdoAddColumn(catalog, "Vehicles", "Rented", 11);
  AdoAddColumn(catalog, "Vehicles", "New Oil Units", 4);
  AdoAddColumn(catalog, "Vehicles", "Remark", 202);
  const AdoRecordsetPtr vehicle =
      AdoOpenRecordset(connection, kFirstVehicle, ado::adOpenKeyset, ado::adLockPessimistic);
  EXPECT_EQ(vehicle->Get("Rented"), rt::Value(true));
  EXPECT_TRUE(vehicle->Get("New Oil Units").IsNull());
  vehicle->Set("Remark", std::string(255, 'x'));
  EXPECT_TRUE(AdoUpdateRS(*vehicle, false, false));

  user_->ExpectPart("Add failed in AdoAddColumn.", Icon::Critical);
  AdoAddColumn(catalog, "Vehicles", "Rented", 11);
}

}  // namespace
}  // namespace dw
