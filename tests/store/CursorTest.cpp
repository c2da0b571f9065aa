#include <gtest/gtest.h>

#include "platform/store/Cursor.h"
#include "support/SmallFile.h"
#include "support/TempDirectory.h"

namespace {

using rt::Value;
using store::Cursor;
using store::Locking;
using test::AddAsset;
using test::Ask;
using test::ErrorOf;

class CursorTest : public testing::Test {
 protected:
  CursorTest() {
    test::MakeSmallFile(path);
    file = test::OpenSmallFile(path);
    file->BeginTrans();
    for (int i = 0; i < 300; ++i) AddAsset(file, "A" + std::to_string(i), 2000 + i % 3);
    file->CommitTrans();
  }
  std::unique_ptr<Cursor> Query(const std::string& sql, Locking locking = Locking::Pessimistic) {
    return Cursor::OpenQuery(file, sql, locking);
  }
  test::TempDirectory directory;
  std::string path = directory.Path("DW.MDB");
  std::shared_ptr<store::Connection> file;
};

TEST_F(CursorTest, WalksBothWaysAndComesBackByKey) {
  auto rows = Query("SELECT * FROM Assets ORDER BY [Year] DESC, Code");
  EXPECT_EQ(rows->Count(), 300);
  EXPECT_EQ(rows->Get(rows->FieldIndex("Code")), Value("A101"));
  const auto mark = rows->Mark();
  int seen = 0;
  for (; !rows->AtEnd(); rows->MoveNext()) ++seen;
  EXPECT_EQ(seen, 300);
  rows->MovePrevious();
  EXPECT_EQ(rows->Get(rows->FieldIndex("Year")), Value(std::int16_t{2000}));
  rows->GoTo(mark);
  EXPECT_EQ(rows->Position(), 0);
  rows->MovePrevious();
  EXPECT_TRUE(rows->AtBegin());
  EXPECT_EQ(ErrorOf([&] { rows->MovePrevious(); }), 3021);

  // Without ORDER BY, rows come in the order of their IDs, even if an index would return another order.
  auto plain = Query("SELECT Code FROM Assets WHERE [Year] >= 2000");
  EXPECT_EQ(plain->Get(0), Value("A0"));
  plain->MoveNext();
  EXPECT_EQ(plain->Get(0), Value("A1"));
  EXPECT_EQ(Query("SELECT TOP 25 * FROM Assets")->Count(), 25);
  EXPECT_TRUE(Query("SELECT * FROM Assets WHERE ID = -1")->AtEnd());
  EXPECT_TRUE(Query("SELECT * FROM Assets WHERE ID = -1")->AtBegin());
}

TEST_F(CursorTest, ASetSeesDeletionsAdditionsAndChangesAsItsKeysDo) {
  auto rows = Query("SELECT * FROM Assets ORDER BY ID");
  auto others = test::OpenSmallFile(path);
  others->Execute("DELETE * FROM Assets WHERE Code = 'A1'");
  others->Execute("UPDATE Assets SET [Year] = 1900 WHERE Code = 'A2'");
  AddAsset(others, "NEW");
  EXPECT_EQ(rows->Count(), 300);
  rows->MoveNext();
  EXPECT_EQ(ErrorOf([&] { rows->Get(0); }), 3167);
  EXPECT_EQ(ErrorOf([&] { rows->Edit(); }), 3167);
  rows->MoveNext();
  rows->Edit();
  EXPECT_EQ(rows->Get(rows->FieldIndex("Year")), Value(std::int16_t{1900}));
  rows->CancelUpdate();
  rows->Delete();
  EXPECT_EQ(ErrorOf([&] { rows->Get(0); }), 3021);
  rows->MoveNext();
  EXPECT_EQ(rows->Get(rows->FieldIndex("Code")), Value("A3"));
  rows->AddNew();
  rows->Set(rows->FieldIndex("Code"), "MINE");
  rows->Update();
  EXPECT_EQ(rows->Get(rows->FieldIndex("Code")), Value("A3"));
  rows->GoTo(rows->LastModified());
  EXPECT_EQ(rows->Get(rows->FieldIndex("Code")), Value("MINE"));
  rows->Requery();
  EXPECT_EQ(rows->Count(), 300);
}

TEST_F(CursorTest, RowsThatAreReadTogetherKeepTheirOrderAndTheirGaps) {
  // Of two rows of one table, of which the left one is missing once.
  auto rows = Query(
      "SELECT a.Code, b.Code FROM Assets AS a RIGHT JOIN Assets AS b ON a.ID = b.ID - 1 WHERE b.ID <= 290 "
      "ORDER BY b.ID DESC");
  auto plain = Query("SELECT Code, '=' & Code FROM Assets WHERE [Year] <> 1 ORDER BY ID DESC");
  test::OpenSmallFile(path)->Execute("DELETE * FROM Assets WHERE Code IN ('A5', 'A250')");
  std::string missing;
  for (int i = 299; !plain->AtEnd(); plain->MoveNext(), --i) {
    const std::string code = "A" + std::to_string(i);
    Value first, second;
    const int error = ErrorOf([&] { first = plain->Get(0), second = plain->Get(1); });
    if (error != 0) {
      missing += code + " " + std::to_string(error) + " ";
      continue;
    }
    EXPECT_EQ(first.Shown() + second.Shown(), code + "=" + code);
  }
  EXPECT_EQ(missing, "A250 3167 A5 3167 ");
  missing.clear();
  for (int i = 289; !rows->AtEnd(); rows->MoveNext(), --i) {
    Value left, right;
    if (ErrorOf([&] { left = rows->Get(0), right = rows->Get(1); }) == 3167) {
      missing += std::to_string(i) + " ";
      continue;
    }
    EXPECT_EQ(right, i == 5 || i == 250 ? Value(rt::Null{}) : Value("A" + std::to_string(i)));
    EXPECT_EQ(left, i == 0 ? Value(rt::Null{}) : Value("A" + std::to_string(i - 1)));
  }
  EXPECT_EQ(missing, "251 6 ");
}

TEST_F(CursorTest, JoinsNameDoubledColumnsAndKeepRowsWithoutPartner) {
  file->Execute("INSERT INTO Lines (Asset, Code) VALUES (1, 'L1')");
  file->Execute("INSERT INTO Lines (Asset, Code) VALUES (999, 'L2')");
  auto rows =
      Query("SELECT * FROM Lines LEFT JOIN Assets ON Lines.Asset = Assets.ID ORDER BY [Assets.Code] DESC");
  EXPECT_EQ(rows->Count(), 2);
  EXPECT_EQ(rows->Get(rows->FieldIndex("Lines.Code")), Value("L1"));
  EXPECT_EQ(rows->Get(rows->FieldIndex("Assets.Code")), Value("A0"));
  EXPECT_EQ(rows->Get(rows->FieldIndex("Year")), Value(std::int16_t{2000}));
  EXPECT_EQ(ErrorOf([&] { rows->FieldIndex("Code"); }), 3265);
  rows->MoveNext();
  EXPECT_EQ(rows->Get(rows->FieldIndex("Lines.ID")), Value(2));
  EXPECT_TRUE(rows->Get(rows->FieldIndex("Assets.ID")).IsNull());
  EXPECT_EQ(Query("SELECT * FROM Lines INNER JOIN Assets ON Lines.Asset = Assets.ID")->Count(), 1);
  rows->MoveFirst();
  rows->Edit();
  rows->Set(rows->FieldIndex("Lines.Code"), "LX");
  EXPECT_EQ(ErrorOf([&] { rows->Set(rows->FieldIndex("Year"), 1); }), 3251);
  rows->Update();
  EXPECT_EQ(Ask(file, "SELECT Code FROM Lines WHERE ID = 1"), Value("LX"));
}

TEST_F(CursorTest, TablesSeekOnTheirIndexes) {
  auto table = Cursor::OpenTable(file, "Assets", Locking::Pessimistic);
  table->SetIndex("Code");
  table->Seek({Value("a17")});
  ASSERT_FALSE(table->NoMatch());
  EXPECT_EQ(table->Get(table->FieldIndex("ID")), Value(18));
  table->MoveNext();
  EXPECT_EQ(table->Get(table->FieldIndex("Code")), Value("A170"));
  table->Seek({Value("B")});
  EXPECT_TRUE(table->NoMatch());
  table->SetIndex("PrimaryKey");
  table->Seek({Value(5)});
  EXPECT_EQ(table->Get(table->FieldIndex("Code")), Value("A4"));
  table->MoveLast();
  EXPECT_EQ(table->Get(table->FieldIndex("Code")), Value("A299"));
  EXPECT_EQ(ErrorOf([&] { table->SetIndex("Nothing"); }), 3015);
  table->MoveFirst();
  table->FindFirst("[Year]=2002");
  EXPECT_EQ(table->Get(table->FieldIndex("ID")), Value(3));
  table->FindNext("[Year]=2002");
  EXPECT_EQ(table->Get(table->FieldIndex("ID")), Value(6));
  table->SetIndex("By Year");
  table->FindFirst("Code LIKE 'A1*'");
  EXPECT_EQ(table->Get(table->FieldIndex("Code")), Value("A12")) << "the first one of the lowest year";
  table->FindNext("Code = 'A1'");
  EXPECT_EQ(table->Get(table->FieldIndex("ID")), Value(2));
  table->FindNext("Code = 'A102'");
  EXPECT_TRUE(table->NoMatch());
  table->SetIndex("PrimaryKey");
  table->FindNext("ID = 6");
  table->FindFirst("[Year]=1");
  EXPECT_TRUE(table->NoMatch());
  EXPECT_EQ(table->Get(table->FieldIndex("ID")), Value(6));
}

TEST_F(CursorTest, ANullInAKeyFindsTheRecordWithNull) {
  const auto code = [](Cursor& rows) { return rows.FieldIndex("Code"); };
  const auto addMiles = [&](Cursor& rows) {
    rows.Seek({Value()});
    if (rows.NoMatch())
      rows.AddNew();
    else
      rows.Edit();
    const int miles = rows.FieldIndex("Miles");
    rows.Set(code(rows), Value());
    rows.Set(miles, rt::Add(rows.Get(miles).IsNull() ? Value(0.0F) : rows.Get(miles), Value(2.0F)));
    rows.Update();
  };
  auto table = Cursor::OpenTable(file, "Assets", Locking::Pessimistic);
  table->SetIndex("Code");
  table->Seek({Value()});
  EXPECT_TRUE(table->NoMatch());
  addMiles(*table);
  addMiles(*table);
  // The same row inside a group, where rows are kept in memory.
  for (int round = 0; round < 2; ++round) {
    file->EnterGroup();
    for (int i = 0; i < 2; ++i) {
      file->BeginTrans();
      addMiles(*table);
      file->CommitTrans(store::Commit::WithGroup);
    }
    file->FinishGroup();
  }
  EXPECT_EQ(Ask(file, "SELECT COUNT(*) FROM Assets WHERE Code IS NULL"), Value(1));
  EXPECT_EQ(Ask(file, "SELECT Miles FROM Assets WHERE Code IS NULL"), Value(12.0F));

  // The group creates the row itself; a key with other letter case finds the same row.
  file->Execute("DELETE FROM Assets WHERE Code IS NULL");
  file->EnterGroup();
  for (const Value& key : {Value(), Value(), Value("a7"), Value("A7"), Value()}) {
    file->BeginTrans();
    if (key.IsNull()) {
      addMiles(*table);
    } else {
      table->Seek({key});
      table->Edit();
      const int cost = table->FieldIndex("Cost");
      table->Set(cost, rt::Add(table->Get(cost), Value(rt::Currency::FromWhole(1))));
      table->Update();
    }
    file->CommitTrans(store::Commit::WithGroup);
  }
  file->FinishGroup();
  EXPECT_EQ(Ask(file, "SELECT Miles FROM Assets WHERE Code IS NULL"), Value(6.0F));
  EXPECT_EQ(Ask(file, "SELECT Cost FROM Assets WHERE Code = 'A7'"), Value(rt::Currency::FromWhole(102)));
}

TEST_F(CursorTest, FindingKeepsToTheRowsAndTheOrderOfTheSet) {
  auto rows = Query("SELECT * FROM Assets WHERE ID < 200 ORDER BY ID DESC");
  const auto others = test::OpenSmallFile(path);
  const int id = rows->FieldIndex("ID");
  const auto found = [&](bool first, const char* condition) {
    first ? rows->FindFirst(condition) : rows->FindNext(condition);
    return rows->NoMatch() ? 0 : rows->Get(id).AsLong();
  };
  EXPECT_EQ(found(true, "[Year]=2001"), 197);
  EXPECT_EQ(found(false, "[Year]=2001"), 194);
  // A later step sees what others did after the one before, except the rows that they added.
  others->Execute("UPDATE Assets SET [Year] = 1999 WHERE ID IN (191, 188)");
  others->Execute("DELETE * FROM Assets WHERE ID = 185");
  others->Execute("INSERT INTO Assets (Code, [Year]) VALUES ('NEW', 2001)");
  EXPECT_EQ(found(false, "[Year]=2001"), 182);
  EXPECT_EQ(found(true, "[Code]='NEW'"), 0);
  EXPECT_EQ(rows->Get(id), Value(182));
  EXPECT_EQ(found(false, "[Code]='A198'"), 0) << "it is before the place";
  EXPECT_EQ(found(false, "[Code]='A0'"), 1) << "it is the last row";

  // Changing each row that is found, even without a commit, does not keep the search from the next one.
  file->BeginTrans();
  int changed = 0;
  for (found(true, "[Year]=2002"); !rows->NoMatch(); found(false, "[Year]=2002"), ++changed) {
    rows->Edit();
    rows->Set(rows->FieldIndex("Year"), 2003);
    rows->Update();
  }
  EXPECT_EQ(changed, 66);
  EXPECT_EQ(found(true, "[Year]=2002"), 0);
  file->RollbackTrans();
  EXPECT_EQ(found(true, "[Year]=2002"), 198);
  rows->Delete();
  EXPECT_EQ(found(false, "[Year]=2002"), 195) << "the row after the deleted one is not skipped";
  rows->MoveTo(rows->Count());
  EXPECT_EQ(found(false, "[Year]=2002"), 0);
  EXPECT_TRUE(rows->AtEnd());
}

TEST_F(CursorTest, GroupedRowsHaveNoKeysAndStayAsTheyAre) {
  auto sums =
      Query("SELECT [Year], COUNT(*) AS N, SUM(Cost) AS Total FROM Assets GROUP BY [Year] ORDER BY [Year]");
  EXPECT_EQ(sums->Count(), 3);
  EXPECT_EQ(sums->Get(sums->FieldIndex("N")).AsLong(), 100);
  EXPECT_EQ(sums->Get(sums->FieldIndex("Total")), Value(rt::Currency::FromWhole(10000)));
  EXPECT_EQ(ErrorOf([&] { sums->Edit(); }), 3027);
  EXPECT_EQ(Ask(file, "SELECT COUNT(*) FROM Assets WHERE Cost > 99.5 AND Cost < 100.5"), Value(300));
}

TEST_F(CursorTest, PicturesAreFetchedApartFromTheirRows) {
  store::TableInfo photos;
  photos.name = "Photos";
  photos.columns = {{"ID", store::ColumnType::Counter},
                    {"Code", store::ColumnType::Text, 10},
                    {"Picture", store::ColumnType::LongBinary}};
  photos.indexes = {{"Code", {"Code"}, false, true, false}};
  file->CreateTable(photos);
  const Value picture(rt::Binary(20000, 7));
  auto table = Cursor::OpenTable(file, "Photos", Locking::Pessimistic);
  for (const char* code : {"A1", "A2"}) {
    table->AddNew();
    table->Set(1, std::string(code));
    if (table->Get(1) == Value("A1")) table->Set(2, picture);
    table->Update();
  }
  table->SetIndex("Code");
  table->Seek({Value("A1")});
  EXPECT_TRUE(table->Get(2) == picture);

  for (const char* sql : {"SELECT * FROM Photos ORDER BY ID", "SELECT DISTINCT * FROM Photos ORDER BY ID",
                          "SELECT Assets.*, Photos.* FROM Assets INNER JOIN Photos ON Assets.Code = "
                          "Photos.Code ORDER BY Photos.ID"}) {
    auto rows = Query(sql);
    const int field = rows->FieldIndex("Picture");
    EXPECT_TRUE(rows->Get(field) == picture) << sql;
    rows->MoveNext();
    EXPECT_TRUE(rows->Get(field).IsNull()) << sql;
  }

  // A change of another field leaves the picture; an edit shows its own change of it.
  auto rows = Query("SELECT * FROM Photos WHERE Code = 'A1'");
  rows->Edit();
  rows->Set(1, std::string("B1"));
  EXPECT_TRUE(rows->Get(2) == picture);
  rows->Update();
  EXPECT_TRUE(rows->Get(2) == picture);
  rows->Edit();
  rows->Set(2, rt::Null{});
  EXPECT_TRUE(rows->Get(2).IsNull());
  rows->CancelUpdate();
  EXPECT_TRUE(rows->Get(2) == picture);

  // Another user deletes the row after it was read, but before anybody asked for the picture.
  test::OpenSmallFile(path)->Execute("DELETE * FROM Photos WHERE Code = 'B1'");
  EXPECT_EQ(ErrorOf([&] { rows->Get(2); }), 3167);
}

}  // namespace
