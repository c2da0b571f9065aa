#include "tools/screenshots/Shots.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPixmap>
#include <stdexcept>

#include "fleet/forms/frmClassList.h"
#include "fleet/forms/frmDivisionList.h"
#include "platform/controls/Form.h"

namespace shots {
namespace {

void Settle() {
  for (int i = 0; i < 5; ++i) {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
}

void PressSpace(QWidget& widget) {
  QKeyEvent press(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, " ");
  QCoreApplication::sendEvent(&widget, &press);
}

/// A list, and the window of its first record.
template <class List>
void TakePair(Album& album) {
  List& list = ui::The<List>();
  list.ShowForm();
  list.Grid().SetRow(0);
  Settle();
  album.Take(list, list.Name());
  PressSpace(list.Grid());
  Settle();
  ui::Form* detail = ui::ActiveForm();
  if (!detail || detail == &list) throw std::runtime_error(list.Name() + " has opened no window");
  album.Take(*detail, detail->Name());
  detail->Unload();
  list.Unload();
  Settle();
}

}  // namespace

void Album::Take(QWidget& window, const std::string& name) {
  Settle();
  const std::string path = folder_ + "/" + name + ".png";
  if (!window.grab().save(QString::fromStdString(path))) throw std::runtime_error("cannot write " + path);
}

void TakeAll(Album& album) {
  TakePair<dw::frmDivisionList>(album);
  TakePair<dw::frmClassList>(album);
}

}  // namespace shots
