// One running copy of the program for each user: a second start brings the first one forward.
#pragma once

namespace dw {

/// True if another copy runs and has come forward; this copy has to end then. Otherwise this copy runs as
/// usual, and comes forward when another one starts.
bool ActivatePreviousInstance();
/// This copy is about to end: it answers no more calls, and the next start becomes the first copy.
void LeaveSingleInstance();
/// Brings the window in which the user worked last to the front, restored if it was minimized. False if there
/// is no window.
bool BringProgramForward();

}  // namespace dw
