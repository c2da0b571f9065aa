#include "fleet/forms/frmInventoryMaint.h"

#include <QApplication>
#include <QPushButton>
#include <algorithm>
#include <chrono>
#include <string>
#include <utility>

#include "costing/Unposting.h"
#include "data/BrackenfelGlobals.h"
#include "data/GenericDAO.h"
#include "data/GenericTools.h"
#include "data/MainConnection.h"
#include "fleet/AssetRename.h"
#include "fleet/DueAnalysis.h"
#include "fleet/ExtraUsage.h"
#include "fleet/forms/PictureForms.h"
#include "platform/controls/Application.h"
#include "platform/controls/GridSearch.h"
#include "platform/controls/Later.h"
#include "platform/controls/NoInput.h"
#include "platform/runtime/Clock.h"
#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"
#include "reports/forms/DateRangeForm.h"
#include "windows/ListForm.h"

namespace dw {
namespace {

/// Replaces the code of an asset that has none yet: it matches no row, and a blank might.
constexpr const char* kNoCode = "~~~~~~~~~~~~";

QPushButton* Button(const char* name, const char* caption) {
  auto* button = new QPushButton(caption);
  button->setObjectName(name);
  return button;
}

/// Sets the pointer over a form while it works, and restores it however the work ends.
struct Busy {
  explicit Busy(ui::Form& busy) : form(busy) { form.SetPointer(screen::Pointer::Hourglass); }
  ~Busy() { form.SetPointer(screen::Pointer::Normal); }
  Busy(const Busy&) = delete;
  Busy& operator=(const Busy&) = delete;
  ui::Form& form;
};

/// Shows the progress of unposting all transactions. Each change of the notice lets the windows paint.
class UnpostNotice {
 public:
  UnpostNotice() { Show(0); }
  ~UnpostNotice() { screen::HideNotice(); }
  UnpostNotice(const UnpostNotice&) = delete;
  UnpostNotice& operator=(const UnpostNotice&) = delete;

  /// At most a few times a second.
  void Percent(int percent) {
    if (std::chrono::steady_clock::now() - shown_ < std::chrono::milliseconds(200)) return;
    Show(percent);
  }

 private:
  void Show(int percent) {
    screen::ShowNotice("Unpost", "Unposting all transactions of all assets: " + std::to_string(percent) +
                                     "%. Please wait...");
    shown_ = std::chrono::steady_clock::now();
  }

