// One running copy of the program for each user: a second start brings the first one forward.
#pragma once

namespace dw {

/// True when another copy runs and has come forward; this one is to end then. Otherwise this copy runs as
/// usual, and comes forward when it is called.
bool ActivatePreviousInstance();
/// This copy is about to end: it takes no more calls, and the next start is the first copy.
void LeaveSingleInstance();
/// Brings the window that the user worked in last to the front, restored if it was minimized. False where
/// there is no window.
bool BringProgramForward();

}  // namespace dw
