// What a transaction and a group of commits keep across waits, rollbacks and other users.
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

std::unique_ptr<Cursor> On(const std::shared_ptr<store::Connection>& file, const std::string& code) {
  return Cursor::OpenQuery(file, "SELECT * FROM Assets WHERE Code = '" + code + "'", Locking::Pessimistic);
}

/// A file with 100 assets A0 to A99, and another user who does what he hears.
class TransactionTest : public testing::Test {
 protected:
  TransactionTest()
      : other_([this](SecondProcess::Channel& talk) {
          talk.Hear();
          store::SetIdentity("OFFICE", "ADMIN");
          auto file = test::OpenSmallFile(path_);
          std::unique_ptr<Cursor> held;
          for (std::string word = "ready";; word = talk.Hear()) {
            const std::string what = word.substr(0, word.find(' '));
            const std::string rest = word.substr(std::min(word.size(), what.size() + 1));
            std::string answer;
            if (what == "edit")
              answer = std::to_string(ErrorOf([&] {
                held = On(file, rest);
                held->Edit();
              }));
            else if (what == "leave")
              held.reset();
            else if (what == "do")
              answer = std::to_string(ErrorOf([&] { file->Execute(rest); }));
            else if (what == "ask")
              answer = Ask(file, rest).Shown();
            talk.Say(answer + ".");
          }
        }) {
    test::MakeSmallFile(path_);
    {
      auto file = test::OpenSmallFile(path_);
      file->BeginTrans();
      for (int i = 0; i < 100; ++i) AddAsset(file, "A" + std::to_string(i));
      file->CommitTrans();
    }
    file_ = test::OpenSmallFile(path_);
    EXPECT_EQ(Other("begin"), ".");
  }
  std::string Other(const std::string& words) {
    other_.Talk().Say(words);
    return other_.Talk().Hear();
  }
  std::unique_ptr<Cursor> ByCode() {
    auto table = Cursor::OpenTable(file_, "Assets", Locking::Pessimistic);
    table->SetIndex("Code");
    return table;
  }
  static void Change(Cursor& rows, const char* field, const Value& value) {
    rows.Edit();
    rows.Set(rows.FieldIndex(field), value);
    rows.Update();
  }

  test::TempDirectory directory_;
  std::string path_ = directory_.Path("DW.MDB");
  SecondProcess other_;
  std::shared_ptr<store::Connection> file_;
};

TEST_F(TransactionTest, ABulkChangeIsHeldUntilItsTransactionEnds) {
  for (const bool inGroup : {false, true}) {
    if (inGroup) file_->EnterGroup();
    file_->BeginTrans();
    EXPECT_EQ(file_->Execute("UPDATE Assets SET [Year] = 1900"), 100);
    for (int wait = 0; wait < 3; ++wait) {
      rt::AboutToWait();
      EXPECT_EQ(Other("edit A7"), "3260.") << inGroup << wait;
      EXPECT_EQ(Other("do UPDATE Assets SET Notes = 'corrected' WHERE Code = 'A8'"), "3260.");
      EXPECT_EQ(Other("do INSERT INTO Lines (Code) VALUES ('free')"), "0.");
      auto row = On(file_, "A9");
      Change(*row, "Miles", static_cast<float>(wait));
    }
    file_->CommitTrans(inGroup ? store::Commit::WithGroup : store::Commit::Now);
    if (inGroup) file_->FinishGroup();
    EXPECT_EQ(Other("do UPDATE Assets SET Notes = 'corrected', [Year] = 2020 WHERE Code = 'A8'"), "0.");
    EXPECT_EQ(Ask(file_, "SELECT Notes FROM Assets WHERE Code = 'A8'"), Value("corrected"));
    EXPECT_EQ(Ask(file_, "SELECT COUNT(*) FROM Assets WHERE [Year] = 1900"), Value(99));
    EXPECT_EQ(Ask(file_, "SELECT Miles FROM Assets WHERE Code = 'A9'"), Value(2.0F));
  }
}

