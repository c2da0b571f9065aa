#include "platform/controls/QtScreen.h"

#include <QApplication>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QThread>

#include "platform/controls/Form.h"
#include "platform/controls/TypeAhead.h"

namespace ui {
namespace {

/// CR, LF and CR LF are all line breaks.
QString Lines(const std::string& text) {
  QString lines = QString::fromStdString(text);
  lines.replace("\r\n", "\n").replace('\r', '\n');
  return lines;
}

QMessageBox::Icon IconOf(screen::Icon icon) {
  switch (icon) {
    case screen::Icon::Critical:
      return QMessageBox::Critical;
    case screen::Icon::Question:
      return QMessageBox::Question;
    case screen::Icon::Exclamation:
      return QMessageBox::Warning;
    case screen::Icon::Information:
      return QMessageBox::Information;
    case screen::Icon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

struct Choice {
  QMessageBox::StandardButtons all;
  QMessageBox::StandardButton first;
  QMessageBox::StandardButton escape;
};

Choice ChoiceOf(screen::Buttons buttons) {
  switch (buttons) {
    case screen::Buttons::OkCancel:
      return {QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok, QMessageBox::Cancel};
    case screen::Buttons::YesNo:
      return {QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes, QMessageBox::No};
    case screen::Buttons::RetryCancel:
      return {QMessageBox::Retry | QMessageBox::Cancel, QMessageBox::Retry, QMessageBox::Cancel};
    case screen::Buttons::Ok:
      break;
  }
  return {QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok};
}

screen::Answer AnswerOf(int button) {
  switch (button) {
    case QMessageBox::Cancel:
      return screen::Answer::Cancel;
    case QMessageBox::Yes:
      return screen::Answer::Yes;
    case QMessageBox::No:
      return screen::Answer::No;
    case QMessageBox::Retry:
      return screen::Answer::Retry;
    default:
      return screen::Answer::Ok;
  }
}

QWidget* Parent() {
  if (QWidget* modal = QApplication::activeModalWidget()) return modal;
  Form* form = ActiveForm();
  return form && form->isVisible() ? form : nullptr;
}

/// The arrow for as long as a box is open: an hourglass over it would say that it cannot be answered.
class Arrow {
 public:
  Arrow() : waiting_(QApplication::overrideCursor() != nullptr) {
    if (waiting_) QApplication::changeOverrideCursor(Qt::ArrowCursor);
  }
  ~Arrow() {
    if (waiting_ && QApplication::overrideCursor()) QApplication::changeOverrideCursor(Qt::WaitCursor);
  }
  Arrow(const Arrow&) = delete;
  Arrow& operator=(const Arrow&) = delete;

 private:
  bool waiting_;
};

}  // namespace

screen::Answer QtScreen::ShowBox(const screen::Box& box) {
  const Arrow arrow;
  const Choice choice = ChoiceOf(box.buttons);
  QMessageBox shown(IconOf(box.icon), QString::fromStdString(box.title), Lines(box.text), choice.all,
                    Parent());
  shown.setObjectName("MessageBox");
  shown.setTextFormat(Qt::PlainText);
  shown.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  shown.setDefaultButton(choice.first);
  shown.setEscapeButton(choice.escape);
  GuardFromEarlierKeys(shown);
  return AnswerOf(shown.exec());
}

std::string QtScreen::AskText(const std::string& prompt, const std::string& title, const std::string& text) {
  const Arrow arrow;
  QInputDialog dialog(Parent());
  dialog.setObjectName("InputBox");
  dialog.setWindowTitle(QString::fromStdString(title));
  dialog.setLabelText(Lines(prompt));
  dialog.setTextValue(QString::fromStdString(text));
  return dialog.exec() == QDialog::Accepted ? dialog.textValue().toStdString() : std::string();
}

void QtScreen::SetPointer(screen::Pointer pointer) {
  if (pointer == pointer_) return;
  pointer_ = pointer;
  if (pointer == screen::Pointer::Hourglass)
    QApplication::setOverrideCursor(Qt::WaitCursor);
  else
    QApplication::restoreOverrideCursor();
}

void QtScreen::DoEvents() {
  const HandlerAtWork handler;
  QCoreApplication::processEvents();
}

void QtScreen::Sleep(int milliseconds) { QThread::msleep(static_cast<unsigned long>(milliseconds)); }

void QtScreen::ShowNotice(const std::string& title, const std::string& text) {
  if (showNotice) showNotice(title, text);
}

void QtScreen::HideNotice() {
  if (hideNotice) hideNotice();
}

}  // namespace ui
