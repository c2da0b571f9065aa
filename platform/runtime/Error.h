// What every error of the platform has in common.
#pragma once

#include <stdexcept>
#include <string>

namespace rt {

/// An error with the number that messages and waits go by. Catch this where only number and text matter, and
/// a derived class where its kind does: what the runtime, the store and the recordsets throw derives from it.
class Error : public std::runtime_error {
 public:
  Error(int number, const std::string& text) : std::runtime_error(text), number_(number) {}
  int Number() const { return number_; }

 private:
  int number_;
};

}  // namespace rt
