// How the program ends out of turn: after an error that nothing has caught, by EndApplication, or because the
// system asks it to.
#pragma once

#include "data/Application.h"

namespace dw {

/// Ends the work of windows that have been closed under it; the program goes on with a new sign-on.
class WindowsClosed : public ApplicationEnd {};

/// From now on an uncaught error is shown in one box, and then the process ends with exit code 1;
/// ApplicationEnd ends it with 0 and no word. SIGTERM, SIGINT and SIGHUP end it with 0, and at once when they
/// come a second time. The end is the same each time, also from within modal windows and boxes: every form is
/// unloaded without further questions, which gives its records back, and the session in the access log is
/// closed where that can be done in a few seconds.
void InstallProgramEnd();

}  // namespace dw
