// The last numbers of a table, and larger keys from other programs.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include "platform/store/Cursor.h"
#include "support/SmallFile.h"
#include "support/TempDirectory.h"

namespace {

using rt::Value;
using store::Cursor;
using store::Locking;
using test::Ask;
using test::ErrorOf;

class NumbersTest : public testing::Test {
 protected:
  NumbersTest() {
    test::MakeSmallFile(path);
    file = test::OpenSmallFile(path);
  }
  void ByAnotherProgram(const std::string& sql) {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
    sqlite3_close(db);
  }
  int Add(const std::string& code) {
    return ErrorOf([&] {
      auto lines = Cursor::OpenTable(file, "Lines", Locking::Pessimistic);
      lines->AddNew();
      lines->Set(lines->FieldIndex("Code"), code);
      lines->Update();
    });
  }
  Value Rows() { return Ask(file, "SELECT COUNT(*) FROM Lines"); }

  test::TempDirectory directory;
  std::string path = directory.Path("DW.MDB");
  std::shared_ptr<store::Connection> file;
};

TEST_F(NumbersTest, ATableThatHasGivenAllItsNumbersSaysSo) {
  file->Execute("INSERT INTO Lines (ID, Code) VALUES (2147483645, 'A')");
  EXPECT_EQ(Add("B"), 0);
  EXPECT_EQ(ErrorOf([&] { file->Execute("INSERT INTO Lines (Code) SELECT Code FROM Lines"); }), 6)
      << "two rows, one number";
  EXPECT_EQ(Rows(), Value(2));
  EXPECT_EQ(Add("C"), 0);
  EXPECT_EQ(Ask(file, "SELECT ID FROM Lines WHERE Code = 'C'"), Value(2147483647));

  const auto full = [&] {
    EXPECT_EQ(Add("D"), 6);
    auto lines = Cursor::OpenTable(file, "Lines", Locking::Pessimistic);
    lines->AddNew();
    EXPECT_EQ(ErrorOf([&] { lines->Get(lines->FieldIndex("ID")); }), 6);
    lines->CancelUpdate();
    EXPECT_EQ(ErrorOf([&] { file->Execute("INSERT INTO Lines (Code) VALUES ('D')"); }), 6);
    EXPECT_EQ(ErrorOf([&] { file->Execute("INSERT INTO Lines (Code) SELECT Code FROM Lines"); }), 6);
    EXPECT_EQ(ErrorOf([&] { file->Execute("INSERT INTO Lines (ID) VALUES (2147483648)"); }), 6);
    EXPECT_EQ(Rows(), Value(3));
  };
  full();
  file->BeginTrans();
  file->Execute("UPDATE Lines SET Asset = 7");
  full();
  file->CommitTrans();
  EXPECT_EQ(Ask(file, "SELECT COUNT(*) FROM Lines WHERE Asset = 7"), Value(3));
  // The last number that SQLite has: the error must not speak of a full disk.
  ByAnotherProgram("UPDATE sqlite_sequence SET seq = 9223372036854775807 WHERE name = 'Lines'");
  full();
  EXPECT_TRUE(file->CheckIntegrity().empty());
  // A statement can still use a free number.
  file->Execute("INSERT INTO Lines (ID, Code) VALUES (17, 'E')");
  EXPECT_EQ(Rows(), Value(4));
}

TEST_F(NumbersTest, AKeyBeyond32BitsIsNeverTakenForAnotherRecord) {
  // The second number is the first one cut to 32 bits.
  ByAnotherProgram(
      "INSERT INTO Lines (ID, Code) VALUES (5000000000, 'FAR'), (705032704, 'NEAR'), (4294967000, 'EDGE')");
  auto rows = Cursor::OpenQuery(file, "SELECT * FROM Lines ORDER BY Code DESC", Locking::Pessimistic);
  const int code = rows->FieldIndex("Code");
  rows->FindFirst("Code = 'FAR'");
  EXPECT_EQ(rows->Mark(), store::Bookmark{5000000000});
  EXPECT_EQ(rows->Get(rows->FieldIndex("ID")), Value(5e9));
  EXPECT_EQ(ErrorOf([&] { rows->Edit(); }), 6);
  EXPECT_EQ(ErrorOf([&] { rows->Delete(); }), 6);
  auto optimistic = Cursor::OpenQuery(file, "SELECT * FROM Lines WHERE Code = 'FAR'", Locking::Optimistic);
  optimistic->Edit();
  optimistic->Set(code, "CHANGED");
  EXPECT_EQ(ErrorOf([&] { optimistic->Update(); }), 6);
  // A key of more than 31 bits that can be locked behaves like any other.
  rows->FindFirst("Code = 'EDGE'");
  rows->Edit();
  rows->Set(code, "EDGE 2");
  rows->Update();
  EXPECT_EQ(Ask(file, "SELECT ID FROM Lines WHERE Code = 'EDGE 2'"), Value(4294967000.0));
  rows->Delete();
  EXPECT_EQ(Ask(file, "SELECT COUNT(*) FROM Lines WHERE Code IN ('FAR', 'NEAR')"), Value(2));
  EXPECT_EQ(Rows(), Value(2));
}

}  // namespace
