#include "shell/forms/SingleInstance.h"

#include <QApplication>
#include <QSocketNotifier>
#include <memory>
#include <string>

#include "platform/controls/Application.h"
#include "platform/controls/Form.h"
#include "platform/system/SingleInstance.h"

namespace dw {
namespace {

struct Own {
  std::unique_ptr<sys::SingleInstance> claim;
  std::unique_ptr<QSocketNotifier> calls;
};

Own& OwnInstance() {
  static Own own;
  return own;
}

void AnswerCalls() {
  std::string token;
  bool called = false;
  while (OwnInstance().claim->TakeCall(token)) called = true;
  if (!called) return;
  // The token shows the desktop that the user asked for this window.
  if (!token.empty()) qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(token));
  if (BringProgramForward()) OwnInstance().claim->Answer();
}

}  // namespace

bool ActivatePreviousInstance() {
  Own& own = OwnInstance();
  if (own.claim && own.claim->IsCurrent()) return false;
  own.calls.reset();
  own.claim = sys::SingleInstance::Claim();
  if (!own.claim && sys::SingleInstance::CallFirstForward()) return true;
  // A copy that does not answer hangs or is about to end, and may have ended by now.
  if (!own.claim) own.claim = sys::SingleInstance::Claim();
  if (!own.claim || own.claim->Descriptor() < 0) return false;
  own.calls = std::make_unique<QSocketNotifier>(own.claim->Descriptor(), QSocketNotifier::Read);
  QObject::connect(own.calls.get(), &QSocketNotifier::activated, qApp, [] { ui::Guard(AnswerCalls); });
  return false;
}

void LeaveSingleInstance() {
  OwnInstance().calls.reset();
  OwnInstance().claim.reset();
}

bool BringProgramForward() {
  QWidget* window = QApplication::activeModalWidget();
  // Our windows may be covered under a box; raise them first, and then the box.
  if (ui::Form* form = ui::ActiveForm(); form && form->isVisible()) {
    if (form->isMinimized()) form->setWindowState(form->windowState() & ~Qt::WindowMinimized);
    form->raise();
    if (!window) window = form;
  }
  if (!window) return false;
  if (window->isMinimized()) window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
  window->raise();
  window->activateWindow();
  return true;
}

}  // namespace dw
