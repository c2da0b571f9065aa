// Holds of this program's own windows, which must never be waited for: the wait would keep the window from
// being closed.
#pragma once

#include "platform/store/Cursor.h"

namespace dw {

/// Whether another window, or other work, of this program holds the record at the cursor's place. If so,
/// reports it to the user and changes nothing.
bool ReportOwnHold(const store::Cursor& cursor);

}  // namespace dw
