#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

#include "platform/screen/ScriptedScreen.h"

namespace test {

/// Installs a scripted screen for as long as it lives. At its end, unexpected boxes and unused expectations
/// fail the test.
class ScreenScript {
 public:
  ScreenScript() : script_(std::make_shared<screen::ScriptedScreen>()), earlier_(screen::Install(script_)) {}
  ~ScreenScript() {
    for (const std::string& fault : script_->Faults()) ADD_FAILURE() << fault;
    screen::Install(earlier_);
  }
  ScreenScript(const ScreenScript&) = delete;
  ScreenScript& operator=(const ScreenScript&) = delete;

  screen::ScriptedScreen* operator->() { return script_.get(); }
  /// For a second process, which can report failures to the test only by its exit code.
  void ThrowFaults() const {
    const auto faults = script_->Faults();
    if (!faults.empty()) throw std::runtime_error(faults.front());
  }

 private:
  std::shared_ptr<screen::ScriptedScreen> script_;
  std::shared_ptr<screen::Screen> earlier_;
};

}  // namespace test
