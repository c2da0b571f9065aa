#include <gtest/gtest.h>
#include <sqlite3.h>

#include <fstream>

#include "platform/store/Connection.h"
#include "platform/store/Cursor.h"
#include "platform/store/Engine.h"
#include "support/SmallFile.h"
#include "support/TempDirectory.h"

namespace {

using rt::Value;
using store::Cursor;
using store::Locking;
using test::AddAsset;
using test::Ask;
using test::ErrorOf;

class ConnectionTest : public testing::Test {
 protected:
  ConnectionTest() { test::MakeSmallFile(path); }
  test::TempDirectory directory;
  std::string path = directory.Path("DW.MDB");
};

TEST_F(ConnectionTest, KeepsEveryTypeAndTellsNullFromEmptyAndZero) {
  auto file = test::OpenSmallFile(path);
  auto table = Cursor::OpenTable(file, "Assets", Locking::Pessimistic);
  const auto field = [&](const char* name) { return table->FieldIndex(name); };
  table->AddNew();
  table->Set(field("Code"), "00123 é");
  table->Set(field("Cost"), *rt::Currency::Parse("1234567890123.4567"));
  table->Set(field("Miles"), 0.1f);
  table->Set(field("Bought"), rt::DateTime(2026, 2, 28, 13, 5, 9));
  table->Set(field("Active"), true);
  table->Set(field("Notes"), "007");
  table->Update();
  table->AddNew();
  table->Set(field("Code"), "");
  table->Set(field("Cost"), rt::Currency());
  table->Update();

  table->MoveFirst();
  EXPECT_EQ(table->Get(field("Code")), Value("00123 é"));
  EXPECT_EQ(table->Get(field("Cost")), Value(*rt::Currency::Parse("1234567890123.4567")));
  EXPECT_EQ(table->Get(field("Miles")), Value(0.1f));
  EXPECT_EQ(table->Get(field("Bought")), Value(rt::DateTime(2026, 2, 28, 13, 5, 9)));
  EXPECT_EQ(table->Get(field("Active")), Value(true));
  EXPECT_EQ(table->Get(field("Notes")), Value("007"));
  EXPECT_TRUE(table->Get(field("Year")).IsNull());
  table->MoveNext();
  EXPECT_EQ(table->Get(field("Code")), Value(""));
  EXPECT_EQ(table->Get(field("Cost")), Value(rt::Currency()));
  EXPECT_TRUE(table->Get(field("Bought")).IsNull());
  EXPECT_EQ(table->Get(field("Active")), Value(false));
  table->MoveNext();
  EXPECT_TRUE(table->AtEnd());
  EXPECT_EQ(ErrorOf([&] { table->MoveNext(); }), 3021);
  EXPECT_EQ(ErrorOf([&] { table->Get(0); }), 3021);
}

TEST_F(ConnectionTest, RefusesWhatAColumnCannotHold) {
  auto file = test::OpenSmallFile(path);
  AddAsset(file, "A");
  auto table = Cursor::OpenTable(file, "Assets", Locking::Pessimistic);
  const auto set = [&](const char* name, const Value& value) {
    return ErrorOf([&] { table->Set(table->FieldIndex(name), value); });
  };
  EXPECT_EQ(set("Code", "B"), 3020);
  table->Edit();
  EXPECT_EQ(set("Code", "ééééééééé1"), 0);
  EXPECT_EQ(set("Code", "ééééééééé12"), 3163);
  EXPECT_EQ(set("Year", "twelve"), 3421);
  EXPECT_EQ(set("Year", 40000), 6);
  EXPECT_EQ(set("Bought", "13/13/13"), 3421);
  EXPECT_EQ(set("ID", 77), 3251);
  table->CancelUpdate();
  EXPECT_EQ(ErrorOf([&] { file->Execute("UPDATE [Assets] SET [Code] = '12345678901'"); }), 3163);
  AddAsset(file, "B");
  EXPECT_EQ(ErrorOf([&] { AddAsset(file, "b"); }), 3022);
  EXPECT_EQ(ErrorOf([&] { table->FieldIndex("Nothing"); }), 3265);
  EXPECT_EQ(Ask(file, "SELECT COUNT(*) FROM Assets"), Value(2));
}

TEST_F(ConnectionTest, AnAutoNumberNeverComesBack) {
  auto file = test::OpenSmallFile(path);
  AddAsset(file, "A");
  const auto second = AddAsset(file, "B");
  file->Execute("DELETE * FROM [Assets] WHERE [ID] = " + std::to_string(second));
  EXPECT_EQ(AddAsset(file, "C"), second + 1);
  file->Execute("DELETE * FROM [Assets]");
  file.reset();
  file = test::OpenSmallFile(path);
  EXPECT_EQ(AddAsset(file, "D"), second + 2);

  // A number that somebody has read is used up, whether the record is stored or not.
  auto table = Cursor::OpenTable(file, "Assets", Locking::Pessimistic);
  table->AddNew();
  const auto taken = table->Get(0).AsLong();
  table->CancelUpdate();
  EXPECT_EQ(taken, second + 3);
  EXPECT_EQ(AddAsset(file, "E"), second + 4);
}

TEST_F(ConnectionTest, TransactionsNestAndRollBackInParts) {
  auto file = test::OpenSmallFile(path);
  const auto codes = [&] {
    std::string all;
    for (auto rows = Cursor::OpenQuery(file, "SELECT Code FROM Assets", Locking::ReadOnly); !rows->AtEnd();
         rows->MoveNext())
      all += rows->Get(0).AsText();
    return all;
  };
  file->BeginTrans();
  AddAsset(file, "A");
  file->BeginTrans();
  AddAsset(file, "B");
  EXPECT_EQ(codes(), "AB");
  file->RollbackTrans();
  EXPECT_EQ(codes(), "A");
  file->BeginTrans();
  AddAsset(file, "C");
  file->CommitTrans();
  file->CommitTrans();
  EXPECT_EQ(codes(), "AC");
  file->BeginTrans();
  file->Execute("DELETE * FROM Assets");
  EXPECT_EQ(codes(), "");
  file->RollbackTrans();
  EXPECT_EQ(codes(), "AC");
  EXPECT_EQ(ErrorOf([&] { file->RollbackTrans(); }), 3034);
  EXPECT_EQ(ErrorOf([&] { file->CommitTrans(); }), 3034);
}

TEST_F(ConnectionTest, ATransactionSurvivesAWaitWithoutHoldingTheFile) {
  auto file = test::OpenSmallFile(path);
  auto other = test::OpenSmallFile(path);
  const auto first = AddAsset(file, "A");
  file->BeginTrans();
  const auto added = AddAsset(file, "B");
  file->Execute("UPDATE Assets SET [Year] = 1999 WHERE [ID] = " + std::to_string(first));
  store::YieldFiles();  // as before a message box
  const auto meanwhile = AddAsset(other, "C");
  EXPECT_EQ(Ask(other, "SELECT [Year] FROM Assets WHERE [Code] = 'A'"), Value(std::int16_t{2020}));
  EXPECT_EQ(ErrorOf([&] { other->Execute("UPDATE Assets SET [Year] = 1 WHERE [Code] = 'A'"); }), 3260);
  EXPECT_EQ(Ask(file, "SELECT [ID] FROM Assets WHERE [Code] = 'B'"), Value(added));
  file->CommitTrans();
  EXPECT_EQ(Ask(other, "SELECT [Year] FROM Assets WHERE [Code] = 'A'"), Value(std::int16_t{1999}));
  EXPECT_EQ(Ask(other, "SELECT [ID] FROM Assets WHERE [Code] = 'B'"), Value(added));
  EXPECT_NE(meanwhile, added);
  EXPECT_EQ(other->Execute("UPDATE Assets SET [Year] = 1 WHERE [Code] = 'A'"), 1);
}

TEST_F(ConnectionTest, ChangesTablesInPlace) {
  auto file = test::OpenSmallFile(path);
  AddAsset(file, "A");
  file->Execute("ALTER TABLE [Assets] ADD COLUMN [New Miles] SINGLE");
  file->Execute("UPDATE [Assets] SET [New Miles] = [Year]");
  EXPECT_EQ(ErrorOf([&] { file->Execute("ALTER TABLE [Assets] DROP COLUMN [Year]"); }), 3280);
  file->DropIndex("Assets", "By Year");
  file->Execute("ALTER TABLE [Assets] DROP COLUMN [Year]");
  file->RenameColumn("Assets", "New Miles", "Year");
  EXPECT_EQ(Ask(file, "SELECT [Year] FROM Assets"), Value(2020.0f));
  const auto schema = file->Tables();
  const auto* assets = schema->Find("assets");
  ASSERT_NE(assets, nullptr);
  EXPECT_EQ(assets->columns[1].size, 10);
  ASSERT_EQ(assets->indexes.size(), 2u);
  EXPECT_TRUE(assets->indexes[0].primary);
  EXPECT_EQ(assets->indexes[1].name, "Code");
  file->AddRelation({"R1", "Assets", "Lines", 2, {{"ID", "Asset"}}});
  ASSERT_EQ(file->Relations().size(), 1u);
  EXPECT_EQ(file->Relations()[0].columns[0].second, "Asset");
  EXPECT_EQ(ErrorOf([&] { file->AddRelation({"r1", "Assets", "Lines", 2, {{"ID", "Asset"}}}); }), 3012);
  EXPECT_TRUE(file->CheckIntegrity().empty());

  auto other = test::OpenSmallFile(path);
  auto held = Cursor::OpenTable(other, "Assets", Locking::Pessimistic);
  held->Edit();
  EXPECT_EQ(ErrorOf([&] { file->Execute("DROP TABLE [Assets]"); }), 3009);
  held->CancelUpdate();
  file->Execute("DROP TABLE [Assets]");
  EXPECT_EQ(ErrorOf([&] { Cursor::OpenTable(other, "Assets", Locking::ReadOnly)->Get(0); }) != 0, true);
}

TEST_F(ConnectionTest, TellsApartWhatIsNoDataFileAndLeavesItAlone) {
  const auto content = [](const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  };
  const auto make = [&](const std::string& name, const std::string& text) {
    std::ofstream(directory.Path(name), std::ios::binary) << text;
    return directory.Path(name);
  };
  const auto problem = [](const std::string& name) {
    try {
      store::Connection::Open({name});
    } catch (const store::StoreError& error) {
      return std::to_string(error.Number()) + " " + error.what();
    }
    return std::string("opened");
  };
  const std::string text = make("text.mdb", std::string(5000, 'x'));
  EXPECT_NE(problem(text).find("3049"), std::string::npos) << problem(text);
  EXPECT_NE(problem(text).find("not a data file"), std::string::npos);
  const std::string empty = make("empty.mdb", "");
  EXPECT_NE(problem(empty).find("file is empty"), std::string::npos) << problem(empty);
  std::string damaged = content(path);
  for (std::size_t i = 4096; i < damaged.size(); ++i) damaged[i] = 'z';
  const std::string broken = make("broken.mdb", damaged);
  EXPECT_NE(problem(directory.Path("none.mdb")).find("3024"), std::string::npos);
  EXPECT_NE(problem(directory.Path("none/none.mdb")).find("3044"), std::string::npos);
  EXPECT_NE(problem(directory.Path("")).find("is a directory"), std::string::npos)
      << problem(directory.Path(""));
  EXPECT_EQ(ErrorOf([&] {
              auto file = store::Connection::Open({broken});
              Ask(file, "SELECT Code FROM Assets");
            }),
            3343);
  EXPECT_EQ(ErrorOf([&] { store::Connection::Create(text); }), 3204);
  EXPECT_EQ(content(text), std::string(5000, 'x'));
  EXPECT_EQ(content(empty), "");
  EXPECT_EQ(content(broken), damaged);
}

TEST_F(ConnectionTest, ExpectationsOfIndexesStandBesideEachOtherAndSurviveCompaction) {
  {
    auto file = test::OpenSmallFile(path);
    file->Expect("Assets", "Code", {1000, 1});
    file->Expect("Assets", "By Year", {1000, 50});
    file->Expect("Assets", "By Year", {2000, 60});
  }
  const std::string target = directory.Path("compact.tmp");
  store::Engine::Of(path).Compact(path, target)->TakePlace();
  {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
    std::string found;
    sqlite3_exec(
        db, "SELECT idx || '=' || stat FROM sqlite_stat1 ORDER BY idx",
        [](void* all, int, char** row, char**) {
          *static_cast<std::string*>(all) += std::string(row[0]) + ";";
          return 0;
        },
        &found, nullptr);
    sqlite3_close(db);
    EXPECT_EQ(found, "Assets.By Year=2000 60;Assets.Code=1000 1;");
  }
}

TEST_F(ConnectionTest, CompactsOnlyAFileThatNobodyHasOpen) {
  const std::string target = directory.Path("compact.tmp");
  {
    auto file = test::OpenSmallFile(path);
    file->BeginTrans();
    for (int i = 0; i < 2000; ++i) AddAsset(file, std::to_string(i));
    file->CommitTrans();
    file->Execute("DELETE * FROM Assets WHERE [ID] > 10");
    EXPECT_EQ(ErrorOf([&] { (void)store::Engine::Of(path).Compact(path, target); }), 3196);
  }
  const auto before = std::filesystem::file_size(path);
  auto closed = store::Engine::Of(path).Compact(path, target);
  EXPECT_LT(std::filesystem::file_size(target), before / 2);
  EXPECT_EQ(ErrorOf([&] { test::OpenSmallFile(path); }), 3356);
  closed->TakePlace();
  EXPECT_FALSE(std::filesystem::exists(target));
  closed.reset();
  auto file = test::OpenSmallFile(path);
  EXPECT_EQ(Ask(file, "SELECT COUNT(*) FROM Assets"), Value(10));
  EXPECT_EQ(AddAsset(file, "next"), 2001);
}

}  // namespace
