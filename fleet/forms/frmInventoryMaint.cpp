#include "fleet/forms/frmInventoryMaint.h"

#include <QApplication>
#include <QPushButton>
#include <algorithm>
#include <utility>

#include "costing/Unposting.h"
#include "data/BrackenfelGlobals.h"
#include "data/GenericADO.h"
#include "data/GenericTools.h"
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
#include "windows/ListForm.h"

namespace dw {
namespace {

/// What stands for the code of an asset that has none yet: it matches nothing, where a blank might.
constexpr const char* kNoCode = "~~~~~~~~~~~~";

QPushButton* Button(const char* name, const char* caption) {
  auto* button = new QPushButton(caption);
  button->setObjectName(name);
  return button;
}

/// The pointer over a form while it works, whichever way the work ends.
struct Busy {
  explicit Busy(ui::Form& busy) : form(busy) { form.SetPointer(screen::Pointer::Hourglass); }
  ~Busy() { form.SetPointer(screen::Pointer::Normal); }
  Busy(const Busy&) = delete;
  Busy& operator=(const Busy&) = delete;
  ui::Form& form;
};

/// The dates that code moves between box and column, so that an empty box is a Null.
struct DateColumn {
  ui::TextBox frmInventoryMaint::*box;
  const char* column;
};
constexpr DateColumn kDates[] = {{&frmInventoryMaint::Text3, "Entry Date"},
                                 {&frmInventoryMaint::Text16, "Purchase Date"},
                                 {&frmInventoryMaint::Text17, "Replacement Date"}};

}  // namespace

frmInventoryMaint::frmInventoryMaint()
    : AdoDetailForm({.form = kName,
                     .title = "Asset Detail",
                     .data = "adoData1",
                     .emptyQuery = "SELECT * FROM Vehicles WHERE ID = -1",
                     .query = "SELECT * FROM Vehicles WHERE ID = ",
                     .recordWords = "Inventory #",
                     .lockField = "Description"}),
      cmdRename(Button("cmdRename", "&Rename")),
      cmdPicture{Button("cmdPicture(0)", "&View Photo"), Button("cmdPicture(1)", "&Add Photo")},
      cmdUnpost(Button("cmdUnpost", "Un&post")),
      cmdDue(Button("cmdDue", "ReCalc")),
      chkNonFuelOnly("Non-Fuel Only"),
      cmdPrint(Button("cmdPrint", "&Print")),
      adoDivisions_(*this, "adoDivisions"),
      adoClasses_(*this, "adoClasses"),
      adoFuelTypes_(*this, "adoFuelTypes"),
      adoMaintenance_(*this, "adoMaintenance"),
      adoSchedule_(*this, "adoSchedule"),
      adoOdometers_(*this, "adoOdometers") {
  SSIndexTab1.setObjectName("SSIndexTab1");
  chkNonFuelOnly.setObjectName("chkNonFuelOnly");
  BindControls();
  LayOut();
  SetUpGrids();

  cmdRename->setEnabled(false);
  cmdUnpost->setEnabled(false);
  ui::OnClick(*cmdRename, [this] { Rename(); });
  ui::OnClick(*cmdUnpost, [this] { Unpost(); });
  ui::OnClick(*cmdDue, [this] { RunDue(); });
  ui::OnClick(chkNonFuelOnly, [this] { RefreshMaintenance(); });
  ui::OnClick(*cmdPicture[0], [this] { OpenAssetPicture(DataID); });
  ui::OnClick(*cmdPicture[1], [this] { OpenGetPicture(*this, *this); });

  for (const DateColumn& date : kDates) CheckDateOnLeaving(this->*date.box);
  txtDueBy.onLeave = [this] {
    if (CancelPressed() || comingBack_ || ValidDate(txtDueBy.Text(), false)) return true;
    ComeBackTo(txtDueBy);
    return false;
  };
  txtUsage.onLeave = [this] {
    if (CancelPressed() || comingBack_ || rt::IsNumeric(txtUsage.Text())) return true;
    screen::MessageBox("Usage must be a valid number.", screen::Icon::Information);
    ComeBackTo(txtUsage);
    return false;
  };
  Text14.SelectOnEntry();
  Text1.SelectOnEntry();
  // Whatever loses the focus is what gets it back when the window comes forward again.
  connect(qApp, &QApplication::focusChanged, this,
          [this](QWidget* earlier, QWidget*) { NoteFocus(earlier); });
}

void frmInventoryMaint::CheckDateOnLeaving(ui::TextBox& field) {
  field.onLeave = [this, &field] { return CancelPressed() || ValidDate(field.Text(), false); };
}

void frmInventoryMaint::NoteFocus(QWidget* widget) {
  const auto stop = std::find(stops_.begin(), stops_.end(), widget);
  if (stop != stops_.end()) LastTabIndex = static_cast<int>(stop - stops_.begin());
}

void frmInventoryMaint::ComeBackTo(ui::TextBox& field) {
  if (SSIndexTab1.currentIndex() == 0) return;
  // The page is being turned just now, and the focus has more than one step to go.
  comingBack_ = true;
  ui::Later(field, [this, &field] {
    comingBack_ = false;
    SSIndexTab1.setCurrentIndex(0);
    field.setFocus();
  });
}

void frmInventoryMaint::OnLoad() {
  AdoConnectionPtr connection;
  if (AdoOpenConnection(connection, DataConnect, false)) {
    AdoRecordsetPtr parameters = AdoOpenRecordset(connection, "SELECT * FROM [Parameters] WHERE ID = 1");
    const bool shown = !parameters || parameters->AtEnd() ||
                       (!parameters->Get("Internal_Fuel_Available").IsNull() &&
                        parameters->Get("Internal_Fuel_Available").AsBoolean());
    for (const int column : {3, 4}) grdMaintenance.ShowColumn(column, shown);
    CloseObject(parameters);
    CloseObject(connection);
  }
  const auto bind = [](ui::Adodc& control, const char* query) {
    BindToMainFile(control, query);
    control.Refresh();
  };
  bind(adoFuelTypes_, "SELECT ID, Description FROM [Fuel Types] WHERE ID = -1");
  bind(adoClasses_, "SELECT [Class ID], Description FROM [Inventory Classes] WHERE ID = -1");
  bind(adoDivisions_, "SELECT [Division ID], Description FROM Divisions WHERE ID = -1");
  AdoDetailForm::OnLoad();
  bind(adoOdometers_, "SELECT * FROM [Odometer Entries] WHERE ID = -1");
  bind(adoSchedule_,
       "SELECT * FROM [Maintenance Schedule] LEFT JOIN [Maintenance Types] ON [Maintenance Schedule].[Type "
       "ID] = "
       "[Maintenance Types].ID WHERE [Maintenance Schedule].ID = -1");
  bind(adoMaintenance_, "SELECT * FROM [Maintenance Transactions] WHERE [ID] = -1");
  for (Child& child : children_) child.grid->SetDataSource(*child.data);
}

void frmInventoryMaint::FillCombos() {
  const auto fill = [](ui::DataCombo& combo, ui::Adodc& rows, const char* query) {
    rows.RecordSource = query;
    rows.Refresh();
    combo.Fill(rows.Recordset().get());
  };
  fill(dcFuelTypes, adoFuelTypes_, "SELECT ID, Description FROM [Fuel Types] ORDER BY Description");
  fill(dcClasses, adoClasses_,
       "SELECT [Class ID], Description FROM [Inventory Classes] ORDER BY Description");
  fill(dcDivisions, adoDivisions_, "SELECT [Division ID], Description FROM Divisions ORDER BY Description");
}

std::string frmInventoryMaint::CodeForQuery() {
  const rt::Value code = Stored("Asset ID");
  return QuoteSQL(code.IsNull() ? kNoCode : code.AsText());
}

void frmInventoryMaint::OpenLists() {
  for (Child& child : children_)
    if (!child.armed && child.grid->Row() > 0)
      ui::AdoRefreshGrid(*child.grid, *child.data, child.armed, child.topRow);
  justRead_ = true;
  FillCombos();
  const std::string code = CodeForQuery();
  adoOdometers_.RecordSource =
      "SELECT * FROM [Odometer Entries] WHERE [Asset ID] = '" + code + "' ORDER BY [Mileage] DESC";
  adoOdometers_.Refresh();
  RefreshMaintenance();
  adoSchedule_.RecordSource =
      "SELECT * FROM [Maintenance Schedule] LEFT JOIN [Maintenance Types] ON [Maintenance Schedule].[Type "
      "ID] = "
      "[Maintenance Types].[ID] WHERE [Asset ID] = '" +
      code + "'";
  adoSchedule_.Refresh();
}

void frmInventoryMaint::RefreshMaintenance() {
  adoMaintenance_.RecordSource =
      "SELECT * FROM [Maintenance Transactions] WHERE [Asset ID] = '" + CodeForQuery() +
      (chkNonFuelOnly.isChecked() ? "' AND ([Internal Fuel Cost] + 0) = 0 AND ([Outside Fuel Cost] + 0) = 0 "
                                    "ORDER BY [Transaction Date] DESC"
                                  : "' ORDER BY [Transaction Date] DESC");
  adoMaintenance_.Refresh();
}

void frmInventoryMaint::RecordLoaded() {
  if (!AddMode) {
    AssetText.setEnabled(false);
    cmdRename->setEnabled(!ReadOnly());
  }
  // What is due can be read, and scrolled, in any window.
  txtDue.setEnabled(true);
  for (const DateColumn& date : kDates) (this->*date.box).ShowValue(Stored(date.column));
  const rt::Value code = Stored("Asset ID");
  setWindowTitle(QString::fromStdString(code.IsNull() ? "Detail for New Asset"
                                                      : "Detail for Asset ID " + code.AsText()));
  CheckPosted();
  // What has the focus may lose it with its page.
  NoteFocus(focusWidget());
  const int last = LastTabIndex;
  SSIndexTab1.setCurrentIndex(0);
  LastTabIndex = last;
  RestoreFocus();
  ProposeDue();
  RunDue();
}

void frmInventoryMaint::CheckPosted() {
  if (!adoMaintenance_.HasRows()) return;
  const bool posted = ui::FirstRowWhere(adoMaintenance_, "[When Posted] IS NOT NULL").has_value();
  cmdUnpost->setEnabled(posted);
  // Posted costs stand under the fuel type that the asset has now.
  dcFuelTypes.setEnabled(!posted && !ReadOnly());
}

void frmInventoryMaint::ProposeDue() {
  txtUsage.SetText(DefaultExtraUsage(AssetText.Text()));
  txtDueBy.SetText(DefaultDueBy());
  txtUsage.repaint();
  txtDueBy.repaint();
}

void frmInventoryMaint::RunDue() {
  const Busy busy(*this);
  txtDue.SetText("");
  const auto dueBy = rt::ParseDate(txtDueBy.Text());
  const auto usage = rt::ParseNumber(txtUsage.Text());
  if (!dueBy)
    screen::MessageBox("That is not a valid date. Please try again.", screen::Icon::Exclamation);
  else if (!usage)
    screen::MessageBox("Usage must be a valid number.", screen::Icon::Information);
  else
    txtDue.SetText(CalculateDue(AssetText.Text(), *dueBy, static_cast<float>(*usage)));
}

bool frmInventoryMaint::Refreshed() {
  // A record that somebody else holds takes no picture.
  if (ReadOnly()) {
    photo_.clear();
    removePhoto_ = false;
  }
  if (!photo_.empty() && !TakePhoto()) return true;
  if (!Activated) return false;
  if (removePhoto_) {
    imgAsset.Clear();
    removePhoto_ = false;
  }
  const int page = SSIndexTab1.currentIndex();
  const bool justRead = std::exchange(justRead_, false);
  for (Child& child : children_)
    if (child.armed || !justRead) RefreshChild(child);
  SSIndexTab1.setCurrentIndex(page);
  ShowPictureButtons();
  RestoreFocus();
  return true;
}

bool frmInventoryMaint::TakePhoto() {
  if (!ValidData()) return false;
  const std::string path = std::exchange(photo_, {});
  // A file that is no picture has been told of; the record stays as it is.
  if (!imgAsset.LoadFile(path)) return false;
  if (!AddAsset()) return false;
  removePhoto_ = false;
  Rearm();
  return true;
}

void frmInventoryMaint::ShowPictureButtons() {
  const bool picture = imgAsset.HasPicture();
  cmdPicture[1]->setText(picture ? "&Update Photo" : "&Add Photo");
  cmdPicture[1]->setEnabled(!ReadOnly());
  cmdPicture[0]->setEnabled(picture);
}

void frmInventoryMaint::RestoreFocus() {
  if (LastTabIndex < 0 || LastTabIndex >= static_cast<int>(stops_.size())) return;
  const int last = LastTabIndex;
  QWidget* stop = stops_[static_cast<std::size_t>(last)];
  for (int page = 0; page < SSIndexTab1.count(); ++page) {
    if (!SSIndexTab1.widget(page)->isAncestorOf(stop) || page == SSIndexTab1.currentIndex()) continue;
    // The grids leave the page as it is; the others bring their own with them.
    for (const Child& child : children_)
      if (child.grid == stop) return;
    SSIndexTab1.setCurrentIndex(page);
  }
  // A field that takes no input now gives the focus to one that does.
  if (!stop->isEnabled()) stop = &Text9;
  if (!stop->isEnabled()) stop = SSIndexTab1.tabBar();
  stop->setFocus();
  LastTabIndex = last;
}

bool frmInventoryMaint::ValidData() {
  if (AssetText.Text().empty()) {
    screen::MessageBox("You must assign a unique Asset ID to this entry.", screen::Icon::Information);
    AssetText.setEnabled(true);
    AssetText.setFocus();
    return false;
  }
  if (Text14.Text().empty() || rt::IsNumeric(Text14.Text())) return true;
  screen::MessageBox("The model year must be a valid number. Please check.", screen::Icon::Critical);
  Text14.setFocus();
  return false;
}

bool frmInventoryMaint::StoreMore(ado::Recordset& record) {
  for (const DateColumn& date : kDates) {
    ui::TextBox& box = this->*date.box;
    // Enter on a field saves without leaving it, so what was typed may not have been looked at.
    if (!ValidDate(box.Text(), false)) {
      box.setFocus();
      return false;
    }
    const auto value = rt::ParseDate(box.Text());
    record.Set(date.column, value ? rt::Value(*value) : rt::Value());
  }
  return true;
}

void frmInventoryMaint::Rename() {
  if (ReadOnly() || !ValidData() || !AddAsset()) return;
  Rearm();
  RenameAsset(AssetText.Text());
  OnActivate();
}

void frmInventoryMaint::Unpost() {
  const Busy busy(*this);
  {
    const ui::NoInput untouched(*this);
    UnpostAll();
  }
  OnActivate();
  CheckPosted();
}

}  // namespace dw
