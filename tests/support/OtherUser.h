#pragma once

#include <string>

#include "support/SecondProcess.h"

namespace test {

/// Another user, who has one record in edit or runs statements. Make it before the data files, so that it
/// shares nothing with them.
class OtherUser {
 public:
  OtherUser();
  /// Returns when the other user holds the first record of the query.
  void Hold(const std::string& path, const std::string& sql);
  /// Runs a statement. Returns "done", or the number and text of the engine's error.
  std::string Run(const std::string& path, const std::string& sql);
  /// Makes the other user release the record and end.
  void Leave();

 private:
  std::string Order(const std::string& order, const std::string& path, const std::string& sql);

  SecondProcess process_;
};

}  // namespace test
