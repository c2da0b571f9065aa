#include <gtest/gtest.h>

#include "platform/runtime/Waits.h"
#include "platform/store/Cursor.h"
#include "support/SecondProcess.h"
#include "support/SmallFile.h"
#include "support/TempDirectory.h"

namespace {

using rt::Value;
using store::Cursor;
using store::Locking;
using test::AddAsset;
using test::Ask;
using test::ErrorOf;
using test::SecondProcess;

// The second process is the user ADMIN on the machine OFFICE. It holds a record, as a window or as a
// transaction does, until it gets a word.
class LockingTest : public testing::Test {
 protected:
  LockingTest() {
    test::MakeSmallFile(path);
    auto file = test::OpenSmallFile(path);
    for (const char* code : {"A", "B", "C"}) AddAsset(file, code);
  }
  static std::unique_ptr<Cursor> On(const std::shared_ptr<store::Connection>& file, const std::string& code,
                                    Locking locking = Locking::Pessimistic) {
    return Cursor::OpenQuery(file, "SELECT * FROM Assets WHERE Code = '" + code + "'", locking);
  }
  std::function<void(SecondProcess::Channel&)> Holder(bool transaction) {
    return [this, transaction](SecondProcess::Channel& talk) {
      store::SetIdentity("OFFICE", "ADMIN");
      auto file = test::OpenSmallFile(path);
      if (transaction) file->BeginTrans();
      auto row = On(file, "B");
      row->Edit();
      talk.Say("held");
      talk.Hear();
      row->Set(row->FieldIndex("Year"), 1111);
      row->Update();
      if (transaction) file->CommitTrans();
      talk.Say("done");
      talk.Hear();
    };
  }
  test::TempDirectory directory;
  std::string path = directory.Path("DW.MDB");
};

TEST_F(LockingTest, ARecordInAWindowIsRefusedByItsHoldersName) {
  SecondProcess other(Holder(false));
  EXPECT_EQ(other.Talk().Hear(), "held");
  auto file = test::OpenSmallFile(path);
  auto row = On(file, "B");
  try {
    row->Edit();
    FAIL() << "the record was not refused";
  } catch (const store::StoreError& error) {
    EXPECT_EQ(error.Number(), 3218);
    EXPECT_NE(std::string(error.what()).find("currently locked by user 'ADMIN' on machine 'OFFICE'"),
              std::string::npos);
  }
  file->BeginTrans();
  EXPECT_EQ(ErrorOf([&] { row->Edit(); }), 3218) << "a window's hold refuses a transaction, too";
  file->RollbackTrans();
  EXPECT_EQ(ErrorOf([&] { row->Delete(); }), 3260);
  auto late = On(file, "B", Locking::Optimistic);
  late->Edit();
  late->Set(late->FieldIndex("Year"), 5);
  EXPECT_EQ(ErrorOf([&] { late->Update(); }), 3186);
  EXPECT_TRUE(late->Editing());

  // A statement that touches the held record fails as a whole; one that does not succeeds.
  EXPECT_EQ(ErrorOf([&] { file->Execute("UPDATE Assets SET [Year] = 7"); }), 3260);
  EXPECT_EQ(ErrorOf([&] { file->Execute("DELETE * FROM Assets"); }), 3260);
  EXPECT_EQ(Ask(file, "SELECT COUNT(*) FROM Assets WHERE [Year] = 2020"), Value(3));
  EXPECT_EQ(file->Execute("UPDATE Assets SET [Year] = 7 WHERE Code <> 'B'"), 2);
  file->BeginTrans();
  EXPECT_EQ(ErrorOf([&] { file->Execute("DELETE * FROM Assets WHERE Code > 'A'"); }), 3260);
  file->CommitTrans();
  auto neighbour = On(file, "A");
  neighbour->Edit();
  neighbour->CancelUpdate();

  other.Talk().Say("store it");
  EXPECT_EQ(other.Talk().Hear(), "done");
  row->Edit();
  EXPECT_EQ(row->Get(row->FieldIndex("Year")), Value(std::int16_t{1111}));
}

TEST_F(LockingTest, ARecordOfARunningTransactionIsRefusedUntilItEnds) {
  SecondProcess other(Holder(true));
  EXPECT_EQ(other.Talk().Hear(), "held");
  auto file = test::OpenSmallFile(path);
  auto row = On(file, "B");
  EXPECT_EQ(ErrorOf([&] { row->Edit(); }), 3260);
  EXPECT_EQ(ErrorOf([&] { row->Delete(); }), 3260);
  AddAsset(file, "D");  // the file itself is free
  other.Talk().Say("store it");
  EXPECT_EQ(other.Talk().Hear(), "done");
  row->Edit();
  EXPECT_EQ(row->Get(row->FieldIndex("Year")), Value(std::int16_t{1111}));
}

TEST_F(LockingTest, AHoldEndsWithItsHoldersDeath) {
  for (const bool transaction : {false, true}) {
    SecondProcess other(Holder(transaction));
    EXPECT_EQ(other.Talk().Hear(), "held");
    auto file = test::OpenSmallFile(path);
    auto row = On(file, "B");
    EXPECT_NE(ErrorOf([&] { row->Edit(); }), 0);
    EXPECT_EQ(file->Holds().Roster().size(), 2u);
    other.Kill();
    EXPECT_EQ(ErrorOf([&] { row->Edit(); }), 0);
    EXPECT_EQ(file->Holds().Roster().size(), 1u);
    EXPECT_EQ(row->Get(row->FieldIndex("Year")), Value(std::int16_t{2020}));
  }
}

TEST_F(LockingTest, ExclusiveAndSharedKeepEachOtherOut) {
  SecondProcess other([this](SecondProcess::Channel& talk) {
    store::SetIdentity("OFFICE", "ADMIN");
    auto shared = test::OpenSmallFile(path);
    talk.Say("in");
    talk.Hear();
    shared.reset();
    auto alone = store::Connection::Open({path, store::Share::Exclusive});
    talk.Say("alone");
    talk.Hear();
  });
  EXPECT_EQ(other.Talk().Hear(), "in");
  EXPECT_EQ(ErrorOf([&] { store::Connection::Open({path, store::Share::Exclusive}); }), 3045);
  test::OpenSmallFile(path);
  other.Talk().Say("now alone");
  EXPECT_EQ(other.Talk().Hear(), "alone");
  EXPECT_EQ(ErrorOf([&] { test::OpenSmallFile(path); }), 3356);
  other.Kill();
  EXPECT_EQ(ErrorOf([&] { store::Connection::Open({path, store::Share::Exclusive}); }), 0);
}

// When the program waits, others get what a group of commits keeps back, but not a row that is half done.
TEST_F(LockingTest, AGroupGivesTheFileBackBeforeAWait) {
  SecondProcess other([this](SecondProcess::Channel& talk) {
    talk.Hear();
    auto file = test::OpenSmallFile(path);
    talk.Say(Ask(file, "SELECT [Year] FROM Assets WHERE Code = 'A'").AsText() + " " +
             Ask(file, "SELECT [Year] FROM Assets WHERE Code = 'B'").AsText() + " " +
             std::to_string(ErrorOf([&] { On(file, "B")->Edit(); })) + " " +
             std::to_string(ErrorOf([&] { On(file, "A")->Edit(); })) + " " + std::to_string(ErrorOf([&] {
               file->Execute("UPDATE Assets SET [Year] = 3 WHERE Code = 'C'");
             })));
    talk.Hear();
    talk.Say(Ask(file, "SELECT [Year] FROM Assets WHERE Code = 'B'").AsText() + " " +
             Ask(file, "SELECT COUNT(*) FROM Assets").AsText());
  });
  auto file = test::OpenSmallFile(path);
  auto table = Cursor::OpenTable(file, "Assets", Locking::Pessimistic);
  table->SetIndex("Code");
  const int year = table->FieldIndex("Year");
  const auto change = [&](const char* code, int to) {
    table->Seek({Value(code)});
    ASSERT_FALSE(table->NoMatch());
    table->Edit();
    table->Set(year, to);
    table->Update();
  };
  file->EnterGroup();
  file->BeginTrans();
  change("A", 1);
  file->CommitTrans(store::Commit::WithGroup);
  file->BeginTrans();
  change("B", 2);
  table->Seek({Value("NEW")});
  EXPECT_TRUE(table->NoMatch());
  table->AddNew();
  table->Set(table->FieldIndex("Code"), "NEW");
  table->Update();
  table->Seek({Value("new")});
  EXPECT_FALSE(table->NoMatch());
  rt::AboutToWait();
  other.Talk().Say("look");
  EXPECT_EQ(other.Talk().Hear(), "1 2020 3260 0 0");
  change("B", 22);
  file->CommitTrans(store::Commit::WithGroup);
  file->FinishGroup();
  other.Talk().Say("look again");
  EXPECT_EQ(other.Talk().Hear(), "22 4");
  EXPECT_EQ(Ask(file, "SELECT [Year] FROM Assets WHERE Code = 'C'"), Value(std::int16_t{3}));
}

TEST_F(LockingTest, AGroupRollsBackOneTransactionAndKeepsTheOthers) {
  auto file = test::OpenSmallFile(path);
  auto table = Cursor::OpenTable(file, "Assets", Locking::Pessimistic);
  table->SetIndex("Code");
  const int year = table->FieldIndex("Year");
  const auto change = [&](const char* code, int to) {
    table->Seek({Value(code)});
    table->Edit();
    table->Set(year, to);
    table->Update();
  };
  file->EnterGroup();
  file->BeginTrans();
  change("A", 1);
  file->Execute("UPDATE Assets SET Notes = 'kept' WHERE Code = 'C'");
  file->CommitTrans(store::Commit::WithGroup);
  file->BeginTrans();
  change("A", 9);
  change("B", 9);
  file->Execute("INSERT INTO Lines (Asset, Code) VALUES (1, 'gone')");
  file->RollbackTrans();
  EXPECT_EQ(Ask(file, "SELECT [Year] FROM Assets WHERE Code = 'A'"), Value(std::int16_t{1}));
  file->BeginTrans();
  change("B", 2);
  file->CommitTrans(store::Commit::WithGroup);
  file->FinishGroup();
  auto other = test::OpenSmallFile(path);
  EXPECT_EQ(Ask(other, "SELECT [Year] FROM Assets WHERE Code = 'A'"), Value(std::int16_t{1}));
  EXPECT_EQ(Ask(other, "SELECT [Year] FROM Assets WHERE Code = 'B'"), Value(std::int16_t{2}));
  EXPECT_EQ(Ask(other, "SELECT Notes FROM Assets WHERE Code = 'C'"), Value("kept"));
  EXPECT_EQ(Ask(other, "SELECT COUNT(*) FROM Lines"), Value(0));
  On(other, "A")->Edit();
}

}  // namespace
