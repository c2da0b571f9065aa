#include "windows/AssetsDefined.h"

#include "data/MainConnection.h"
#include "platform/screen/Screen.h"

namespace dw {

bool AssetsDefined(const std::string& query) {
  const MainConnection main;
  if (!main.IsOpen()) return false;
  const auto found = main.Finds(query);
  if (found == false) screen::MessageBox("You must first define some Assets.", screen::Icon::Exclamation);
  return found.value_or(false);
}

}  // namespace dw
