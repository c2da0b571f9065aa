#include "tools/screenshots/Shots.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <stdexcept>

#include "costing/forms/frmFiscalYearSetup.h"
#include "costing/forms/frmFuelTypesList.h"
#include "costing/forms/frmPeriodsList.h"
#include "costing/forms/frmPriceLogList.h"
#include "costing/forms/frmPricingList.h"
#include "costing/forms/frmRePost.h"
#include "costing/forms/frmTransactionList.h"
#include "costing/forms/frmTransactionMaint.h"
#include "data/BrackenfelGlobals.h"
#include "fleet/forms/PictureForms.h"
#include "fleet/forms/frmClassList.h"
#include "fleet/forms/frmDivisionList.h"
#include "fleet/forms/frmInventoryList.h"
#include "fleet/forms/frmInventoryMaint.h"
#include "fleet/forms/frmMaintenanceDueReport.h"
#include "fleet/forms/frmOdometerList.h"
#include "fleet/forms/frmScheduleTypesList.h"
#include "platform/controls/Form.h"
#include "platform/store/Connection.h"
#include "platform/store/Cursor.h"
#include "reports/DWGlobals.h"
#include "reports/forms/DateRangeForm.h"
#include "reports/forms/Launch.h"
#include "reports/forms/frmCriteriaList.h"
#include "reports/forms/frmCriteriaMaint.h"
#include "shell/forms/BFLogon.h"
#include "shell/forms/GetDataPath.h"
#include "shell/forms/HelpWindow.h"
#include "shell/forms/Startup.h"
#include "shell/forms/TechSupport.h"
#include "shell/forms/frmGetSQLInfo.h"
#include "shell/forms/frmMessage.h"
#include "shell/forms/mnuDW.h"
#include "tools/screenshots/Inspect.h"

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

/// Leaves a window like a user who changes nothing.
void Leave(ui::Form& form) {
  auto* cancel = form.findChild<QPushButton*>("CancelButton");
  if (cancel)
    cancel->click();
  else
    form.Unload();
  Settle();
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
  Leave(*detail);
  list.Unload();
  Settle();
}

/// A window without a list.
template <class Window>
void TakeAlone(Album& album) {
  Window& window = ui::The<Window>();
  window.ShowForm();
  album.Take(window, window.Name());
  window.Unload();
  Settle();
}

/// The window that has come forward; closes it afterwards.
void TakeFront(Album& album) {
  Settle();
  ui::Form* front = ui::ActiveForm();
  if (!front) throw std::runtime_error("no window is in front");
  album.Take(*front, front->Name());
  Leave(*front);
}

/// The first transaction in which scheduled work was done.
std::int32_t WithTasks() {
  const auto rows = store::Cursor::OpenQuery(
      store::Connection::Open({.path = dw::DataFile}),
      "SELECT TOP 1 [Maintenance_Entry_ID] FROM [Maintenance_Performed] WHERE [Cost] > 0 ORDER BY [ID]",
      store::Locking::ReadOnly);
  if (rows->AtEnd()) throw std::runtime_error("the sample has no scheduled work");
  return rows->Get(0).AsLong();
}

dw::frmTransactionMaint& OpenTransaction() {
  auto& window = ui::The<dw::frmTransactionMaint>();
  window.LoadForm();
  window.DataID = WithTasks();
  window.ShowForm();
  Settle();
  return window;
}

void TakeTransactions(Album& album) {
  auto& list = ui::The<dw::frmTransactionList>();
  list.ShowForm();
  list.Grid().SetRow(0);
  Settle();
  album.Take(list, list.Name());
  auto& window = OpenTransaction();
  album.Take(window, window.Name());
  window.taskGrid.SetRow(0);
  window.ShowTask();
  TakeFront(album);
  Leave(window);
  list.Unload();
  Settle();
}

void TakeAssets(Album& album) {
  auto& list = ui::The<dw::frmInventoryList>();
  list.ShowForm();
  list.Grid().SetRow(0);
  Settle();
  album.Take(list, list.Name());
  PressSpace(list.Grid());
  Settle();
  auto& window = ui::The<dw::frmInventoryMaint>();
  for (int page = 0; page < window.pages.count(); ++page) {
    window.pages.setCurrentIndex(page);
    album.Take(window, window.Name() + "-" + std::to_string(page + 1));
  }
  window.showMaximized();
  window.pages.setCurrentIndex(0);
  album.Take(window, window.Name() + "-maximized");
  window.showNormal();
  window.pages.setCurrentIndex(2);
  Settle();
  PressSpace(window.scheduleGrid);
  TakeFront(album);
  dw::OpenGetPicture(window, window);
  TakeFront(album);
  window.Unload();
  list.Unload();
  Settle();
}

