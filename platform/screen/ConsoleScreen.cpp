#include "platform/screen/ConsoleScreen.h"

#include <unistd.h>

#include <array>
#include <chrono>
#include <iostream>
#include <span>
#include <thread>

#include "platform/runtime/Letters.h"

namespace screen {
namespace {

struct Choice {
  Answer answer;
  char letter;
  const char* word;
};

constexpr std::array kOkCancel{Choice{Answer::Ok, 'o', "OK"}, Choice{Answer::Cancel, 'c', "Cancel"}};
constexpr std::array kYesNo{Choice{Answer::Yes, 'y', "Yes"}, Choice{Answer::No, 'n', "No"}};
constexpr std::array kRetryCancel{Choice{Answer::Retry, 'r', "Retry"}, Choice{Answer::Cancel, 'c', "Cancel"}};

/// The answers that a box offers; the last one is the safe choice. None for a box that has nothing to answer.
std::span<const Choice> ChoicesOf(Buttons buttons) {
  switch (buttons) {
    case Buttons::OkCancel:
      return kOkCancel;
    case Buttons::YesNo:
      return kYesNo;
    case Buttons::RetryCancel:
      return kRetryCancel;
    case Buttons::Ok:
      break;
  }
  return {};
}

std::string WithLineBreaks(const std::string& text) {
  std::string lines;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r') {
      lines.push_back(text[i]);
    } else {
      lines.push_back('\n');
      if (i + 1 < text.size() && text[i + 1] == '\n') ++i;
    }
  }
  return lines;
}

}  // namespace

ConsoleScreen::ConsoleScreen(Answering answering)
    : ConsoleScreen(
          answering == Answering::Person && isatty(STDIN_FILENO) == 0 ? Answering::SafeChoice : answering,
          std::cin, std::cerr) {}

ConsoleScreen::ConsoleScreen(Answering answering, std::istream& in, std::ostream& out)
    : answering_(answering), in_(in), out_(out) {}

Answer ConsoleScreen::ShowBox(const Box& box) {
  Write(box.title, box.text);
  const auto choices = ChoicesOf(box.buttons);
  if (choices.empty()) return Answer::Ok;
  const Answer safe = choices.back().answer;
  if (answering_ == Answering::SafeChoice) return safe;
  if (answering_ == Answering::AssumeYes) {
    return box.buttons == Buttons::RetryCancel ? safe : choices.front().answer;
  }
  std::string prompt;
  for (const Choice& choice : choices) {
    prompt += prompt.empty() ? "[" : ", ";
    prompt += std::string(1, choice.letter) + " = " + choice.word;
  }
  prompt += "] ";
  for (std::string line; ReadLine(prompt, line);) {
    const auto first = line.find_first_not_of(" \t");
    if (first == std::string::npos) continue;
    for (const Choice& choice : choices) {
      if (rt::FoldLetter(line[first]) == choice.letter) return choice.answer;
    }
  }
  return safe;
}

std::string ConsoleScreen::AskText(const std::string& prompt, const std::string& title,
                                   const std::string& text) {
  Write(title, prompt);
  if (answering_ != Answering::Person) return {};
  std::string line;
  if (!ReadLine(text.empty() ? "> " : "[" + text + "] > ", line)) return {};
  return line.empty() ? text : line;
}

void ConsoleScreen::Sleep(int milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void ConsoleScreen::ShowNotice(const std::string& title, const std::string& text) { Write(title, text); }

void ConsoleScreen::Write(const std::string& title, const std::string& text) {
  out_ << (title.empty() ? ApplicationTitle() : title) << ": " << WithLineBreaks(text) << std::endl;
}

bool ConsoleScreen::ReadLine(const std::string& prompt, std::string& line) {
  out_ << prompt << std::flush;
  return static_cast<bool>(std::getline(in_, line));
}

}  // namespace screen
