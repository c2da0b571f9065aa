#include "data/OwnHold.h"

#include "platform/screen/Screen.h"

namespace dw {

bool ReportOwnHold(const store::Cursor& cursor) {
  if (!cursor.HeldByThisProcess()) return false;
  screen::MessageBox(
      "This record is open in another window of this program. Close that window and try again.",
      screen::Icon::Exclamation);
  return true;
}

}  // namespace dw
