// Everything that the program says to the user outside a form: one small interface, which free functions
// call.
#pragma once

#include <memory>
#include <optional>
#include <string>

namespace screen {

enum class Icon { None, Critical, Question, Exclamation, Information };
enum class Buttons { Ok, OkCancel, YesNo, RetryCancel };
enum class Answer { Ok, Cancel, Yes, No, Retry };
enum class Pointer { Normal = 0, Hourglass = 11 };

/// A message box with its text. CR, LF and CR LF in the text are all line breaks.
struct Box {
  std::string text;
  Icon icon = Icon::None;
  Buttons buttons = Buttons::Ok;
  std::string title;
};

/// The user's screen: a desktop, a console, or a script in a test.
class Screen {
 public:
  virtual ~Screen() = default;
  virtual Answer ShowBox(const Box& box) = 0;
  /// The text that the user entered; empty when the user canceled. `text` is in the field at first.
  virtual std::string AskText(const std::string& prompt, const std::string& title,
                              const std::string& text) = 0;
  virtual void SetPointer(Pointer pointer) = 0;
  /// Lets pending events run.
  virtual void DoEvents() = 0;
  virtual void Sleep(int milliseconds) = 0;
  /// The notice window during a long step; it blocks nothing.
  virtual void ShowNotice(const std::string& title, const std::string& text) = 0;
  virtual void HideNotice() = 0;
};

/// Installs a screen and returns the earlier one. Without one, the console is used.
std::shared_ptr<Screen> Install(std::shared_ptr<Screen> screen);
Screen& Current();

/// The title of boxes without one of their own: "Drovewright".
const std::string& ApplicationTitle();

/// Shows a modal box and waits for its answer. Before that, gives the data files back to other
/// users.
Answer MessageBox(const std::string& text, Icon icon = Icon::None, Buttons buttons = Buttons::Ok,
                  const std::string& title = {});
std::string InputBox(const std::string& prompt, const std::string& title = {}, const std::string& text = {});
/// Shows a pointer and returns the earlier one.
Pointer SetPointer(Pointer pointer);
void DoEvents();
/// Waits; before that, gives the data files back to other users.
void Sleep(int milliseconds);
void ShowNotice(const std::string& title, const std::string& text);
void HideNotice();

/// Shows the hourglass for as long as it lives, and the earlier pointer afterwards.
class Hourglass {
 public:
  Hourglass() : earlier_(SetPointer(Pointer::Hourglass)) {}
  ~Hourglass() { SetPointer(earlier_); }
  Hourglass(const Hourglass&) = delete;
  Hourglass& operator=(const Hourglass&) = delete;

 private:
  Pointer earlier_;
};

}  // namespace screen
