#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/screen/Screen.h"

namespace test {

/// A user who answers every box, for work whose boxes are not known before: OK, Yes, but Cancel if the box
/// offers Retry. Sleeps are cut to a millisecond.
class QuietScreen : public screen::Screen {
 public:
  /// Installs one for the rest of the process.
  static std::shared_ptr<QuietScreen> Install();

  /// The answer to boxes with OK and Cancel.
  screen::Answer okOrCancel = screen::Answer::Ok;
  /// Runs at each box before its answer.
  std::function<void(const screen::Box&)> onBox;
  const std::vector<std::string>& Texts() const { return texts_; }
  /// Returns the texts of the boxes so far, each in angle brackets, and clears them.
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
