#include "platform/screen/ScriptedScreen.h"

#include <stdexcept>

namespace screen {
namespace {

const char* Name(Icon icon) {
  switch (icon) {
    case Icon::None:
      return "plain";
    case Icon::Critical:
      return "critical";
    case Icon::Question:
      return "question";
    case Icon::Exclamation:
      return "exclamation";
    case Icon::Information:
      return "information";
  }
  return "unknown";
}

const char* Name(Buttons buttons) {
  switch (buttons) {
    case Buttons::Ok:
      return "OK";
    case Buttons::OkCancel:
      return "OK/Cancel";
    case Buttons::YesNo:
      return "Yes/No";
    case Buttons::RetryCancel:
      return "Retry/Cancel";
  }
  return "unknown";
}

/// Line breaks by their names: the kind of break is part of a box's words.
std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '\r') {
      quoted += "\\r";
    } else if (c == '\n') {
      quoted += "\\n";
    } else {
      quoted += c;
    }
  }
  return quoted + "\"";
}

std::string Described(const Box& box) {
  return std::string("the ") + Name(box.icon) + " " + Name(box.buttons) + " box " + Quoted(box.title) + ": " +
         Quoted(box.text);
}

bool Offers(Buttons buttons, Answer answer) {
  switch (buttons) {
    case Buttons::Ok:
      return answer == Answer::Ok;
    case Buttons::OkCancel:
      return answer == Answer::Ok || answer == Answer::Cancel;
    case Buttons::YesNo:
      return answer == Answer::Yes || answer == Answer::No;
    case Buttons::RetryCancel:
      return answer == Answer::Retry || answer == Answer::Cancel;
  }
  return false;
}

Answer SafeAnswer(Buttons buttons) {
  if (buttons == Buttons::Ok) return Answer::Ok;
  return buttons == Buttons::YesNo ? Answer::No : Answer::Cancel;
}

const std::string& TitleOf(const Box& box) { return box.title.empty() ? ApplicationTitle() : box.title; }

}  // namespace

void ScriptedScreen::Expect(std::string text, Icon icon, Buttons buttons, Answer answer, std::string title) {
  expected_.push_back({{std::move(text), icon, buttons, std::move(title)}, false, false, answer, {}});
}

void ScriptedScreen::ExpectPart(std::string part, Icon icon, Buttons buttons, Answer answer) {
  expected_.push_back({{std::move(part), icon, buttons, {}}, true, false, answer, {}});
}

void ScriptedScreen::ExpectInput(std::string prompt, std::string answer) {
  expected_.push_back(
      {{std::move(prompt), Icon::None, Buttons::Ok, {}}, false, true, Answer::Ok, std::move(answer)});
}

bool ScriptedScreen::Matches(const Expected& expected, const Box& box, bool input) {
  if (expected.input != input) return false;
  if (input) return expected.box.text == box.text;
  if (expected.box.icon != box.icon || expected.box.buttons != box.buttons) return false;
  if (expected.part) return box.text.find(expected.box.text) != std::string::npos;
  return expected.box.text == box.text && TitleOf(expected.box) == TitleOf(box);
}

std::string ScriptedScreen::NotShown(const Expected& expected) {
  if (expected.input) return "not asked: " + Quoted(expected.box.text);
  return "not shown: " + Described(expected.box);
}

std::optional<ScriptedScreen::Expected> ScriptedScreen::Take(const Box& box, bool input) {
  for (std::size_t i = 0; i < expected_.size(); ++i) {
    if (!Matches(expected_[i], box, input)) continue;
    // Reports the earlier expectations as not shown. The test goes on after them, so that one fault does not
    // cause a list of others.
    for (; i > 0; --i) {
      faults_.push_back(NotShown(expected_.front()));
      expected_.pop_front();
    }
    Expected found = std::move(expected_.front());
    expected_.pop_front();
    return found;
  }
  faults_.push_back(input ? "unexpected question: " + Quoted(box.text) : "unexpected: " + Described(box));
  // Without this limit, a loop that shows the same box until it gets another answer would never end.
  static constexpr std::size_t kPatience = 200;
  if (faults_.size() > kPatience)
    throw std::logic_error("too many unexpected boxes; the last was " + faults_.back());
  return std::nullopt;
}

std::vector<std::string> ScriptedScreen::Faults() const {
  std::vector<std::string> faults = faults_;
  for (const Expected& expected : expected_) faults.push_back(NotShown(expected));
  return faults;
}

Answer ScriptedScreen::ShowBox(const Box& box) {
  shown_.push_back(box);
  if (onBox) onBox(box);
  const auto expected = Take(box, false);
  if (!expected) return SafeAnswer(box.buttons);
  if (!Offers(box.buttons, expected->answer)) {
    faults_.push_back("the script's answer is no button of " + Described(box));
    return SafeAnswer(box.buttons);
  }
  return expected->answer;
}

std::string ScriptedScreen::AskText(const std::string& prompt, const std::string& title, const std::string&) {
  const Box box{prompt, Icon::None, Buttons::Ok, title};
  shown_.push_back(box);
  if (onBox) onBox(box);
  const auto expected = Take(box, true);
  return expected ? expected->reply : std::string();
}

void ScriptedScreen::DoEvents() {
  if (onEvents) onEvents();
}

void ScriptedScreen::Sleep(int milliseconds) {
  ++sleeps_;
  slept_ += milliseconds;
  if (onSleep) onSleep(milliseconds);
}

void ScriptedScreen::ShowNotice(const std::string& title, const std::string& text) {
  notices_.push_back(title.empty() ? text : title + ": " + text);
}

}  // namespace screen
