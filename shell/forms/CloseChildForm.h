// What happens when a form unloads, and the end of the program.
#pragma once

#include "platform/controls/Form.h"

namespace dw {

/// What to do after unloading the hidden forms, if only these are left beside the closing form.
enum class AfterHidden { Nothing, SignOff };

/// Runs in the unload of every form except the notice. Waits a moment; if no other visible form is left,
/// unloads the hidden ones and signs off. The program is over when no form is left.
void CloseChildForm(ui::Form& closing, AfterHidden after = AfterHidden::Nothing);

/// Unloads every loaded form, one after the other, the active one last: no other comes forward in between.
void UnloadAllForms();
/// All forms are being closed: a form that closes must not open another one.
bool ClosingAllForms();

/// Makes each unload run CloseChildForm, and makes EndApplication wait a moment, unload every form and throw
/// ApplicationEnd, so that no work of a closed form goes on.
void InstallFormEnds();

}  // namespace dw
