// What the unload of each form leads to, and the end of the program.
#pragma once

#include "platform/controls/Form.h"

namespace dw {

/// What follows when hidden forms are all that is left beside the closing one.
enum class AfterHidden { Nothing, SignOff };

/// Runs in the unload of every form but the notice: waits a moment, and where no other visible form remains
/// it unloads the hidden ones and signs off. The program is over when no form is left.
void CloseChildForm(ui::Form& closing, AfterHidden after = AfterHidden::Nothing);

/// Unloads every loaded form, one after the other, the active one last: no other comes forward in between.
void UnloadAllForms();
/// All forms are being closed: none may be opened in the place of one that goes.
bool ClosingAllForms();

/// Has each unload run CloseChildForm, and EndApplication wait a moment, unload every form and throw
/// ApplicationEnd, so that nothing goes on that belongs to a form that is gone.
void InstallFormEnds();

}  // namespace dw
