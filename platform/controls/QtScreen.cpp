#include "platform/controls/QtScreen.h"

#include <QApplication>
#include <QGridLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QScrollArea>
#include <QScrollBar>
#include <QThread>
#include <algorithm>

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

/// Shows the arrow while a box is open: with an hourglass, it would look as if the box took no answer.
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

/// Adds a scroll bar to a text that would otherwise push the buttons off the screen.
void LetLongTextScroll(QMessageBox& box) {
  auto* label = box.findChild<QLabel*>("qt_msgbox_label");
  auto* grid = qobject_cast<QGridLayout*>(box.layout());
  const int at = label && grid ? grid->indexOf(label) : -1;
  if (at < 0) return;
  constexpr int kWidest = 100;  // characters
  const QSize room = RoomFor(box);
  const int width = std::min(room.width() / 2, label->fontMetrics().averageCharWidth() * kWidest);
  const int most = room.height() * 6 / 10;
  label->ensurePolished();
  const QRect text = label->fontMetrics().boundingRect(QRect(0, 0, width, QWIDGETSIZE_MAX),
                                                       Qt::TextWordWrap | Qt::TextExpandTabs, label->text());
  if (text.height() <= most) return;
  int row = 0, column = 0, rows = 0, columns = 0;
  grid->getItemPosition(at, &row, &column, &rows, &columns);
  grid->removeWidget(label);
  auto* scroll = new QScrollArea(&box);
  scroll->setObjectName("TextScroll");
  scroll->setFrameShape(QFrame::NoFrame);
  label->setWordWrap(true);
  scroll->setWidget(label);
  scroll->setWidgetResizable(true);
  scroll->setMinimumSize(width + scroll->verticalScrollBar()->sizeHint().width(), most);
  grid->addWidget(scroll, row, column, rows, columns);
}

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
  LetLongTextScroll(shown);
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
