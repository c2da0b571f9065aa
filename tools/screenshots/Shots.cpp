#include "tools/screenshots/Shots.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPixmap>
#include <stdexcept>

#include "costing/forms/frmFiscalYearSetup.h"
#include "costing/forms/frmFuelTypesList.h"
#include "costing/forms/frmPeriodsList.h"
#include "costing/forms/frmPriceLogList.h"
#include "costing/forms/frmPricingList.h"
#include "fleet/forms/frmClassList.h"
#include "fleet/forms/frmDivisionList.h"
#include "fleet/forms/frmOdometerList.h"
#include "fleet/forms/frmScheduleTypesList.h"
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

/// A window that stands for itself.
template <class Window>
void TakeAlone(Album& album) {
  Window& window = ui::The<Window>();
  window.ShowForm();
  album.Take(window, window.Name());
  window.Unload();
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
  TakePair<dw::frmPricingList>(album);
  TakePair<dw::frmPriceLogList>(album);
  TakePair<dw::frmFuelTypesList>(album);
  TakePair<dw::frmPeriodsList>(album);
  TakeAlone<dw::frmFiscalYearSetup>(album);
  TakePair<dw::frmScheduleTypesList>(album);
  TakePair<dw::frmOdometerList>(album);
}

}  // namespace shots
