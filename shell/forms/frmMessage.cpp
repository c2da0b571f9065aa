#include "shell/forms/frmMessage.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QHBoxLayout>
#include <QThread>
#include <QVBoxLayout>
#include <QWindow>

#include "shell/forms/AppIcon.h"

namespace dw {
namespace {

constexpr int kPictureSize = 48;

}  // namespace

frmMessage::frmMessage() : Form("frmMessage") {
  picture.setObjectName("Image1");
  picture.setPixmap(ApplicationIcon().pixmap(QSize(kPictureSize, kPictureSize), devicePixelRatioF()));
  message.setObjectName("lblMessage");
  message.setTextFormat(Qt::PlainText);
  message.setWordWrap(true);
  message.setMinimumWidth(fontMetrics().averageCharWidth() * 50);
  message.setMinimumHeight(fontMetrics().height() * 3);
  statusBar.setObjectName("stsBar");
  statusBar.setSizeGripEnabled(false);

  auto* row = new QHBoxLayout;
  row->setContentsMargins(16, 14, 16, 10);
  row->setSpacing(16);
  row->addWidget(&picture, 0, Qt::AlignTop);
  row->addWidget(&message, 1);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addLayout(row, 1);
  column->addWidget(&statusBar);
  // The notice closes by itself when the step is done.
  RemoveCloseCommand();
}

void frmMessage::Refresh() {
  // The window system shows a new window only after some time.
  constexpr int kLongest = 500;
  const QDeadlineTimer end(kLongest);
  while (isVisible() && windowHandle() && !windowHandle()->isExposed() && !end.hasExpired()) {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    QThread::msleep(1);
  }
  repaint();
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void ShowMessageForm(const std::string& title, const std::string& text) {
  auto& form = ui::The<frmMessage>();
  form.setWindowTitle(QString::fromStdString(title));
  form.message.setText(QString::fromStdString(text));
  form.ShowForm();
  form.Refresh();
}

void HideMessageForm() {
  if (auto* form = ui::Existing<frmMessage>()) form->Unload();
}

}  // namespace dw
