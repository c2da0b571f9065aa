// Statements must store the same values as recordsets, or refuse them in the same way.
#include <gtest/gtest.h>

#include "platform/store/Cursor.h"
#include "support/SmallFile.h"
#include "support/TempDirectory.h"

namespace {

using rt::Currency;
using rt::DateTime;
using rt::Value;
using store::ColumnType;
using store::Cursor;
using store::Locking;
using test::Ask;
using test::ErrorOf;

class StatementValuesTest : public testing::Test {
 protected:
  StatementValuesTest() {
    test::MakeSmallFile(path);
    file = test::OpenSmallFile(path);
    store::TableInfo kinds;
    kinds.name = "Kinds";
    kinds.columns = {{"ID", ColumnType::Counter},         {"Small", ColumnType::Short},
                     {"Whole", ColumnType::Long},         {"Part", ColumnType::Single},
                     {"Real", ColumnType::Double},        {"Amount", ColumnType::Currency},
                     {"Day", ColumnType::DateTime},       {"Flag", ColumnType::Boolean},
                     {"Word", ColumnType::Text, 5},       {"Filled", ColumnType::Text, 5, false, false},
                     {"Must", ColumnType::Long, 0, true}, {"Note", ColumnType::Memo}};
    file->CreateTable(kinds);
    file->Execute("INSERT INTO Kinds (Must, Filled, Word) VALUES (1, 'x', '7')");
    test::AddAsset(file, "A1", 2001);
  }

  struct Outcome {
    int error = 0;
    Value stored;
    friend bool operator==(const Outcome&, const Outcome&) = default;
    friend void PrintTo(const Outcome& outcome, std::ostream* stream) {
      *stream << "error " << outcome.error << ", type " << static_cast<int>(outcome.stored.Type()) << ", "
              << outcome.stored.Shown();
    }
  };
  Outcome After(const std::string& column, int error) {
    return {error, error ? Value() : Ask(file, "SELECT [" + column + "] FROM Kinds WHERE ID = 1")};
  }
  Outcome Recordset(const std::string& column, const Value& value) {
    auto rows = Cursor::OpenQuery(file, "SELECT * FROM Kinds WHERE ID = 1", Locking::Pessimistic);
    rows->Edit();
    return After(column, ErrorOf([&] {
                   rows->Set(rows->FieldIndex(column), value);
                   rows->Update();
                 }));
  }
  Outcome Update(const std::string& column, const std::string& expression) {
    return After(column, ErrorOf([&] {
                   file->Execute("UPDATE Kinds SET [" + column + "] = " + expression + " WHERE ID = 1");
                 }));
  }

