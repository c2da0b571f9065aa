#include "platform/screen/Screen.h"

#include <utility>

#include "platform/runtime/Waits.h"
#include "platform/screen/ConsoleScreen.h"

namespace screen {
namespace {

std::shared_ptr<Screen>& Installed() {
  static std::shared_ptr<Screen> installed;
  return installed;
}

Pointer& ShownPointer() {
  static Pointer pointer = Pointer::Normal;
  return pointer;
}

/// A function may replace the screen while it shows a box; the caller keeps the old one alive.
std::shared_ptr<Screen> Held() {
  static const std::shared_ptr<Screen> console = std::make_shared<ConsoleScreen>();
  return Installed() ? Installed() : console;
}

const std::string& TitleOr(const std::string& title) { return title.empty() ? ApplicationTitle() : title; }

}  // namespace

std::shared_ptr<Screen> Install(std::shared_ptr<Screen> screen) {
  std::swap(screen, Installed());
  ShownPointer() = Pointer::Normal;
  return screen;
}

Screen& Current() { return *Held(); }

const std::string& ApplicationTitle() {
  static const std::string title = "Drovewright";
  return title;
}

Answer MessageBox(const std::string& text, Icon icon, Buttons buttons, const std::string& title) {
  rt::AboutToWait();
  return Held()->ShowBox({text, icon, buttons, TitleOr(title)});
}

std::string InputBox(const std::string& prompt, const std::string& title, const std::string& text) {
  rt::AboutToWait();
  return Held()->AskText(prompt, TitleOr(title), text);
}

Pointer SetPointer(Pointer pointer) {
  Held()->SetPointer(pointer);
  return std::exchange(ShownPointer(), pointer);
}

void DoEvents() { Held()->DoEvents(); }

void Sleep(int milliseconds) {
  rt::AboutToWait();
  Held()->Sleep(milliseconds);
}

void ShowNotice(const std::string& title, const std::string& text) {
  Held()->ShowNotice(TitleOr(title), text);
}

void HideNotice() { Held()->HideNotice(); }

}  // namespace screen
