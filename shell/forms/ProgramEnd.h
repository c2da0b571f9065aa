// How the program ends other than by closing its last window: after an error that nothing has caught, by
// EndApplication, or because the system asks it to.
#pragma once

#include "data/Application.h"

namespace dw {

/// Ends the work of windows that were closed while it ran; the program goes on with a new sign-on.
class WindowsClosed : public ApplicationEnd {};

/// From now on an uncaught error is shown in one box, and then the process ends with exit code 1.
/// ApplicationEnd ends it with 0 and without a message. SIGTERM, SIGINT and SIGHUP end it with 0, and at once
/// at the second signal. The end is always the same, also from within modal windows and boxes: it unloads
/// every form without further questions, which releases the records, and closes the session in the access log
/// if that can be done in a few seconds.
void InstallProgramEnd();

}  // namespace dw
