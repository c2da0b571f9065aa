// New records keep their numbers when a transaction is written again.
#include <gtest/gtest.h>

#include "platform/runtime/Waits.h"
#include "support/SecondProcess.h"
#include "support/SmallFile.h"
#include "support/TempDirectory.h"

namespace {

using rt::Value;
using store::Cursor;
using store::Locking;
using test::Ask;

/// Another user, who adds a line at each request and reports its number.
class NewNumbers : public testing::Test {
 protected:
  NewNumbers()
      : other_([this](test::SecondProcess::Channel& talk) {
          while (talk.Hear() == "add") {
            const auto lines = Cursor::OpenTable(test::OpenSmallFile(path_), "Lines", Locking::Pessimistic);
            talk.Say(std::to_string(Add(*lines, "THEIRS")));
          }
        }) {
    test::MakeSmallFile(path_);
    file_ = test::OpenSmallFile(path_);
    lines_ = Cursor::OpenTable(file_, "Lines", Locking::Pessimistic);
  }

  /// Reads the number before it stores the line, as windows do.
  static int Add(Cursor& lines, const std::string& code) {
    lines.AddNew();
    const int id = lines.Get(lines.FieldIndex("ID")).AsLong();
    lines.Set(lines.FieldIndex("Code"), code);
    lines.Update();
    return id;
  }
  int OtherAdds() {
    other_.Talk().Say("add");
    return std::stoi(other_.Talk().Hear());
  }
  std::string Codes() {
    std::string codes;
    for (const auto rows = Cursor::OpenQuery(file_, "SELECT * FROM Lines", Locking::ReadOnly); !rows->AtEnd();
         rows->MoveNext())
      codes += rows->Get(rows->FieldIndex("ID")).AsText() + " " +
               rows->Get(rows->FieldIndex("Code")).AsText() + "\n";
    return codes;
  }

  test::TempDirectory directory_;
  std::string path_ = directory_.Path("DW.MDB");
  test::SecondProcess other_;
  std::shared_ptr<store::Connection> file_;
  std::unique_ptr<Cursor> lines_;
};

TEST_F(NewNumbers, TheFirstOfATableIsKeptWhileItsUserThinks) {
  file_->BeginTrans();
  lines_->AddNew();
  EXPECT_EQ(lines_->Get(lines_->FieldIndex("ID")), Value(1));
  rt::AboutToWait();
  EXPECT_EQ(OtherAdds(), 2);
  lines_->Set(lines_->FieldIndex("Code"), "MINE");
  lines_->Update();
  EXPECT_EQ(Add(*lines_, "MINE"), 3);
  rt::AboutToWait();
  EXPECT_EQ(OtherAdds(), 4);
  file_->CommitTrans();
  EXPECT_EQ(Codes(), "1 MINE\n2 THEIRS\n3 MINE\n4 THEIRS\n");
}

TEST_F(NewNumbers, AreKeptWhereAnInnerTransactionIsTakenBack) {
  file_->BeginTrans();
  EXPECT_EQ(Add(*lines_, "MINE"), 1);
  file_->BeginTrans();
  EXPECT_EQ(Add(*lines_, "NOBODY"), 2);
  file_->RollbackTrans();
  EXPECT_EQ(OtherAdds(), 3);
  file_->CommitTrans();
  EXPECT_EQ(Codes(), "1 MINE\n3 THEIRS\n");
}

TEST_F(NewNumbers, AreKeptWhereAGroupLosesOneOfItsTransactions) {
  file_->EnterGroup();
  file_->BeginTrans();
  EXPECT_EQ(Add(*lines_, "MINE"), 1);
  file_->CommitTrans(store::Commit::WithGroup);
  file_->BeginTrans();
  EXPECT_EQ(Add(*lines_, "NOBODY"), 2);
  file_->RollbackTrans();
  EXPECT_EQ(OtherAdds(), 3);
  file_->FinishGroup();
  EXPECT_EQ(Codes(), "1 MINE\n3 THEIRS\n");
}

}  // namespace
