#include "data/GenericDAO.h"

#include "data/DataTest.h"

namespace dw {
namespace {

using dwtest::OtherWorkstation;
using screen::Answer;
using screen::Buttons;
using screen::Icon;

class GenericDAOTest : public dwtest::DataTest {
 protected:
  /// Opens the file and its first vehicle.
  dao::Recordset& OpenVehicle(const std::string& path) {
    int error = -1;
    EXPECT_TRUE(DaoOpenDatabase(path, false, DataUserID, DataPassword, workspace_, database_, error));
    recordset_ = database_->OpenRecordset("SELECT * FROM [Vehicles] WHERE [ID] = 1");
    return *recordset_;
  }
  /// The same with a cursor that holds the record only during Update.
  dao::Recordset& OpenVehicleOptimistically(const std::string& path) {
    OpenVehicle(path);
    recordset_ = std::make_shared<dao::Recordset>(
        store::Cursor::OpenQuery(store::Connection::Open({path}), "SELECT * FROM [Vehicles] WHERE [ID] = 1",
                                 store::Locking::Optimistic));
    return *recordset_;
  }
  /// The other workstation lets go during the `last` wait; until then, a box comes at every eleventh failed
  /// try.
  void LetGoAfter(int last) {
    for (int boxes = last / 11; boxes > 0; --boxes) user_->ExpectPart(kAdvice, Icon::Information);
    user_->onBox = [this](const screen::Box&) { EXPECT_EQ(user_->SleepCount() % 11, 0); };
    user_->onSleep = [this, last](int milliseconds) {
      EXPECT_EQ(milliseconds, 1000);
      EXPECT_EQ(user_->CurrentPointer(), screen::Pointer::Hourglass);
      if (user_->SleepCount() == last) other_.LetGo();
    };
  }
  /// Each box names who holds the record.
  void CheckWaited(int waits) {
    EXPECT_EQ(user_->SleepCount(), waits);
    EXPECT_EQ(user_->CurrentPointer(), screen::Pointer::Normal);
    for (const screen::Box& box : user_->Shown()) {
      EXPECT_NE(box.text.find("user 'Bert' on machine 'OFFICE'"), std::string::npos) << box.text;
      EXPECT_TRUE(box.text.ends_with(kAdvice)) << box.text;
    }
  }

