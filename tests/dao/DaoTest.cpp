#include "platform/dao/Dao.h"

#include <gtest/gtest.h>

#include "support/SmallFile.h"
#include "support/TempDirectory.h"

namespace {

using dao::RecordsetType;
using rt::Value;
using test::ErrorOf;

class DaoTest : public testing::Test {
 protected:
  DaoTest() {
    test::MakeSmallFile(path);
    workspace = dao::DBEngine::CreateWorkspace("W1", "admin", "");
    database = workspace->OpenDatabase(path);
    for (const char* code : {"A", "B", "C"}) test::AddAsset(Store(), code);
  }
  std::shared_ptr<store::Connection> Store() { return database->Connection().shared_from_this(); }
  test::TempDirectory directory;
  std::string path = directory.Path("DW.MDB");
  std::shared_ptr<dao::Workspace> workspace;
  std::shared_ptr<dao::Database> database;
};

TEST_F(DaoTest, TransactionsOfAWorkspaceSpanItsDatabases) {
  const std::string second = directory.Path("DW_LISTS.MDB");
  test::MakeSmallFile(second);
  auto other = workspace->OpenDatabase(second);
  workspace->BeginTrans();
  database->Execute("UPDATE Assets SET Notes = 'x'");
  other->Execute("INSERT INTO Assets (Code) VALUES ('Z')");
  workspace->RollbackTrans();
  EXPECT_EQ(database->OpenRecordset("SELECT * FROM Assets WHERE Notes = 'x'")->RecordCount(), 0);
  EXPECT_TRUE(other->OpenRecordset("Assets")->AtEnd());
  EXPECT_EQ(ErrorOf([&] { workspace->CommitTrans(); }), 3034);
  workspace->BeginTrans();
  other->Execute("INSERT INTO Assets (Code) VALUES ('Z')");
  workspace->Close();
  EXPECT_EQ(ErrorOf([&] { other->Execute("DELETE * FROM Assets"); }), 3265);
  auto again = dao::DBEngine::CreateWorkspace("W2", "admin", "")->OpenDatabase(second);
  EXPECT_TRUE(again->OpenRecordset("Assets")->AtEnd()) << "closing the workspace rolls back its transaction";
}

TEST_F(DaoTest, TableDefinitionsAreBuiltChangedAndAskedFor) {
  dao::TableDef made("Made");
  made.AppendField({"ID", dao::dbLong, 0, dao::dbAutoIncrField});
  made.AppendField({"Name", dao::dbText, 20, 0, false, true});
  made.AppendField({"Strict", dao::dbText, 5});
  made.AppendIndex({"PrimaryKey", {"ID"}, true, true, true});
  made.AppendIndex({"By Name", {"Name", "ID"}, false, true, true});
  database->AppendTable(made);
  EXPECT_EQ(ErrorOf([&] { database->AppendTable(made); }), 3010);
  auto stored = database->Table("Made");
  stored.AppendField({"Added", dao::dbCurrency});
  const auto fields = stored.Fields();
  ASSERT_EQ(fields.size(), 4u);
  EXPECT_EQ(fields[0].attributes, dao::dbAutoIncrField);
  EXPECT_EQ(fields[1].size, 20);
  EXPECT_TRUE(fields[1].allowZeroLength);
  EXPECT_FALSE(fields[2].allowZeroLength);
  EXPECT_EQ(fields[3].type, dao::dbCurrency);
  auto rows = database->OpenRecordset("Made", RecordsetType::Table);
  rows->AddNew();
  rows->Set("Name", "");
  EXPECT_EQ(ErrorOf([&] { rows->Set("Strict", ""); }), 3315);
  rows->Update();
  EXPECT_EQ(ErrorOf([&] { stored.DeleteField("Name"); }), 3280);
  stored.DeleteIndex("By Name");
  stored.RenameField("Name", "Title");
  stored.DeleteField("Added");
  EXPECT_EQ(stored.Fields().size(), 3u);
  EXPECT_EQ(stored.Indexes().size(), 1u);
  database->DeleteTable("Made");
  EXPECT_EQ(ErrorOf([&] { database->Table("Made"); }), 3265);
}

TEST_F(DaoTest, RecordsetsOpenOnNamesBracketsAndQueries) {
  EXPECT_EQ(database->OpenRecordset("[Assets]")->RecordCount(), 3);
  EXPECT_EQ(database->OpenRecordset("SELECT Code FROM Assets", RecordsetType::Snapshot)->RecordCount(), 3);
  EXPECT_EQ(ErrorOf([&] { database->OpenRecordset("SELECT Code FROM Assets", RecordsetType::Table); }), 3078);
  EXPECT_EQ(ErrorOf([&] { database->OpenRecordset("Nothing", RecordsetType::Table); }), 3078);
  EXPECT_EQ(ErrorOf([&] {
              database->OpenRecordset("Assets", RecordsetType::Dynaset, dao::Access::ReadOnly)->Edit();
            }),
            3027);
  dao::TableDef odd("Select and Sort");
  odd.AppendField({"ID", dao::dbLong, 0, dao::dbAutoIncrField});
  database->AppendTable(odd);
  EXPECT_TRUE(database->OpenRecordset("Select and Sort", RecordsetType::Table)->AtEnd());
  auto found = database->OpenRecordset("SELECT * FROM Assets");
  found->FindFirst("[ID]=2");
  EXPECT_EQ(found->Get("Code"), Value("B"));
  const auto mark = found->Bookmark();
  found->MoveLast();
  found->SetBookmark(mark);
  EXPECT_EQ(found->Get("Code"), Value("B"));
  database->Close();
  EXPECT_EQ(ErrorOf([&] { found->Get("Code"); }), 3265);
}

TEST_F(DaoTest, AReadOnlyDatabaseRefusesChanges) {
  auto reader = workspace->OpenDatabase(path, false, true);
  EXPECT_EQ(ErrorOf([&] { reader->Execute("DELETE * FROM Assets"); }), 3027);
  EXPECT_EQ(ErrorOf([&] { reader->OpenRecordset("Assets")->Edit(); }), 3027);
  EXPECT_EQ(reader->OpenRecordset("Assets")->RecordCount(), 3);
}

}  // namespace
