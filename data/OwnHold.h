// Holds of this program's own windows. The program never waits for them, because the wait would keep the
// window from being closed.
#pragma once

#include "platform/store/Cursor.h"

namespace dw {

/// Whether another window of this program, or other work of it, holds the record at the cursor's place. If
/// so, reports it to the user and changes nothing.
bool ReportOwnHold(const store::Cursor& cursor);

}  // namespace dw