  std::chrono::steady_clock::time_point shown_;
};

/// The dates that code moves between box and column, so that an empty box becomes a Null.
struct DateColumn {
  ui::TextBox frmInventoryMaint::*box;
  const char* column;
};
constexpr DateColumn kDates[] = {{&frmInventoryMaint::entryDate, "Entry Date"},
                                 {&frmInventoryMaint::purchaseDate, "Purchase Date"},
                                 {&frmInventoryMaint::replacementDate, "Replacement Date"}};

}  // namespace

frmInventoryMaint::frmInventoryMaint()
    : RecordForm({.form = kName,
                  .title = "Asset Detail",
                  .data = "adoData1",
                  .table = "Vehicles",
                  .recordWords = "Inventory #",
                  .lockField = "Description"}),
      renameButton(Button("cmdRename", "&Rename")),
      pictureButtons{Button("cmdPicture(0)", "&View Photo"), Button("cmdPicture(1)", "&Add Photo")},
      unpostButton(Button("cmdUnpost", "Un&post")),
      dueButton(Button("cmdDue", "ReCalc")),
      nonFuelOnly("Non-Fuel Only"),
      printButton(Button("cmdPrint", "&Print")),
      divisionRows_(*this, "adoDivisions"),
      classRows_(*this, "adoClasses"),
      fuelTypeRows_(*this, "adoFuelTypes"),
      transactionRows_(*this, "adoMaintenance"),
      scheduleRows_(*this, "adoSchedule"),
      readingRows_(*this, "adoOdometers") {
  pages.setObjectName("SSIndexTab1");
  nonFuelOnly.setObjectName("chkNonFuelOnly");
  BindControls();
  PutTogether();
  SetUpGrids();

  renameButton->setEnabled(false);
  // It unposts all transactions of all assets, so one Tab too many out of a grid must not reach it.
  unpostButton->setFocusPolicy(Qt::ClickFocus);
  unpostButton->setToolTip("Unposts all posted transactions of all assets");
  unpostButton->setAccessibleDescription(
      "Unposts all posted transactions of all assets, not only of this one");
  unpostButton->setEnabled(false);
  ui::OnClick(*renameButton, [this] { Rename(); });
  ui::OnClick(*unpostButton, [this] { Unpost(); });
  ui::OnClick(*printButton, [this] { PrintCosts(); });
  ui::OnClick(*dueButton, [this] { RunDue(); });
  ui::OnClick(nonFuelOnly, [this] { RefreshMaintenance(); });
  ui::OnClick(*pictureButtons[0], [this] { OpenAssetPicture(DataID); });
  ui::OnClick(*pictureButtons[1], [this] { OpenGetPicture(*this, *this); });

  for (const DateColumn& date : kDates) CheckDateOnLeaving(this->*date.box);
  dueBy.onLeave = [this] {
    if (CancelPressed() || comingBack_ || ValidDate(dueBy.Text(), false)) return true;
    ComeBackTo(dueBy);
    return false;
  };
  dueUsage.onLeave = [this] {
    if (CancelPressed() || comingBack_ || rt::IsNumeric(dueUsage.Text())) return true;
    screen::MessageBox("Usage must be a valid number.", screen::Icon::Information);
    ComeBackTo(dueUsage);
    return false;
  };
  modelYear.SelectOnEntry();
  purchasePrice.SelectOnEntry();
}

void frmInventoryMaint::CheckDateOnLeaving(ui::TextBox& field) {
  field.onLeave = [this, &field] { return CancelPressed() || ValidDate(field.Text(), false); };
}

void frmInventoryMaint::ComeBackTo(ui::TextBox& field) {
  if (pages.currentIndex() == 0) return;
  // The page is just being turned, and the focus will move once more.
  comingBack_ = true;
  ui::Later(field, [this, &field] {
    comingBack_ = false;
    pages.setCurrentIndex(0);
    field.setFocus();
  });
}

void frmInventoryMaint::OnLoad() {
  {
    const MainConnection main;
    AdoRecordsetPtr parameters;
    if (main.IsOpen()) parameters = main.Read("SELECT * FROM [Parameters] WHERE ID = 1");
    const bool hidden = parameters && !parameters->AtEnd() &&
                        (parameters->Get("Internal_Fuel_Available").IsNull() ||
                         !parameters->Get("Internal_Fuel_Available").AsBoolean());
    for (const int column : {3, 4}) transactionGrid.ShowColumn(column, !hidden);
    CloseObject(parameters);
  }
  const auto bind = [](ui::Adodc& control, const char* query) {
    BindToMainFile(control, query);
    control.Refresh();
  };
  bind(fuelTypeRows_, "SELECT ID, Description FROM [Fuel Types] WHERE ID = -1");
  bind(classRows_, "SELECT [Class ID], Description FROM [Inventory Classes] WHERE ID = -1");
  bind(divisionRows_, "SELECT [Division ID], Description FROM Divisions WHERE ID = -1");
  RecordForm::OnLoad();
  bind(readingRows_, "SELECT * FROM [Odometer Entries] WHERE ID = -1");
  bind(scheduleRows_,
       "SELECT * FROM [Maintenance Schedule] LEFT JOIN [Maintenance Types] ON [Maintenance Schedule].[Type "
       "ID] = "
       "[Maintenance Types].ID WHERE [Maintenance Schedule].ID = -1");
  bind(transactionRows_, "SELECT * FROM [Maintenance Transactions] WHERE [ID] = -1");
  for (Child& child : children_) child.grid->SetDataSource(*child.data);
}

void frmInventoryMaint::FillCombos() {
  const auto fill = [](ui::DataCombo& combo, ui::Adodc& rows, const char* query) {
    rows.RecordSource = query;
    rows.Refresh();
    combo.Fill(rows.Recordset().get());
  };
  fill(fuelType, fuelTypeRows_, "SELECT ID, Description FROM [Fuel Types] ORDER BY Description");
  fill(assetClass, classRows_,
       "SELECT [Class ID], Description FROM [Inventory Classes] ORDER BY Description");
  fill(division, divisionRows_, "SELECT [Division ID], Description FROM Divisions ORDER BY Description");
}

std::string frmInventoryMaint::CodeForQuery() {
  const rt::Value code = Stored("Asset ID");
  return QuoteSQL(code.IsNull() ? kNoCode : code.AsText());
}

void frmInventoryMaint::OpenLists() {
  for (Child& child : children_)
    if (!child.place.armed && child.grid->Row() > 0)
      ui::AdoRefreshGrid(*child.grid, *child.data, child.place);
  justRead_ = true;
  FillCombos();
  const std::string code = CodeForQuery();
  readingRows_.RecordSource =
      "SELECT * FROM [Odometer Entries] WHERE [Asset ID] = '" + code + "' ORDER BY [Mileage] DESC";
  readingRows_.Refresh();
  RefreshMaintenance();
  scheduleRows_.RecordSource =
      "SELECT * FROM [Maintenance Schedule] LEFT JOIN [Maintenance Types] ON [Maintenance Schedule].[Type "
      "ID] = "
      "[Maintenance Types].[ID] WHERE [Asset ID] = '" +
      code + "'";
  scheduleRows_.Refresh();
}

void frmInventoryMaint::RefreshMaintenance() {
  transactionRows_.RecordSource =
      "SELECT * FROM [Maintenance Transactions] WHERE [Asset ID] = '" + CodeForQuery() +
      (nonFuelOnly.isChecked() ? "' AND ([Internal Fuel Cost] + 0) = 0 AND ([Outside Fuel Cost] + 0) = 0 "
                                 "ORDER BY [Transaction Date] DESC"
                               : "' ORDER BY [Transaction Date] DESC");
  transactionRows_.Refresh();
}

void frmInventoryMaint::RecordLoaded() {
  if (!AddMode) {
    assetCode.setEnabled(false);
    renameButton->setEnabled(!ReadOnly());
  }
  // The due text can be read and scrolled in any window.
  due.setEnabled(true);
  for (const DateColumn& date : kDates) (this->*date.box).ShowValue(Stored(date.column));
  const rt::Value code = Stored("Asset ID");
  setWindowTitle(QString::fromStdString(code.IsNull() ? "Detail for New Asset"
                                                      : "Detail for Asset ID " + code.AsText()));
  CheckPosted();
  // Turning the page may take the focus from the control that has it.
  focus_.Note(focusWidget());
  const std::int16_t last = focus_.LastTabIndex;
  pages.setCurrentIndex(0);
  focus_.LastTabIndex = last;
  RestoreFocus();
  ProposeDue();
  RunDue();
}

void frmInventoryMaint::CheckPosted() {
  if (!transactionRows_.HasRows()) return;
  const bool posted = ui::FirstRowWhere(transactionRows_, "[When Posted] IS NOT NULL").has_value();
  unpostButton->setEnabled(posted);
  // Posted costs are counted under the fuel type that the asset has now, so it must not change.
  fuelType.setEnabled(!posted && !ReadOnly());
}

void frmInventoryMaint::ProposeDue() {
  dueUsage.SetText(DefaultExtraUsage(assetCode.Text()));
  dueBy.SetText(DefaultDueBy());
  dueUsage.repaint();
  dueBy.repaint();
}

void frmInventoryMaint::RunDue() {
  const Busy busy(*this);
  due.SetText("");
  const auto until = rt::ParseDate(dueBy.Text());
  const auto usage = rt::ParseNumber(dueUsage.Text());
  if (!until)
    screen::MessageBox("That is not a valid date. Please try again.", screen::Icon::Exclamation);
  else if (!usage)
    screen::MessageBox("Usage must be a valid number.", screen::Icon::Information);
  else
    due.SetText(CalculateDue(assetCode.Text(), *until, static_cast<float>(*usage)));
}

bool frmInventoryMaint::Refreshed() {
  // A record that another user holds takes no picture.
  if (ReadOnly()) {
    photo_.clear();
    removePhoto_ = false;
  }
  if (!photo_.empty() && !TakePhoto()) return true;
  if (!Activated) return false;
  if (removePhoto_) {
    photograph.Clear();
    removePhoto_ = false;
  }
  const int page = pages.currentIndex();
  const bool justRead = std::exchange(justRead_, false);
  for (Child& child : children_)
    if (child.place.armed || !justRead) RefreshChild(child);
  pages.setCurrentIndex(page);
  ShowPictureButtons();
  RestoreFocus();
  return true;
}

bool frmInventoryMaint::TakePhoto() {
  if (!ValidData()) return false;
  const std::string path = std::exchange(photo_, {});
  // A file that is not a picture has been reported; the record stays as it is.
  if (!photograph.LoadFile(path)) return false;
  if (!AddAsset()) return false;
  removePhoto_ = false;
  Rearm();
  return true;
}

void frmInventoryMaint::ShowPictureButtons() {
  const bool picture = photograph.HasPicture();
  pictureButtons[1]->setText(picture ? "&Update Photo" : "&Add Photo");
  pictureButtons[1]->setEnabled(!ReadOnly());
  pictureButtons[0]->setEnabled(picture);
}

void frmInventoryMaint::RestoreFocus() {
  QWidget* stop = focus_.LastStop();
  if (!stop) return;
  const std::int16_t last = focus_.LastTabIndex;
  for (int page = 0; page < pages.count(); ++page) {
    if (!pages.widget(page)->isAncestorOf(stop) || page == pages.currentIndex()) continue;
    // If a grid had the focus, the page stays; any other control brings its page to the front.
    for (const Child& child : children_)
      if (child.grid == stop) return;
    pages.setCurrentIndex(page);
  }
  // If the field takes no input now, the focus goes to one that does.
  if (!stop->isEnabled()) stop = &description;
  if (!stop->isEnabled()) stop = pages.tabBar();
  stop->setFocus();
  focus_.LastTabIndex = last;
}

bool frmInventoryMaint::ValidData() {
  if (assetCode.Text().empty()) {
    screen::MessageBox("You must assign a unique Asset ID to this entry.", screen::Icon::Information);
    assetCode.setEnabled(true);
    assetCode.setFocus();
    return false;
  }
  return modelYear.Text().empty() || rt::IsNumeric(modelYear.Text()) ||
         Refuse(modelYear, "The model year must be a valid number. Please check.");
}

bool frmInventoryMaint::StoreMore() {
  for (const DateColumn& date : kDates) {
    ui::TextBox& box = this->*date.box;
    // Enter on a field saves without leaving it, so the text may not have been checked yet.
    if (!ValidDate(box.Text(), false)) {
      box.setFocus();
      return false;
    }
    const auto value = rt::ParseDate(box.Text());
    Hold().Set(date.column, value ? rt::Value(*value) : rt::Value());
  }
  return true;
}

void frmInventoryMaint::Rename() {
  if (ReadOnly() || !ValidData() || !AddAsset()) return;
  Rearm();
  RenameAsset(assetCode.Text());
  OnActivate();
}

void frmInventoryMaint::PrintCosts() {
  const std::string asset = assetCode.Text();
  if (SaveForChild()) ShowCostsOfAsset(asset);
}

void frmInventoryMaint::Unpost() {
  const Busy busy(*this);
  {
    const ui::NoInput untouched(*this);
    UnpostNotice notice;
    UnpostAll([&notice](int percent) { notice.Percent(percent); });
  }
  OnActivate();
  CheckPosted();
}

}  // namespace dw
