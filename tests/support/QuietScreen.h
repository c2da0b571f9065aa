#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/screen/Screen.h"

namespace test {

/// A user who answers every box, for work whose boxes come as they come: OK, Yes, but Cancel where Retry is
/// offered. Sleeps are cut to a millisecond.
class QuietScreen : public screen::Screen {
 public:
  /// Puts one in place for the rest of the process.
  static std::shared_ptr<QuietScreen> Install();

  /// The answer where OK and Cancel are offered.
  screen::Answer okOrCancel = screen::Answer::Ok;
  /// Called at each box before it is answered.
  std::function<void(const screen::Box&)> onBox;
  const std::vector<std::string>& Texts() const { return texts_; }
  /// The texts of the boxes so far, each in angles, and forgets them.
  std::string TakeTexts();

  screen::Answer ShowBox(const screen::Box& box) override;
  std::string AskText(const std::string&, const std::string&, const std::string&) override { return {}; }
  void SetPointer(screen::Pointer) override {}
  void DoEvents() override {}
  void Sleep(int milliseconds) override;
  void ShowNotice(const std::string&, const std::string&) override {}
  void HideNotice() override {}

 private:
  std::vector<std::string> texts_;
};

}  // namespace test
