// Reports by e-mail: a script plays the mail program.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/print/PrintError.h"
#include "platform/print/view/DesktopMailer.h"
#include "support/ScreenScript.h"
#include "support/TempDirectory.h"

namespace {

std::string Content(const std::string& path) {
  std::ostringstream content;
  content << std::ifstream(path).rdbuf();
  return content.str();
}

class MailerTest : public testing::Test {
 protected:
  MailerTest() { std::ofstream(report_) << "{\\rtf1}"; }
  ~MailerTest() override {
    unsetenv("DROVEWRIGHT_MAILER");
    print::DesktopMailer::askForFile = usual_;
  }
  /// The mail program from now on: a shell script.
  void UseMailer(const std::string& script) {
    const std::string path = directory_.Path("mailer");
    std::ofstream(path) << "#!/bin/sh\n" << script << '\n';
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    setenv("DROVEWRIGHT_MAILER", path.c_str(), 1);
  }
  void ExpectOffer(screen::Answer answer) {
    screen_->Expect(
        "No mail program on this computer takes the report. Do you want to save it as a file instead?",
        screen::Icon::Question, screen::Buttons::YesNo, answer);
  }

  test::TempDirectory directory_;
  std::string report_ = directory_.Path("Gas Mileage Costs.rtf");
  std::function<std::string(const std::string&)> usual_ = print::DesktopMailer::askForFile;
  test::ScreenScript screen_;
  print::DesktopMailer mailer_;
};

}  // namespace

TEST_F(MailerTest, GivesSubjectAndFileToTheMailProgram) {
  const std::string said = directory_.Path("said");
  UseMailer("for word in \"$@\"; do echo \"$word\"; done > '" + said + "'");
  mailer_.Send(report_, "Bob's \"costs\" $HOME");
  EXPECT_EQ(Content(said), "--subject\nBob's \"costs\" $HOME\n--attach\n" + report_ + "\n");
}

TEST_F(MailerTest, OffersToSaveWhereNobodyTakesTheFile) {
  UseMailer("exit 3");
  const std::string saved = directory_.Path("saved.rtf");
  print::DesktopMailer::askForFile = [&](const std::string& name) {
    EXPECT_EQ(name, "Gas Mileage Costs.rtf");
    return saved;
  };
  ExpectOffer(screen::Answer::No);
  mailer_.Send(report_, "x");
  EXPECT_FALSE(std::filesystem::exists(saved));
  ExpectOffer(screen::Answer::Yes);
  mailer_.Send(report_, "x");
  EXPECT_EQ(Content(saved), "{\\rtf1}");
  setenv("DROVEWRIGHT_MAILER", directory_.Path("no such program").c_str(), 1);
  print::DesktopMailer::askForFile = [&](const std::string&) { return directory_.Path("missing/saved.rtf"); };
  ExpectOffer(screen::Answer::Yes);
  EXPECT_THROW(mailer_.Send(report_, "x"), print::PrintError);
}