void TakeReports(Album& album) {
  TakeAlone<dw::frmRptDWR004>(album);
  dw::ShowCostsOfAsset("TRK-001");
  TakeFront(album);
  TakeAlone<dw::frmRptDWR009>(album);
  TakeAlone<dw::frmRptDWR013>(album);
  TakeAlone<dw::frmRptDWR016>(album);
  TakeAlone<dw::frmRptDWR017>(album);
  dw::LaunchFromMenu(dw::ReportOf("DW_RptInventory"));
  TakeFront(album);
  auto& list = ui::The<dw::frmCriteriaList>();
  list.LoadForm();
  list.ReportID = dw::RptPrimaryTable;
  list.ShowForm();
  Settle();
  list.Grid().SetRow(0);
  album.Take(list, list.Name());
  PressSpace(list.Grid());
  Settle();
  auto& definition = dynamic_cast<dw::frmCriteriaMaint&>(*ui::ActiveForm());
  while (definition.matchCount->text().startsWith("Counting")) Settle();
  album.Take(definition, definition.Name());
  for (ui::DataGrid* grid : {&definition.SelectGrid(), &definition.SortGrid()}) {
    grid->SetRow(0);
    PressSpace(*grid);
    TakeFront(album);
  }
  Leave(definition);
  list.Unload();
  Settle();
}

/// The main window with a list and one of its records in front of it, as a clerk sees them.
void TakeDesk(Album& album) {
  auto& menu = ui::The<dw::mnuDW>();
  menu.ShowForm();
  menu.resize(1280, 800);
  auto& list = ui::The<dw::frmTransactionList>();
  list.ShowForm();
  Settle();
  auto& window = OpenTransaction();
  QPixmap desk = menu.grab();
  QPainter painter(&desk);
  const auto place = [&](QWidget& shown, QPoint at) {
    painter.drawPixmap(at, shown.grab());
    painter.setPen(shown.palette().color(QPalette::Mid));
    painter.drawRect(QRect(at, shown.size()).adjusted(-1, -1, 0, 0));
  };
  place(list, {40, 60});
  place(window, {menu.width() - window.width() - 40, menu.height() - window.height() - 40});
  painter.end();
  album.Keep(desk, "desk");
  Leave(window);
  list.Unload();
  menu.Unload();
  Settle();
}

void TakeShell(Album& album) {
  // Later windows look as they do to an administrator who has signed on.
  TakeAlone<dw::BFLogon>(album);
  TakeAlone<dw::GetDataPath>(album);
  TakeAlone<dw::frmGetSQLInfo>(album);
  TakeAlone<dw::TechSupport>(album);
  auto& notice = ui::The<dw::frmMessage>();
  notice.setWindowTitle("Drovewright");
  notice.message.setText("Please wait...");
  TakeAlone<dw::frmMessage>(album);
  auto& about = ui::The<dw::Startup>();
  about.ShowForm();
  album.Take(about, about.Name());
  about.Aborted = true;
  about.Unload();
  auto& menu = ui::The<dw::mnuDW>();
  menu.ShowForm();
  album.Take(menu, menu.Name());
  menu.showNormal();
  album.Take(menu, menu.Name() + "-restored");
  menu.Unload();
  Settle();
}

}  // namespace

void Album::Take(QWidget& window, const std::string& name) {
  Settle();
  for (const std::string& fault : Inspect(window)) faults_.push_back(name + ": " + fault);
  Keep(window.grab(), name);
}

void Album::Keep(const QPixmap& picture, const std::string& name) {
  const std::string path = folder_ + "/" + name + ".png";
  if (!picture.save(QString::fromStdString(path))) throw std::runtime_error("cannot write " + path);
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
  TakeTransactions(album);
  TakeAlone<dw::frmRePost>(album);
  TakeAlone<dw::frmMaintenanceDueReport>(album);
  TakeAssets(album);
  TakeReports(album);
  TakeShell(album);
  TakeDesk(album);
}

}  // namespace shots
