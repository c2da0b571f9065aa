#include <signal.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "ShellTest.h"
#include "platform/system/SingleInstance.h"
#include "support/Program.h"
#include "support/SecondProcess.h"

namespace {

/// Starts the real program with the settings of the test, on the offscreen platform.
class ProgramTest : public test::ShellTest {
 protected:
  std::vector<std::string> Command(std::vector<std::string> arguments = {}) {
    std::vector<std::string> command{"/usr/bin/env", "QT_QPA_PLATFORM=offscreen",
                                     "DROVEWRIGHT_SETTINGS=" + directory_.Path("settings.ini"),
                                     DROVEWRIGHT_PROGRAM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
  }
  /// Waits until a copy has claimed to be the first: the lock file then has its number.
  bool WaitForFirst() const {
    for (int i = 0; i < 3000; ++i) {
      for (const auto& entry : std::filesystem::directory_iterator(directory_.Path()))
        if (entry.path().extension() == ".lock" && entry.file_size() > 0) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
  }
};

TEST_F(ProgramTest, ASecondStartEndsAndTheFirstGoesOn) {
  NameWorkstation("Front Desk");
  test::Program first(Command());
  ASSERT_TRUE(WaitForFirst());
  const test::Outcome second = test::Program(Command()).Join();
  EXPECT_EQ(second.code, 0) << second.error;
  EXPECT_EQ(test::Program(Command()).Join().code, 0);
  first.Signal(SIGTERM);
  const test::Outcome ended = first.Join();
  EXPECT_EQ(ended.code, 0) << ended.error;
  // Nobody had signed on.
  EXPECT_EQ(Ask("SELECT COUNT(*) FROM [Access Log]"), "0");
}

TEST_F(ProgramTest, AStartBesideACopyThatHangsIsAProgramOfItsOwn) {
  NameWorkstation("Front Desk");
  test::Program first(Command());
  ASSERT_TRUE(WaitForFirst());
  // Waits until the first copy has started and does not lock the settings any more.
  while (sys::GetSetting("DW", "Control", "Initialized") != "Yes")
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  first.Signal(SIGSTOP);
  test::Program second(Command());
  // Longer than a start waits for an answer.
  std::this_thread::sleep_for(std::chrono::seconds(5));
  EXPECT_TRUE(second.Running());
  second.Signal(SIGTERM);
  EXPECT_EQ(second.Join().code, 0);
  first.Signal(SIGCONT);
  first.Signal(SIGTERM);
  EXPECT_EQ(first.Join().code, 0);
}

TEST_F(ProgramTest, UnderstandsItsOptions) {
  EXPECT_EQ(test::Program(Command({"--version"})).Join().out, "Drovewright 2.12.4\n");
  EXPECT_EQ(test::Program(Command({"--help"})).Join().code, 0);
  const test::Outcome refused = test::Program(Command({"--frob"})).Join();
  EXPECT_EQ(refused.code, 3);
  EXPECT_NE(refused.error.find("'--frob'"), std::string::npos);
}

TEST(SingleInstance, TheFirstHearsTheOthersAndALaterOneFollowsItsDeath) {
  test::SecondProcess first([](test::SecondProcess::Channel& channel) {
    setenv("XDG_RUNTIME_DIR", channel.Hear().c_str(), 1);
    sys::UseSettingsFile(channel.Hear());
    const auto claim = sys::SingleInstance::Claim();
    channel.Say(claim ? "first" : "not first");
    channel.Hear();
    // The first copy hangs for a while.
    std::string token;
    channel.Say("hung");
    channel.Hear();
    while (claim->TakeCall(token)) {
    }
    channel.Say("ready");
    token = "none";
    while (!claim->TakeCall(token)) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    claim->Answer();
    channel.Say("called " + token);
    channel.Hear();
  });
  const test::TempDirectory directory;
  setenv("XDG_RUNTIME_DIR", directory.Path().c_str(), 1);
  setenv("XDG_ACTIVATION_TOKEN", "token", 1);
  sys::UseSettingsFile(directory.Path("settings.ini"));
  first.Talk().Say(directory.Path());
  first.Talk().Say(directory.Path("settings.ini"));
  ASSERT_EQ(first.Talk().Hear(), "first");

  EXPECT_EQ(sys::SingleInstance::Claim(), nullptr);
  first.Talk().Say("hang");
  EXPECT_EQ(first.Talk().Hear(), "hung");
  EXPECT_FALSE(sys::SingleInstance::CallFirstForward()) << "a call alone is not an answer";
  first.Talk().Say("go on");
  EXPECT_EQ(first.Talk().Hear(), "ready");
  EXPECT_TRUE(sys::SingleInstance::CallFirstForward());
  EXPECT_EQ(first.Talk().Hear(), "called token");

  // With other settings, a copy works on other data and is a first copy, too.
  sys::UseSettingsFile(directory.Path("other.ini"));
  EXPECT_NE(sys::SingleInstance::Claim(), nullptr);
  sys::UseSettingsFile(directory.Path("settings.ini"));

  first.Kill();
  EXPECT_FALSE(sys::SingleInstance::CallFirstForward());
  EXPECT_NE(sys::SingleInstance::Claim(), nullptr);
  unsetenv("XDG_ACTIVATION_TOKEN");
  sys::UseSettingsFile({});
}

}  // namespace
