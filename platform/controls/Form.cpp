#include "platform/controls/Form.h"

#include <QAbstractButton>
#include <QCloseEvent>
#include <QEventLoop>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "platform/controls/Application.h"
#include "platform/controls/LeaveRule.h"
#include "platform/runtime/Waits.h"

namespace ui {
namespace {

/// The loaded forms, and the same forms in the order of their activation, the latest last.
struct Collection {
  std::vector<Form*> forms;
  std::vector<Form*> active;
  Form* current = nullptr;
  std::function<void(Form&)> unloadHook;
  std::function<void()> lastFormGone;
};

/// Both borders of a window together, and one pixel that CenterForm leaves free.
constexpr int kFrame = 10;

Collection& All() {
  static Collection all;
  return all;
}

}  // namespace

const std::vector<Form*>& Forms() { return All().forms; }

Form* FindForm(const std::string& name) {
  const auto found =
      std::find_if(Forms().begin(), Forms().end(), [&](Form* form) { return form->Name() == name; });
  return found == Forms().end() ? nullptr : *found;
}

Form* ActiveForm() { return All().current; }

void InstallUnloadHook(std::function<void(Form&)> hook) { All().unloadHook = std::move(hook); }
void InstallLastFormGone(std::function<void()> hook) { All().lastFormGone = std::move(hook); }

QSize RoomFor(const QWidget& form) {
  const QScreen* screen = form.screen() ? form.screen() : QGuiApplication::primaryScreen();
  if (!screen) return {QWIDGETSIZE_MAX, QWIDGETSIZE_MAX};
  // The real frame is known only when the window is shown; until then this uses the usual one.
  const QSize frame = form.isVisible() ? form.frameGeometry().size() - form.size() : QSize();
  const int title = form.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &form);
  return screen->availableGeometry().size() - frame.expandedTo(QSize(kFrame, title + kFrame));
}

void CenterForm(QWidget& form) {
  const QScreen* screen = form.screen() ? form.screen() : QGuiApplication::primaryScreen();
  if (!screen) return;
  const QRect area = screen->availableGeometry();
  form.move(std::max(area.left() + 1, area.center().x() - form.width() / 2),
            std::max(area.top() + 1, area.center().y() - form.height() / 2));
}

void OnClick(QAbstractButton& button, std::function<void()> work) {
  QObject::connect(&button, &QAbstractButton::clicked, &button,
                   [work = std::move(work)] { Guard([&] { work(); }); });
}

Form::Form(const char* name) : QWidget(nullptr, Qt::Window) {
  setObjectName(QString::fromUtf8(name));
  // The form gets Enter and Esc when no control takes them.
  setFocusPolicy(Qt::NoFocus);
}

Form::~Form() {
  auto& all = All();
  std::erase(all.forms, this);
  std::erase(all.active, this);
  if (all.current == this) all.current = nullptr;
}

std::string Form::Name() const { return objectName().toStdString(); }

void Form::LoadForm() {
  if (loaded_) return;
  loaded_ = true;
  All().forms.push_back(this);
  OnLoad();
  if (unloading_) return;
  ensurePolished();
  const QSize asked = testAttribute(Qt::WA_Resized) ? size().expandedTo(minimumSizeHint()) : sizeHint();
  // On a small screen, contents that can scroll or shrink become smaller, so that the buttons stay in reach.
  const QSize wanted = asked.boundedTo(RoomFor(*this));
  resize(wanted);
  if (MinWidth == 0) MinWidth = wanted.width();
  if (MinHeight == 0) MinHeight = wanted.height();
  setMinimumSize(QSize(MinWidth, MinHeight).boundedTo(RoomFor(*this)).expandedTo(QSize(0, 0)));
  if (!testAttribute(Qt::WA_Moved)) CenterForm(*this);
}

void Form::ShowForm() {
  LoadForm();
  if (unloading_) return;
  // A maximized window stays maximized.
  if (isMinimized()) setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
  raise();
  activateWindow();
  BecomeActive();
}

void Form::ShowModal() {
  setWindowModality(Qt::ApplicationModal);
  QEventLoop loop;
  AtUnload([&loop] { loop.quit(); });
  rt::AboutToWait();
  ShowForm();
  if (!unloading_) loop.exec();
}

