#include "platform/screen/Screen.h"

#include <gtest/gtest.h>

#include <sstream>

#include "platform/runtime/Waits.h"
#include "platform/screen/ConsoleScreen.h"
#include "platform/screen/ScriptedScreen.h"

namespace screen {
namespace {

/// Installs a scripted screen for one test.
class ScriptedTest : public testing::Test {
 protected:
  void SetUp() override { earlier_ = Install(script_); }
  void TearDown() override { Install(earlier_); }

  std::shared_ptr<ScriptedScreen> script_ = std::make_shared<ScriptedScreen>();
  std::shared_ptr<Screen> earlier_;
};

TEST_F(ScriptedTest, AnswersInOrderAndFindsNoFault) {
  script_->Expect("Post now?\rReally?", Icon::Question, Buttons::YesNo, Answer::Yes);
  script_->ExpectInput("Name of this workstation:", "OFFICE");
  script_->ExpectPart("locked by user", Icon::Exclamation, Buttons::RetryCancel, Answer::Retry);
  script_->Expect("Done.", Icon::Information, Buttons::Ok, Answer::Ok, "Posting");

  EXPECT_EQ(MessageBox("Post now?\rReally?", Icon::Question, Buttons::YesNo), Answer::Yes);
  EXPECT_EQ(InputBox("Name of this workstation:"), "OFFICE");
  EXPECT_EQ(MessageBox("currently locked by user 'ADMIN'", Icon::Exclamation, Buttons::RetryCancel),
            Answer::Retry);
  EXPECT_EQ(MessageBox("Done.", Icon::Information, Buttons::Ok, "Posting"), Answer::Ok);
  EXPECT_TRUE(script_->Faults().empty());
  ASSERT_EQ(script_->Shown().size(), 4U);
  EXPECT_EQ(script_->Shown()[0].title, "Drovewright");
}

TEST_F(ScriptedTest, EveryDifferenceIsAFault) {
  script_->Expect("One\r", Icon::Critical);
  EXPECT_EQ(MessageBox("One\n", Icon::Critical), Answer::Ok);
  EXPECT_EQ(script_->Faults().size(), 2U) << "another line break is another text";
  MessageBox("One\r", Icon::Information);
  MessageBox("One\r", Icon::Critical, Buttons::OkCancel);
  MessageBox("One\r", Icon::Critical, Buttons::Ok, "Other title");
  InputBox("One\r");
  EXPECT_EQ(script_->Faults().size(), 6U);
  EXPECT_EQ(script_->Faults().back(), "not shown: the critical OK box \"Drovewright\": \"One\\r\"");
  EXPECT_EQ(MessageBox("Delete?", Icon::Question, Buttons::YesNo), Answer::No) << "the safe answer";
}

TEST_F(ScriptedTest, ABoxThatIsLeftOutIsOneFaultAndTheScriptGoesOn) {
  script_->Expect("First", Icon::None);
  script_->Expect("Second", Icon::None, Buttons::OkCancel, Answer::Cancel);
  EXPECT_EQ(MessageBox("Second", Icon::None, Buttons::OkCancel), Answer::Cancel);
  ASSERT_EQ(script_->Faults().size(), 1U);
  EXPECT_NE(script_->Faults()[0].find("\"First\""), std::string::npos);
}

TEST_F(ScriptedTest, AnAnswerThatTheBoxDoesNotOfferIsAFault) {
  script_->Expect("Sure?", Icon::Question, Buttons::YesNo, Answer::Ok);
  EXPECT_EQ(MessageBox("Sure?", Icon::Question, Buttons::YesNo), Answer::No);
  EXPECT_EQ(script_->Faults().size(), 1U);
}

TEST_F(ScriptedTest, AnEndlessLoopOfBoxesEndsTheTest) {
  const auto loop = [] {
    while (MessageBox("Again?", Icon::Question, Buttons::YesNo) == Answer::No) {
    }
  };
  EXPECT_THROW(loop(), std::logic_error);
}

TEST_F(ScriptedTest, DataIsGivenBackBeforeEachWaitButNotForEvents) {
  static int waits = 0;
  rt::BeforeEveryWait([] { ++waits; });
  waits = 0;
  script_->Expect("Box", Icon::None);
  script_->ExpectInput("Ask", "x");
  int seen = -1;
  script_->onBox = [&](const Box&) { seen = waits; };
  MessageBox("Box");
  EXPECT_EQ(seen, 1) << "before the box is shown, not after";
  InputBox("Ask");
  EXPECT_EQ(waits, 2);
  int during = 0;
  script_->onSleep = [&](int milliseconds) { during = milliseconds + waits; };
  Sleep(1000);
  EXPECT_EQ(during, 1003);
  Sleep(100);
  EXPECT_EQ(script_->SleepCount(), 2);
  EXPECT_EQ(script_->SleptMilliseconds(), 1100);
  int events = 0;
  script_->onEvents = [&] { ++events; };
  DoEvents();
  ShowNotice("Compacting", "Please wait...");
  HideNotice();
  EXPECT_EQ(events, 1);
  EXPECT_EQ(waits, 4);
  EXPECT_EQ(script_->Notices(), std::vector<std::string>{"Compacting: Please wait..."});
  EXPECT_TRUE(script_->Faults().empty());
}

TEST_F(ScriptedTest, AnHourglassWithinAnotherLeavesTheOuterOne) {
  {
    const Hourglass outer;
    { const Hourglass inner; }
    EXPECT_EQ(script_->CurrentPointer(), Pointer::Hourglass);
  }
  EXPECT_EQ(script_->CurrentPointer(), Pointer::Normal);
}

TEST(ConsoleScreen, WithoutAPersonTheSafeChoiceIsTaken) {
  std::istringstream in("y\ny\ny\ny\n");
  std::ostringstream out;
  ConsoleScreen console(Answering::SafeChoice, in, out);
  EXPECT_EQ(console.ShowBox({"a", Icon::None, Buttons::Ok, ""}), Answer::Ok);
  EXPECT_EQ(console.ShowBox({"b", Icon::None, Buttons::OkCancel, ""}), Answer::Cancel);
  EXPECT_EQ(console.ShowBox({"c", Icon::None, Buttons::YesNo, ""}), Answer::No);
  EXPECT_EQ(console.ShowBox({"d", Icon::None, Buttons::RetryCancel, ""}), Answer::Cancel);
  EXPECT_EQ(console.AskText("e", "", "default"), "");
  EXPECT_EQ(in.tellg(), 0) << "nothing is read";
  EXPECT_EQ(out.str(), "Drovewright: a\nDrovewright: b\nDrovewright: c\nDrovewright: d\nDrovewright: e\n");

  ConsoleScreen yes(Answering::AssumeYes, in, out);
  EXPECT_EQ(yes.ShowBox({"b", Icon::None, Buttons::OkCancel, ""}), Answer::Ok);
  EXPECT_EQ(yes.ShowBox({"c", Icon::None, Buttons::YesNo, ""}), Answer::Yes);
  EXPECT_EQ(yes.ShowBox({"d", Icon::None, Buttons::RetryCancel, ""}), Answer::Cancel);
}

TEST(ConsoleScreen, APersonAnswersByLettersUntilTheInputEnds) {
  std::istringstream in("x\n\n Yes\nRETRY\nc\nOFFICE\n\nn");
  std::ostringstream out;
  ConsoleScreen console(Answering::Person, in, out);
  EXPECT_EQ(console.ShowBox({"1", Icon::Question, Buttons::YesNo, ""}), Answer::Yes);
  EXPECT_EQ(console.ShowBox({"2", Icon::Question, Buttons::RetryCancel, ""}), Answer::Retry);
  EXPECT_EQ(console.ShowBox({"3", Icon::Question, Buttons::OkCancel, ""}), Answer::Cancel);
  EXPECT_EQ(console.AskText("4", "", ""), "OFFICE");
  EXPECT_EQ(console.AskText("5", "", "kept"), "kept");
  EXPECT_EQ(console.ShowBox({"6", Icon::Question, Buttons::YesNo, ""}), Answer::No);
  EXPECT_EQ(console.ShowBox({"7", Icon::Question, Buttons::RetryCancel, ""}), Answer::Cancel)
      << "the end of input";
  EXPECT_EQ(console.AskText("8", "", "kept"), "");
}

TEST(ConsoleScreen, AllKindsOfLineBreaksBreakTheLine) {
  std::istringstream in;
  std::ostringstream out;
  ConsoleScreen console(Answering::SafeChoice, in, out);
  console.ShowBox({"a\rb\nc\r\nd\r\re", Icon::None, Buttons::Ok, "Title"});
  EXPECT_EQ(out.str(), "Title: a\nb\nc\nd\n\ne\n");
}

}  // namespace
}  // namespace screen
