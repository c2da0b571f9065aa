// One running copy of the program for each user: a second start brings the first one forward.
#pragma once

namespace dw {

/// True when another copy runs and has been told to come forward; this one is to end then. Otherwise this
/// copy is the first from now on, and comes forward when it is told.
bool ActivatePreviousInstance();
/// Brings the window that the user worked in last to the front, restored if it was minimised.
void BringProgramForward();

}  // namespace dw