// What others held when a table was taken is not held with it, whether they still have it or not.
TEST_F(TransactionTest, ARecordThatWasLeftOutIsTakenWhenAStatementTouchesIt) {
  for (const bool inGroup : {false, true}) {
    EXPECT_EQ(Other("edit A5"), "0.");
    if (inGroup) file_->EnterGroup();
    file_->BeginTrans();
    EXPECT_EQ(file_->Execute("UPDATE Assets SET [Year] = 1900 WHERE Code <> 'A5'"), 99);
    EXPECT_EQ(ErrorOf([&] { file_->Execute("UPDATE Assets SET [Year] = 1901"); }), 3260);
    EXPECT_EQ(Other("leave"), ".");
    EXPECT_EQ(file_->Execute("UPDATE Assets SET [Year] = 1902 WHERE Code = 'A5'"), 1);
    rt::AboutToWait();
    EXPECT_EQ(Other("edit A5"), "3260.");
    EXPECT_EQ(Other("do UPDATE Assets SET [Year] = 7 WHERE Code = 'A5'"), "3260.");
    file_->CommitTrans();
    if (inGroup) file_->FinishGroup();
    EXPECT_EQ(Other("ask SELECT [Year] FROM Assets WHERE Code = 'A5'"), "1902.");
  }
}

TEST_F(TransactionTest, ARollbackTakesBackWhatTheGroupHasReadInIt) {
  auto table = ByCode();
  file_->EnterGroup();
  file_->BeginTrans();
  file_->Execute("UPDATE Assets SET [Year] = 1111, Notes = 'gone' WHERE Code = 'A1'");
  file_->Execute("INSERT INTO Assets (Code, [Year]) VALUES ('NEW', 5)");
  file_->Execute("DELETE FROM Assets WHERE Code = 'A2'");
  for (const char* code : {"A1", "NEW"}) {
    table->Seek({Value(code)});
    EXPECT_FALSE(table->NoMatch());
  }
  table->Seek({Value("A2")});
  EXPECT_TRUE(table->NoMatch());
  file_->RollbackTrans();
  file_->EnterGroup();
  file_->BeginTrans();
  table->Seek({Value("A1")});
  EXPECT_EQ(table->Get(table->FieldIndex("Year")), Value(std::int16_t{2020}));
  Change(*table, "Miles", 3.0F);
  table->Seek({Value("NEW")});
  EXPECT_TRUE(table->NoMatch());
  table->Seek({Value("A2")});
  EXPECT_FALSE(table->NoMatch());
  file_->CommitTrans(store::Commit::WithGroup);
  file_->FinishGroup();
  EXPECT_EQ(Other("ask SELECT [Year] FROM Assets WHERE Code = 'A1' AND Notes IS NULL AND Miles = 3"),
            "2020.");
  EXPECT_EQ(Other("ask SELECT COUNT(*) FROM Assets"), "100.");
}

TEST_F(TransactionTest, EachTransactionWithinAnotherTakesBackItsOwnChangesOfCachedRows) {
  auto table = ByCode();
  file_->EnterGroup();
  file_->BeginTrans();
  table->Seek({Value("A1")});
  Change(*table, "Year", 1);
  file_->BeginTrans();
  table->Seek({Value("A1")});
  Change(*table, "Year", 2);
  file_->Execute("UPDATE Assets SET Notes = 'inner' WHERE Code = 'A1'");
  file_->RollbackTrans();
  EXPECT_EQ(Ask(file_, "SELECT [Year] FROM Assets WHERE Code = 'A1'"), Value(std::int16_t{1}));
  file_->CommitTrans(store::Commit::WithGroup);
  file_->FinishGroup();
  EXPECT_EQ(Other("ask SELECT [Year] FROM Assets WHERE Code = 'A1' AND Notes IS NULL"), "1.");
}

TEST_F(TransactionTest, ReadingsAfterAWaitSeeWhatTheTransactionHasWritten) {
  file_->BeginTrans();
  auto lines = Cursor::OpenTable(file_, "Lines", Locking::Pessimistic);
  lines->AddNew();
  lines->Set(lines->FieldIndex("Code"), "MINE");
  lines->Update();
  rt::AboutToWait();
  lines->GoTo(lines->LastModified());
  EXPECT_EQ(lines->Get(lines->FieldIndex("Code")), Value("MINE"));
  rt::AboutToWait();
  lines->SetIndex("PrimaryKey");
  EXPECT_FALSE(lines->AtEnd());
  rt::AboutToWait();
  EXPECT_EQ(lines->Count(), 1);
  file_->Execute("CREATE TABLE Extra (Code TEXT(5))");
  file_->AddRelation({"Link", "Assets", "Lines", 2, {{"ID", "Asset"}}});
  rt::AboutToWait();
  {
    const store::Reading reading(file_);
    EXPECT_EQ(Ask(file_, "SELECT Code FROM Lines"), Value("MINE"));
  }
  rt::AboutToWait();
  EXPECT_NE(file_->Tables()->Find("Extra"), nullptr);
  rt::AboutToWait();
  EXPECT_EQ(file_->Relations().size(), 1U);
  rt::AboutToWait();
  EXPECT_TRUE(file_->CheckIntegrity().empty());
  file_->RollbackTrans();
  EXPECT_EQ(file_->Tables()->Find("Extra"), nullptr);
  EXPECT_EQ(file_->Relations().size(), 0U);
  EXPECT_EQ(Ask(file_, "SELECT COUNT(*) FROM Lines"), Value(0));
}

