#include "data/FailureBox.h"

namespace dw {

void ReportFailure(const Failure& failure, const std::string& consequence) {
  std::string text = "Error #" + std::to_string(failure.number) + "\r\r" + failure.description;
  if (!consequence.empty()) text += "\r\r" + consequence;
  screen::MessageBox(text, screen::Icon::Critical);
}

bool Done(const std::function<void()>& step, const std::string& consequence) {
  const Failure failure = Try(step);
  if (failure) ReportFailure(failure, consequence);
  return !failure;
}

}  // namespace dw