  static constexpr const char* kAdvice =
      "\nCheck this person's workstation to make sure they exit their update.Then click OK to continue.";
  DaoWorkspacePtr workspace_;
  DaoDatabasePtr database_;
  DaoRecordsetPtr recordset_;
};

TEST_F(GenericDAOTest, EditWaitsForATransaction) {
  const std::string path = MakeVehicles();
  other_.Keep(path, OtherWorkstation::Keeps::RecordInTransaction);
  dao::Recordset& vehicle = OpenVehicle(path);
  LetGoAfter(23);
  int events = 0;
  user_->onEvents = [&] { ++events; };
  EXPECT_EQ(DaoEditRecord(vehicle), 0);
  EXPECT_TRUE(vehicle.Editing());
  EXPECT_EQ(events, 23);
  CheckWaited(23);
}

TEST_F(GenericDAOTest, EditDoesNotWaitForAWindow) {
  const std::string path = MakeVehicles();
  other_.Keep(path, OtherWorkstation::Keeps::Record);
  dao::Recordset& vehicle = OpenVehicle(path);
  user_->ExpectPart("Unknown error #3218 during record edit.", Icon::Critical);
  EXPECT_EQ(DaoEditRecord(vehicle), 3218);
  EXPECT_EQ(user_->SleepCount(), 0);
  EXPECT_FALSE(vehicle.Editing());
  EXPECT_TRUE(user_->Shown().front().text.ends_with(
      "\n\n** Update Failed **\nContact your System Administrator if this continues."));
}

TEST_F(GenericDAOTest, UpdateWaits) {
  const std::string path = MakeVehicles();
  other_.Keep(path, OtherWorkstation::Keeps::Record);
  dao::Recordset& vehicle = OpenVehicleOptimistically(path);
  vehicle.Edit();
  vehicle.Set("Asset ID", "VAN 1");
  LetGoAfter(12);
  DaoUpdateRecord(vehicle);
  CheckWaited(12);
  CloseAll(recordset_, database_, workspace_);
  EXPECT_EQ(AssetOf(path, 1), "VAN 1");
}

TEST_F(GenericDAOTest, DeleteWaits) {
  const std::string path = MakeVehicles();
  other_.Keep(path, OtherWorkstation::Keeps::Record);
  dao::Recordset& vehicle = OpenVehicle(path);
  LetGoAfter(11);
  DaoDeleteRecord(vehicle);
  CheckWaited(11);
  CloseAll(recordset_, database_, workspace_);
  EXPECT_EQ(AssetOf(path, 1), "");
  EXPECT_EQ(AssetOf(path, 2), "TRUCK 2");
}

TEST_F(GenericDAOTest, AHoldOfThisProgramIsNotWaitedFor) {
  const std::string path = MakeVehicles();
  user_->onSleep = [](int) { throw std::runtime_error("it waits"); };
  const auto window = store::Connection::Open({path});
  window->BeginTrans();
  window->Execute("UPDATE [Vehicles] SET [Odometer] = 200 WHERE [ID] = 1");
  dao::Recordset& vehicle = OpenVehicle(path);
  user_->Expect(kOwnWindow, Icon::Exclamation);
  EXPECT_EQ(DaoEditRecord(vehicle), store::kRecordLocked);
  user_->Expect(kOwnWindow, Icon::Exclamation);
  DaoDeleteRecord(vehicle);
  dao::Recordset& later = OpenVehicleOptimistically(path);
  later.Edit();
  later.Set("Odometer", 300);
  user_->Expect(kOwnWindow, Icon::Exclamation);
  DaoUpdateRecord(later);
  EXPECT_TRUE(later.Editing());
  window->RollbackTrans();
  DaoUpdateRecord(later);
  EXPECT_FALSE(later.Editing());
  EXPECT_EQ(AssetOf(path, 1), "TRUCK 1");
}

TEST_F(GenericDAOTest, ADeadWorkstationKeepsNobodyWaiting) {
  const std::string path = MakeVehicles();
  other_.Keep(path, OtherWorkstation::Keeps::RecordInTransaction);
  dao::Recordset& vehicle = OpenVehicle(path);
  user_->onSleep = [&](int) { other_.Die(); };
  EXPECT_EQ(DaoEditRecord(vehicle), 0);
  EXPECT_EQ(user_->SleepCount(), 1);
  EXPECT_EQ(vehicle.Get("Odometer"), rt::Value(100)) << "the uncommitted work of the dead process is gone";
}

TEST_F(GenericDAOTest, UnknownErrorsEndTheWaitingOperationsAtOnce) {
  const std::string path = MakeVehicles();
  dao::Recordset& vehicle = OpenVehicle(path);
  user_->ExpectPart("Unknown error #3020 during record update.", Icon::Critical);
  DaoUpdateRecord(vehicle);
  vehicle.MoveNext();
  user_->ExpectPart("Unknown error #3021 during record delete.", Icon::Critical);
  DaoDeleteRecord(vehicle);
  EXPECT_TRUE(user_->Shown().back().text.ends_with(
      "\n\n** Update Failed **\nContact your System Administrator if this continues."));
  EXPECT_EQ(user_->SleepCount(), 0);
}

TEST_F(GenericDAOTest, GettingALockedRecordIsToldOnce) {
  const std::string path = MakeVehicles();
  const std::pair<OtherWorkstation::Keeps, int> cases[] = {
      {OtherWorkstation::Keeps::Record, store::kEditLocked},
      {OtherWorkstation::Keeps::RecordInTransaction, store::kRecordLocked}};
  for (const auto& [keeps, number] : cases) {
    other_.Keep(path, keeps);
    dao::Recordset& vehicle = OpenVehicle(path);
    user_->Expect("Record is currently locked elsewhere.", Icon::Information);
    EXPECT_EQ(DaoGetRecord(vehicle), number);
    EXPECT_EQ(vehicle.Get("Asset ID"), rt::Value("TRUCK 1")) << "it is shown all the same";
    CloseAll(recordset_, database_, workspace_);
    other_.LetGo();
  }
  dao::Recordset& vehicle = OpenVehicle(path);
  EXPECT_EQ(DaoGetRecord(vehicle), 0);
  EXPECT_TRUE(vehicle.Editing());
}

TEST_F(GenericDAOTest, OtherFailuresAskForAnotherTry) {
  OpenVehicle(MakeVehicles());
  recordset_ = database_->OpenRecordset("Vehicles", dao::RecordsetType::Dynaset, dao::Access::ReadOnly);
  for (const Answer answer : {Answer::Retry, Answer::Cancel}) {
    user_->ExpectPart("Unable to add new record. Contact your System Administrator if this continues.",
                      Icon::Critical);
    user_->Expect("Try again to add record?", Icon::Exclamation, Buttons::RetryCancel, answer);
  }
  DaoAddRecord(*recordset_);

  for (const Answer answer : {Answer::Retry, Answer::Cancel}) {
    user_->ExpectPart("Error #", Icon::Critical);
    user_->Expect("Try again to get record?", Icon::Exclamation, Buttons::RetryCancel, answer);
  }
  EXPECT_NE(DaoGetRecord(*recordset_), 0);
}

TEST_F(GenericDAOTest, AddedRecordsAreStored) {
  const std::string path = MakeVehicles();
  dao::Recordset& vehicles = OpenVehicle(path);
  DaoAddRecord(vehicles);
  vehicles.Set("Asset ID", "VAN 4");
  DaoUpdateRecord(vehicles);
  CloseAll(recordset_, database_, workspace_);
  EXPECT_EQ(AssetOf(path, 4), "VAN 4");
}

TEST_F(GenericDAOTest, DefinitionsAreBuiltAndFoundByTheirExactNames) {
  OpenVehicle(MakeVehicles());
  dao::TableDef built("Maintenance_Performed");
  AddAutoField(built, "ID");
  AddField(built, "Cost", dao::dbCurrency);
  AddField(built, "Notes", dao::dbMemo);
  AddTextField(built, "Created_By", 20);
  database_->AppendTable(built);

  EXPECT_TRUE(DaoTableExists(*database_, "Maintenance_Performed"));
  EXPECT_FALSE(DaoTableExists(*database_, "maintenance_performed"));
  dao::TableDef table = database_->Table("Maintenance_Performed");
  EXPECT_TRUE(DaoFieldExists(table, "Created_By"));
  EXPECT_FALSE(DaoFieldExists(table, "CREATED_BY"));
  const std::vector<dao::Field> fields = table.Fields();
  ASSERT_EQ(fields.size(), 4U);
  EXPECT_EQ(fields[0].attributes & dao::dbAutoIncrField, dao::dbAutoIncrField);
  EXPECT_EQ(fields[1].type, dao::dbCurrency);
  EXPECT_EQ(fields[2].type, dao::dbMemo);
  EXPECT_TRUE(fields[2].allowZeroLength);
  EXPECT_EQ(fields[3].size, 20);
  EXPECT_TRUE(fields[3].allowZeroLength);

  // Adding the same column again shows a box and throws nothing.
  user_->ExpectPart("Unable to add the field 'Cost' to table 'Maintenance_Performed'.", Icon::Critical);
  AddField(table, "Cost", dao::dbCurrency);
}

}  // namespace
}  // namespace dw
