#include "shell/forms/CloseChildForm.h"

#include <algorithm>
#include <vector>

#include "data/Application.h"
#include "data/BrackenfelGlobals.h"
#include "platform/screen/Screen.h"
#include "shell/SignOn.h"
#include "shell/forms/SingleInstance.h"
#include "shell/forms/frmMessage.h"

namespace dw {
namespace {

/// A click that closed a form must not reach what was under it.
constexpr int kMoment = 100;

int closingAll = 0;

bool IsOpen(ui::Form* form) {
  const auto& forms = ui::Forms();
  return std::find(forms.begin(), forms.end(), form) != forms.end();
}

/// Closes the session's row once, even if more forms close afterwards.
void SignOffOnce() {
  // A second start of the program from now on must run by itself and not bring these closing windows forward.
  LeaveSingleInstance();
  if (!SignedOn) return;
  SignedOn = false;
  SignOff();
}

}  // namespace

void CloseChildForm(ui::Form& closing, AfterHidden after) {
  screen::Sleep(kMoment);
  // Nobody works in the notice.
  std::vector<ui::Form*> others = ui::Forms();
  std::erase(others, &closing);
  std::erase(others, ui::Existing<frmMessage>());
  if (others.empty()) {
    SignOffOnce();
    return;
  }
  if (std::any_of(others.begin(), others.end(), [](ui::Form* form) { return form->isVisible(); })) return;
  for (ui::Form* form : others)
    if (IsOpen(form)) form->Unload();
  if (after == AfterHidden::SignOff) SignOffOnce();
}

void UnloadAllForms() {
  ++closingAll;
  std::vector<ui::Form*> forms = ui::Forms();
  std::stable_partition(forms.begin(), forms.end(),
                        [active = ui::ActiveForm()](ui::Form* form) { return form != active; });
  for (ui::Form* form : forms)
    if (IsOpen(form)) form->Unload();
  --closingAll;
}

bool ClosingAllForms() { return closingAll > 0; }

void InstallFormEnds() {
  ui::InstallUnloadHook([](ui::Form& closing) {
    // The notice comes and goes while other forms work.
    if (&closing != ui::Existing<frmMessage>()) CloseChildForm(closing, AfterHidden::SignOff);
  });
  InstallEndApplication([] {
    screen::Sleep(kMoment);
    UnloadAllForms();
    throw ApplicationEnd();
  });
}

}  // namespace dw
