#include "platform/ado/Ado.h"

#include <gtest/gtest.h>

#include "support/SmallFile.h"
#include "support/TempDirectory.h"

namespace {

using rt::Value;

template <class Work>
std::pair<std::int32_t, std::int32_t> ProblemOf(Work work) {
  try {
    work();
  } catch (const ado::Error& error) {
    return {error.Number(), error.Native()};
  }
  return {0, 0};
}

class AdoTest : public testing::Test {
 protected:
  AdoTest() {
    test::MakeSmallFile(path);
    auto file = test::OpenSmallFile(path);
    for (const char* code : {"A", "B", "C"}) test::AddAsset(file, code);
  }
  std::shared_ptr<ado::Connection> Connect(const std::string& mode = "Share Deny None") {
    auto connection = std::make_shared<ado::Connection>();
    connection->Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path +
                     ";Persist Security Info=False;Mode=" + mode + ";");
    return connection;
  }
  std::unique_ptr<ado::Recordset> Rows(const std::shared_ptr<ado::Connection>& connection,
                                       const std::string& sql, int lock = ado::adLockPessimistic) {
    auto rows = std::make_unique<ado::Recordset>();
    rows->Open(sql, connection, ado::adOpenKeyset, lock);
    return rows;
  }
  test::TempDirectory directory;
  std::string path = directory.Path("DW.MDB");
};

TEST_F(AdoTest, OpensByItsConnectionStringAndCollectsErrors) {
  auto connection = Connect();
  ado::Connection missing;
  EXPECT_EQ(ProblemOf([&] {
              missing.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + directory.Path("none.mdb"));
            }),
            std::pair(ado::kUnspecified, ado::kNativeFileNotFound));
  ASSERT_EQ(missing.Errors.size(), 1u);
  EXPECT_EQ(missing.Errors[0].nativeError, ado::kNativeFileNotFound);
  EXPECT_FALSE(missing.IsOpen());
  EXPECT_EQ(ProblemOf([&] { Connect("Share Exclusive"); }), std::pair(ado::kUnspecified, 3045));
  connection->Close();
  auto alone = Connect("Share Exclusive");
  EXPECT_EQ(ProblemOf([&] { Connect(); }), std::pair(ado::kUnspecified, 3356));
  ado::Connection server;
  EXPECT_NE(
      ProblemOf([&] { server.Open("Provider=SQLOLEDB.1;Data Source=SERVER;Initial Catalog=X;"); }).first, 0);
}

TEST_F(AdoTest, AnEditBeginsWithTheFirstSetAndIsStoredByMoving) {
  auto connection = Connect();
  auto rows = Rows(connection, "SELECT * FROM Assets ORDER BY Code");
  rows->Set("Notes", "first");
  rows->Move(0);
  EXPECT_TRUE(rows->Cursor().Editing());
  rows->MoveNext();
  rows->Set("Notes", "second");
  rows->CancelUpdate();
  rows->Update();
  EXPECT_TRUE(rows->Get("Notes").IsNull());
  rows->AddNew();
  rows->Set("Code", "D");
  rows->Update();
  EXPECT_EQ(rows->Get("Code"), Value("D")) << "the new record is the current one";
  rows->Requery();
  EXPECT_EQ(rows->RecordCount(), 4);
  EXPECT_EQ(rows->Get("Notes"), Value("first"));
  rows->Find("[Code] = 'C'");
  EXPECT_EQ(rows->Get("ID"), Value(3));
  rows->Find("[Code] = 'A'");
  EXPECT_TRUE(rows->AtEnd());
  rows->Find("[Code] = 'A'", true);
  EXPECT_EQ(rows->Get("ID"), Value(1));
  EXPECT_EQ(ProblemOf([&] {
              rows->Set("Code", "B");
              rows->Update();
            }).first,
            ado::kErrorsOccurred);
  rows->CancelUpdate();
  rows->Close();
  EXPECT_EQ(ProblemOf([&] { rows->Get("Code"); }).first, ado::kClosed);
}

TEST_F(AdoTest, GivesTheProvidersNumbersForAHeldRecord) {
  auto window = Connect();
  auto held = Rows(window, "SELECT * FROM Assets WHERE Code = 'B'");
  held->Set("Notes", "typing");
  auto other = Connect();
  auto rows = Rows(other, "SELECT * FROM Assets WHERE Code = 'B'");
  EXPECT_EQ(ProblemOf([&] { rows->Set("ID", rows->Get("ID")); }), std::pair(ado::kProviderFailure, 3218));
  EXPECT_EQ(ProblemOf([&] { rows->Delete(); }), std::pair(ado::kUnspecified, 3260));
  EXPECT_EQ(ProblemOf([&] { other->Execute("UPDATE Assets SET [Year] = 1"); }),
            std::pair(ado::kUnspecified, 3260));
  auto late = Rows(other, "SELECT * FROM Assets WHERE Code = 'B'", ado::adLockOptimistic);
  late->Set("Year", 5);
  EXPECT_EQ(ProblemOf([&] { late->Update(); }), std::pair(ado::kUnspecified, 3186));
  late->CancelUpdate();

  // While its user thinks, an open transaction keeps its holds and nothing else.
  held->CancelUpdate();
  window->BeginTrans();
  held->Set("ID", held->Get("ID"));
  EXPECT_EQ(ProblemOf([&] { rows->Set("Year", 3); }), std::pair(ado::kProviderFailure, 3260));
  EXPECT_EQ(other->Execute("UPDATE Assets SET [Year] = 1 WHERE Code <> 'B'"), 2);
  held->Set("Year", 7);
  held->Update();
  window->RollbackTrans();
  rows->Set("Year", 3);
  rows->Update();
  EXPECT_EQ(ProblemOf([&] { other->Execute("SELEC"); }).first, ado::kSyntax);
  EXPECT_EQ(ProblemOf([&] { other->Execute("DELETE * FROM [None]"); }).first, ado::kNoTable);
  EXPECT_EQ(ProblemOf([&] { other->Execute("UPDATE Assets SET Nothing = 1"); }).first,
            ado::kTooFewParameters);
}

TEST_F(AdoTest, TheCatalogueTellsTypesAndAddsColumns) {
  auto connection = Connect();
  ado::Catalog catalog(connection);
  EXPECT_EQ(catalog.Tables(), (std::vector<std::string>{"Assets", "Lines"}));
  std::string types;
  for (const auto& column : catalog.Columns("Assets")) types += std::to_string(column.type) + " ";
  EXPECT_EQ(types, "3 202 6 4 7 11 203 2 ");
  catalog.AppendColumn("Assets", {"Spare", 4}, true, false);
  catalog.AppendColumn("Assets", {"Ready", 11}, false, true);
  catalog.RenameColumn("Assets", "Spare", "Oil");
  auto rows = Rows(connection, "SELECT * FROM Assets");
  EXPECT_TRUE(rows->Get("Oil").IsNull());
  EXPECT_EQ(rows->Get("Ready"), Value(true));
  EXPECT_NE(ProblemOf([&] { catalog.Columns("assets2"); }).first, 0);
  const auto roster = connection->OpenUserRoster();
  ASSERT_EQ(roster.size(), 1u);
  EXPECT_EQ(roster[0].computerName.back(), '\0');
}

}  // namespace
