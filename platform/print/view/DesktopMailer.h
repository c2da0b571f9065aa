// Reports by e-mail, on a desktop.
#pragma once

#include <functional>
#include <string>

#include "platform/print/job/Destinations.h"

namespace print {

/// Hands the file to the desktop's mail program. Where none takes it, offers to save the file instead.
class DesktopMailer : public Mailer {
 public:
  /// Throws PrintError if the user wants the file saved and it cannot be.
  void Send(const std::string& file, const std::string& subject) override;

  /// Asks where to save the file; the path, or an empty text. `name` is the proposal. Tests replace it.
  static std::function<std::string(const std::string& name)> askForFile;
};

}  // namespace print
