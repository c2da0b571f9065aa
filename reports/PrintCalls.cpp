#include "reports/PrintCalls.h"

#include <algorithm>
#include <utility>

#include "platform/runtime/Text.h"
#include "platform/screen/Screen.h"

namespace dw {
namespace {

constexpr int kShortestError = 9;

std::shared_ptr<PrintCalls>& Installed() {
  static std::shared_ptr<PrintCalls> calls;
  return calls;
}

}  // namespace

std::shared_ptr<PrintCalls> InstallPrintCalls(std::shared_ptr<PrintCalls> calls) {
  return std::exchange(Installed(), std::move(calls));
}

PrintCalls& Engine() {
  static PrintCalls none;
  return Installed() ? *Installed() : none;
}

std::string GetEngineErrorText(int job) {
  int handle = 0, length = 0;
  if (!Engine().PEGetErrorText(job, &handle, &length)) return {};
  std::string text(static_cast<std::size_t>(std::max(length, 0)), ' ');
  if (!Engine().PEGetHandleString(handle, &text)) return {};
  // The text may end with a NUL.
  return text.substr(0, text.find('\0'));
}

void ShowEngineError(int job) {
  const std::string text = GetEngineErrorText(job);
  if (rt::Length(text) >= kShortestError && !text.starts_with("No error."))
    screen::MessageBox(text, screen::Icon::Exclamation);
}

}  // namespace dw
