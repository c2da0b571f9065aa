// Announces that the program is about to wait for a person or for time to pass.
#pragma once

#include <functional>

namespace rt {

/// Adds something to do before each wait: the store gives the file back to other users then. Listeners
/// stay for the life of the process.
void BeforeEveryWait(std::function<void()> listener);
/// Called before a message box is shown, a question is asked or the program sleeps.
void AboutToWait();

}  // namespace rt
