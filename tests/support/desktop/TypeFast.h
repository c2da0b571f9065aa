// Types as fast as somebody who does not look at the screen.
#pragma once

#include <Qt>
#include <string>
#include <vector>

namespace test {

/// A key, and the text that it types.
struct Key {
  Qt::Key key;
  std::string text = {};
};
/// One key for each character.
std::vector<Key> Letters(const std::string& text);

/// Presses and releases the keys, one every `milliseconds`, while the windows do what they do. As a window
/// system does, each key is sent to the window that has the focus when it is pressed, busy or not, and is
/// lost where there is none. Gives how many were lost so. Returns when all keys are through and nothing is
/// pending.
int TypeFast(const std::vector<Key>& keys, int milliseconds);

}  // namespace test