  test::TempDirectory directory;
  std::string path = directory.Path("DW.MDB");
  std::shared_ptr<store::Connection> file;
};

TEST_F(StatementValuesTest, StatementsAndRecordsetsStoreTheSameOrRefuseAlike) {
  const struct {
    const char* column;
    const char* expression;
    Value value;
    int error;
  } kCases[] = {
      {"Small", "99999", 99999, 6},
      {"Small", "-32768", -32768, 0},
      {"Small", "2.5", 2.5, 0},
      {"Small", "3.5", 3.5, 0},
      {"Small", "'12'", "12", 0},
      {"Small", "'twelve'", "twelve", 3421},
      {"Small", "TRUE", true, 0},
      {"Whole", "2147483648", 2147483648.0, 6},
      {"Whole", "1e300 / 3", 1e300 / 3, 6},
      {"Whole", "-2.5", -2.5, 0},
      {"Part", "1e300", 1e300, 6},
      {"Part", "0.1", 0.1, 0},
      {"Real", "'1,234.5'", "1,234.5", 0},
      {"Real", "'abc'", "abc", 3421},
      {"Amount", "1e15", 1e15, 6},
      {"Amount", "0.00005", 0.00005, 0},
      {"Amount", "0.00015", 0.00015, 0},
      {"Amount", "'$12.34'", "$12.34", 0},
      {"Amount", "'dear'", "dear", 3421},
      {"Day", "'6/30/2026'", "6/30/2026", 0},
      {"Day", "'soon'", "soon", 3421},
      {"Day", "#6/30/2026 5:15 PM#", DateTime::FromIso("2026-06-30 17:15:00").value(), 0},
      {"Day", "1.5", 1.5, 0},
      {"Day", "1e9", 1e9, 6},
      {"Flag", "7", 7, 0},
      {"Flag", "NULL", {}, 0},
      {"Word", "12345.5", 12345.5, 3163},
      {"Word", "'\xC3\x84\xC3\x84\xC3\x84\xC3\x84\xC3\x84'", "\xC3\x84\xC3\x84\xC3\x84\xC3\x84\xC3\x84", 0},
      {"Word", "'toolong'", "toolong", 3163},
      {"Word", "''", "", 0},
      {"Word", "0.1", 0.1, 0},
      {"Filled", "''", "", 3315},
      {"Must", "NULL", {}, 3314},
      {"Note", "1 / 3", 1.0 / 3, 0},
      {"Note", "'nothing'", "nothing", 0},
  };
  for (const auto& one : kCases) {
    const Outcome expected = Recordset(one.column, one.value);
    EXPECT_EQ(expected.error, one.error) << one.column << " = " << one.expression;
    EXPECT_EQ(Update(one.column, one.expression), expected) << one.column << " = " << one.expression;
    const bool must = one.column == std::string("Must");
    const std::string insert = std::string("INSERT INTO Kinds (") + (must ? "" : "Must, ") + "[" +
                               one.column + "]) VALUES (" + (must ? "" : "1, ") + one.expression + ")";
    EXPECT_EQ(ErrorOf([&] { file->Execute(insert); }), one.error) << insert;
  }
}

TEST_F(StatementValuesTest, OneRowThatDoesNotFitLeavesAllRowsAsTheyWere) {
  file->Execute("INSERT INTO Kinds (Must, Whole, Amount) VALUES (2, 1, 1)");
  file->Execute("INSERT INTO Kinds (Must, Whole, Amount) VALUES (3, 40000, 900000000000000)");
  const auto untouched = [&] {
    EXPECT_EQ(Ask(file, "SELECT COUNT(Small) FROM Kinds"), Value(0));
    EXPECT_EQ(Ask(file, "SELECT COUNT(*) FROM Kinds"), Value(3));
    EXPECT_EQ(Ask(file, "SELECT COUNT(*) FROM Kinds WHERE Amount = 1"), Value(1));
  };
  const auto all = [&] {
    EXPECT_EQ(ErrorOf([&] { file->Execute("UPDATE Kinds SET Small = Whole"); }), 6);
    EXPECT_EQ(ErrorOf([&] { file->Execute("UPDATE Kinds SET Amount = Amount * 2"); }), 6);
    EXPECT_EQ(ErrorOf([&] { file->Execute("INSERT INTO Kinds (Must, Small) SELECT 1, Whole FROM Kinds"); }),
              6);
    EXPECT_EQ(ErrorOf([&] { file->Execute("INSERT INTO Kinds (Must, Day) SELECT 1, Word FROM Kinds"); }), 0)
        << "7 is a day";
    EXPECT_EQ(file->Execute("DELETE FROM Kinds WHERE ID > 3"), 3);
    untouched();
  };
  all();
  // The same in a transaction, whose other writes stay.
  file->BeginTrans();
  file->Execute("UPDATE Kinds SET Note = 'kept'");
  all();
  file->CommitTrans();
  EXPECT_EQ(Ask(file, "SELECT COUNT(*) FROM Kinds WHERE Note = 'kept'"), Value(3));
  // The message names the column.
  try {
    file->Execute("UPDATE Kinds SET Small = Whole");
    FAIL();
  } catch (const store::StoreError& error) {
    EXPECT_NE(std::string(error.what()).find("'Small'"), std::string::npos) << error.what();
  }
  // A sum beyond the range of an amount fails as well.
  file->Execute("INSERT INTO Kinds (Must, Amount) VALUES (4, 900000000000000)");
  EXPECT_EQ(ErrorOf([&] { Ask(file, "SELECT SUM(Amount) FROM Kinds"); }), 6);
}

}  // namespace
