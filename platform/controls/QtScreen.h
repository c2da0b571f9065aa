// The user's screen on a desktop.
#pragma once

#include <functional>
#include <string>

#include "platform/screen/Screen.h"

namespace ui {

class QtScreen : public screen::Screen {
 public:
  /// The notice window; it belongs to the program's own forms.
  std::function<void(const std::string& title, const std::string& text)> showNotice;
  std::function<void()> hideNotice;

  /// The user can mark and copy the text of a box; Esc is the safe answer.
  screen::Answer ShowBox(const screen::Box& box) override;
  std::string AskText(const std::string& prompt, const std::string& title, const std::string& text) override;
  void SetPointer(screen::Pointer pointer) override;
  void DoEvents() override;
  void Sleep(int milliseconds) override;
  void ShowNotice(const std::string& title, const std::string& text) override;
  void HideNotice() override;

 private:
  screen::Pointer pointer_ = screen::Pointer::Normal;
};

}  // namespace ui