TEST_F(TransactionTest, RowsThatStatementsAddKeepTheirNumbersAcrossAWait) {
  file_->BeginTrans();
  file_->Execute("INSERT INTO Lines (Asset, Code) VALUES (1, 'mine')");
  file_->Execute("INSERT INTO Lines (Asset, Code) SELECT ID, Code FROM Assets WHERE ID <= 3");
  EXPECT_EQ(file_->Execute("UPDATE Lines SET Code = 'three' WHERE ID = 3"), 1);
  rt::AboutToWait();
  EXPECT_EQ(Other("do INSERT INTO Lines (Asset, Code) VALUES (2, 'theirs')"), "0.");
  EXPECT_EQ(file_->Execute("UPDATE Lines SET Code = 'first' WHERE ID = 1"), 1);
  file_->CommitTrans();
  EXPECT_EQ(Other("ask SELECT Code FROM Lines WHERE ID = 1 AND Asset = 1"), "first.");
  EXPECT_EQ(Other("ask SELECT Code FROM Lines WHERE ID = 3 AND Asset = 2"), "three.");
  EXPECT_EQ(Other("ask SELECT Code FROM Lines WHERE ID > 4"), "theirs.");
}

TEST_F(TransactionTest, WhatAGroupHasAcceptedIsStoredBeforeAWaitAlsoBehindARollback) {
  auto table = ByCode();
  file_->EnterGroup();
  file_->BeginTrans();
  file_->Execute("UPDATE Assets SET [Year] = 1 WHERE Code = 'A1'");
  file_->CommitTrans(store::Commit::WithGroup);
  file_->BeginTrans();
  file_->Execute("UPDATE Assets SET [Year] = 2 WHERE Code = 'A2'");
  file_->RollbackTrans();
  EXPECT_EQ(Ask(file_, "SELECT [Year] FROM Assets WHERE Code = 'A1'"), Value(std::int16_t{1}));
  file_->BeginTrans();
  file_->Execute("UPDATE Assets SET [Year] = 3 WHERE Code = 'A3'");
  file_->RollbackTrans();
  rt::AboutToWait();
  EXPECT_EQ(Other("ask SELECT [Year] FROM Assets WHERE Code = 'A1'"), "1.");
  EXPECT_EQ(Other("edit A1"), "0.");
  EXPECT_EQ(Other("ask SELECT COUNT(*) FROM Assets WHERE [Year] IN (2, 3)"), "0.");
  file_->FinishGroup();
}

// Two cursors of one connection, one of them on rows that are kept in memory, one in the file.
TEST_F(TransactionTest, CursorsOfOneGroupSeeEachOthersChanges) {
  auto cached = ByCode();
  auto plain = Cursor::OpenTable(file_, "Assets", Locking::Pessimistic);
  file_->EnterGroup();
  file_->BeginTrans();
  EXPECT_EQ(plain->Get(plain->FieldIndex("Code")), Value("A0"));
  cached->Seek({Value("A0")});
  Change(*cached, "Year", 11);
  EXPECT_EQ(plain->Get(plain->FieldIndex("Year")), Value(std::int16_t{11}));
  Change(*plain, "Miles", 22.0F);
  EXPECT_EQ(cached->Get(cached->FieldIndex("Miles")), Value(22.0F));
  cached->Seek({Value("NEW")});
  cached->AddNew();
  cached->Set(cached->FieldIndex("Code"), "NEW");
  cached->Update();
  plain->GoTo(cached->LastModified());
  EXPECT_EQ(plain->Get(plain->FieldIndex("Code")), Value("NEW"));
  cached->Seek({Value("A0")});
  Change(*cached, "Code", "RENAMED");
  cached->Seek({Value("A0")});
  EXPECT_TRUE(cached->NoMatch());
  file_->CommitTrans(store::Commit::WithGroup);
  file_->FinishGroup();
  EXPECT_EQ(Other("ask SELECT [Year] FROM Assets WHERE Code = 'RENAMED' AND Miles = 22"), "11.");
}

}  // namespace
