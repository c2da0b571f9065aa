// Types as fast as a user who does not look at the screen.
#pragma once

#include <Qt>
#include <string>
#include <vector>

namespace test {

/// A key and the character that it types.
struct Key {
  Qt::Key key;
  std::string text = {};
};
/// One key for each character.
std::vector<Key> Letters(const std::string& text);

/// Presses and releases the keys, one every `milliseconds`, while the windows react. As with a window system,
/// each key goes to the window that has the focus when the key is pressed, busy or not, and is lost if there
/// is none. Returns the number of lost keys, after all keys have been handled and nothing is pending.
int TypeFast(const std::vector<Key>& keys, int milliseconds);

}  // namespace test
