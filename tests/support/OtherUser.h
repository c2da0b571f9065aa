#pragma once

#include <string>

#include "support/SecondProcess.h"

namespace test {

/// Another user, who keeps one record in an edit or runs statements. Make it before the data files, so that
/// it shares nothing with them.
class OtherUser {
 public:
  OtherUser();
  /// Returns once the first record of the query is held.
  void Hold(const std::string& path, const std::string& sql);
  /// Runs a statement. "done", or the number and words of the engine's refusal.
  std::string Run(const std::string& path, const std::string& sql);
  /// Gives the record back and ends.
  void Leave();

 private:
  std::string Order(const std::string& order, const std::string& path, const std::string& sql);

  SecondProcess process_;
};

}  // namespace test
