#include "support/QuietScreen.h"

#include <chrono>
#include <thread>

namespace test {

std::shared_ptr<QuietScreen> QuietScreen::Install() {
  auto quiet = std::make_shared<QuietScreen>();
  screen::Install(quiet);
  return quiet;
}

std::string QuietScreen::TakeTexts() {
  std::string all;
  for (const std::string& text : texts_) all += "<" + text + ">";
  texts_.clear();
  return all;
}

screen::Answer QuietScreen::ShowBox(const screen::Box& box) {
  if (onBox) onBox(box);
  texts_.push_back(box.text);
  switch (box.buttons) {
    case screen::Buttons::YesNo:
      return screen::Answer::Yes;
    case screen::Buttons::RetryCancel:
      return screen::Answer::Cancel;
    case screen::Buttons::OkCancel:
      return okOrCancel;
    default:
      return screen::Answer::Ok;
  }
}

void QuietScreen::Sleep(int) { std::this_thread::sleep_for(std::chrono::milliseconds(1)); }

}  // namespace test