void Form::BecomeActive() {
  auto& all = All();
  if (all.current == this || !loaded_ || unloading_) return;
  std::erase(all.active, this);
  all.active.push_back(this);
  all.current = this;
  // An activation may open a window over its form, such as the one for a missing file. When that closes, the
  // form is in front again: this continues the same activation and starts no other.
  if (activating_) return;
  activating_ = true;
  const QPointer<Form> alive(this);
  Guard([this] { OnActivate(); });
  if (alive) activating_ = false;
}

void Form::Unload() {
  if (unloading_) return;
  unloading_ = true;
  Guard([this] { OnUnload(); });
  auto& all = All();
  const bool wasActive = all.current == this;
  // The focus moves on before the window goes: keys typed in between would reach no window at all.
  if (wasActive && isVisible())
    if (Form* next = NextInFront()) {
      next->raise();
      next->activateWindow();
    }
  if (loaded_ && all.unloadHook) Guard([&] { all.unloadHook(*this); });
  hide();
  while (!atUnload_.empty()) {
    const auto work = std::move(atUnload_.back());
    atUnload_.pop_back();
    Guard([&] { work(); });
  }
  const bool wasLoaded = loaded_;
  std::erase(all.forms, this);
  std::erase(all.active, this);
  if (all.current == this) all.current = nullptr;
  loaded_ = false;
  // Deletes the object after the keys that the window system has already sent here: they pass to the next
  // window.
  QTimer::singleShot(0, this, &QObject::deleteLater);
  if (wasLoaded && all.forms.empty()) {
    if (all.lastFormGone) Guard([&] { all.lastFormGone(); });
    return;
  }
  // Brings the earlier window to the front; not every window manager does.
  if (!wasActive || all.current) return;
  Form* next = NextInFront();
  if (!next) return;
  next->raise();
  next->activateWindow();
  next->BecomeActive();
}

/// The form that was active before this one; null if it is not shown.
Form* Form::NextInFront() const {
  const auto& active = All().active;
  const auto next = std::find_if(active.rbegin(), active.rend(), [this](Form* form) { return form != this; });
  return next != active.rend() && (*next)->isVisible() ? *next : nullptr;
}

void Form::RemoveCloseCommand() {
  closable_ = false;
  setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                 Qt::WindowMinMaxButtonsHint);
}

void Form::SetPointer(screen::Pointer pointer) {
  if (pointer == screen::Pointer::Hourglass)
    setCursor(Qt::WaitCursor);
  else
    unsetCursor();
}

void Form::AtUnload(std::function<void()> work) { atUnload_.push_back(std::move(work)); }

void Form::SetDefault(QPushButton* button) {
  if (default_) default_->setDefault(false);
  default_ = button;
  if (default_) default_->setDefault(true);
}

void Form::SetCancel(QPushButton* button) {
  if (cancel_) cancel_->removeEventFilter(this);
  cancel_ = button;
  if (cancel_) cancel_->installEventFilter(this);
}

bool Form::CancelPressed() {
  // The focus leaves a field before the button gets the press.
  if (cancel_ && QApplication::focusWidget() == cancel_ && LeavingByMouse()) cancelPressed_ = true;
  return cancelPressed_;
}

bool Form::eventFilter(QObject* watched, QEvent* event) {
  if (watched == cancel_ &&
      (event->type() == QEvent::MouseButtonPress ||
       (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space)))
    cancelPressed_ = true;
  return QWidget::eventFilter(watched, event);
}

bool Form::event(QEvent* event) {
  if (event->type() != QEvent::WindowActivate) return QWidget::event(event);
  // The activation may end the form, and another event loop below it may delete the object.
  const QPointer<Form> alive(this);
  BecomeActive();
  return alive ? QWidget::event(event) : true;
}

void Form::closeEvent(QCloseEvent* event) {
  if (!closable_ && !unloading_) {
    event->ignore();
    return;
  }
  event->accept();
  Unload();
}

void Form::keyPressEvent(QKeyEvent* event) {
  const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == 0;
  if (plain && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
    auto* focused = qobject_cast<QPushButton*>(focusWidget());
    QPushButton* button = focused ? focused : default_;
    if (button && button->isEnabled()) button->click();
    return;
  }
  if (plain && event->key() == Qt::Key_Escape) {
    if (cancel_ && cancel_->isEnabled()) cancel_->click();
    return;
  }
  QWidget::keyPressEvent(event);
}

void Form::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  if (loaded_ && !isMinimized()) OnResize();
}

}  // namespace ui
