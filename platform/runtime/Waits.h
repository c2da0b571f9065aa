// Announces that the program is about to wait for a person or for time to pass.
#pragma once

#include <functional>

namespace rt {

/// Adds work to do before each wait; the store then gives the file back to other users. Listeners stay for
/// the life of the process.
void BeforeEveryWait(std::function<void()> listener);
/// Called before a message box is shown, a question is asked or the program sleeps.
void AboutToWait();

}  // namespace rt
