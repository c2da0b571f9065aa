#include "shell/forms/ProgramEnd.h"

#include <signal.h>

#include <QMessageBox>
#include <filesystem>
#include <utility>

#include "ShellTest.h"
#include "platform/controls/Application.h"
#include "platform/controls/Later.h"
#include "platform/controls/QtScreen.h"
#include "platform/dao/Dao.h"
#include "support/SecondProcess.h"

namespace {

using test::SecondProcess;
using Channel = SecondProcess::Channel;

/// Has a record in edit, as windows have.
class Holder : public ui::Form {
 public:
  explicit Holder(const std::string& path) : Form("frmHolder") {
    workspace_ = dao::DBEngine::CreateWorkspace("Holder", "admin", "");
    database_ = workspace_->OpenDatabase(path);
    rows_ = database_->OpenRecordset("SELECT * FROM [Divisions]");
    rows_->Edit();
    AtUnload([this] { workspace_->Close(); });
  }

 protected:
  void OnUnload() override {
    // A window's rules for leaving would show a box here.
    if (screen::MessageBox("Save changes?", screen::Icon::Question, screen::Buttons::YesNo) ==
        screen::Answer::Yes)
      rows_->Update();
    throw std::runtime_error("a second error");
  }

 private:
  std::shared_ptr<dao::Workspace> workspace_;
  std::shared_ptr<dao::Database> database_;
  std::shared_ptr<dao::Recordset> rows_;
};

/// A desktop that sends its boxes to the test instead of showing them.
class ToldScreen : public ui::QtScreen {
 public:
  explicit ToldScreen(Channel& channel) : channel_(channel) {}
  screen::Answer ShowBox(const screen::Box& box) override {
    channel_.Say((box.icon == screen::Icon::Critical ? box.title + ": " : "not critical: ") +
                 QString::fromStdString(box.text).replace('\n', '|').toStdString());
    if (onBox) onBox();
    return screen::Answer::Ok;
  }
  std::function<void()> onBox;

 private:
  Channel& channel_;
};

/// A program with two windows, one of which holds a record. It starts before the test has a file open.
class ProgramEndTest : public testing::Test {
 protected:
  /// Runs `work` in the program once its windows are open.
  static std::function<void(Channel&)> WithWindows(std::function<void(ToldScreen&)> work) {
    return [work = std::move(work)](Channel& channel) {
      dw::SetDataPath(channel.Hear());
      dw::CurrentUserID = 3;
      dw::SignedOn = true;
      const auto screen = std::make_shared<ToldScreen>(channel);
      screen::Install(screen);
      dw::InstallFormEnds();
      dw::InstallProgramEnd();
      (new ui::Form("frmFirst"))->ShowForm();
      (new Holder(dw::DataFile))->ShowForm();
      channel.Say("ready");
      work(*screen);
    };
  }
  /// Makes the files and starts the program's work.
  void Begin(SecondProcess& program) {
    files_ = std::make_unique<test::SmallFleet>(std::initializer_list<const char*>{"DW_USERS.MDB"});
    files_->Add("Divisions", {{"Division ID", "NORTH"}});
    files_->Run("INSERT INTO [Access Log] ([User ID], [Time In]) VALUES (3, #3/15/2026 8:00:00 AM#)",
                "DW_USERS.MDB");
    program.Talk().Say(files_->Path({}));
    EXPECT_EQ(program.Talk().Hear(), "ready");
  }
  /// The session is closed; the record is unchanged and free.
  void ExpectOrder() {
    EXPECT_EQ(files_->Ask("SELECT COUNT(*) FROM [Access Log] WHERE [Time Out] IS NULL", "DW_USERS.MDB"), "0");
    EXPECT_EQ(files_->Run("UPDATE [Divisions] SET [Description] = 'free'"), 1);
    EXPECT_FALSE(std::filesystem::exists(files_->Path("DW.LDB")));
  }

  std::unique_ptr<test::SmallFleet> files_;
};

TEST_F(ProgramEndTest, AnErrorThatNothingCatchesIsShownOnceAndEndsTheProgram) {
  SecondProcess program(WithWindows([](ToldScreen& screen) {
    // The error comes from the event loop of a modal window, and another one while its box is open.
    screen.onBox = [] { ui::Guard([] { throw std::runtime_error("another"); }); };
    ui::Later(*qApp, [] { ui::Guard([] { throw store::StoreError(3021, "No current record."); }); });
    auto* modal = new ui::Form("frmModal");
    modal->ShowModal();
  }));
  Begin(program);
  EXPECT_EQ(program.Talk().Hear(), "Drovewright: Run-time error '3021':||No current record.");
  // The program then ends: no question, no second error.
  EXPECT_THROW(program.Talk().Hear(), std::runtime_error);
  EXPECT_EQ(program.Join(), 1);
  ExpectOrder();
}

TEST_F(ProgramEndTest, TheOrderlyEndSaysNothing) {
  SecondProcess program(WithWindows([](ToldScreen&) { ui::Guard([] { throw dw::ApplicationEnd(); }); }));
  Begin(program);
  EXPECT_THROW(program.Talk().Hear(), std::runtime_error);
  EXPECT_EQ(program.Join(), 0);
  ExpectOrder();
}

TEST_F(ProgramEndTest, TheSystemCanEndItFromWithinABox) {
  SecondProcess program(WithWindows([](ToldScreen&) {
    QMessageBox box;
    ui::Later(*qApp, [] { kill(getpid(), SIGTERM); });
    box.exec();
  }));
  Begin(program);
  EXPECT_THROW(program.Talk().Hear(), std::runtime_error);
  EXPECT_EQ(program.Join(), 0);
  ExpectOrder();
}

}  // namespace
