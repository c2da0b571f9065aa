// One asset: its data, its picture, and the readings, transactions and schedule lines that hang on it.
#pragma once

#include <QCheckBox>
#include <QTabWidget>
#include <array>
#include <string>
#include <vector>

#include "fleet/forms/PictureCaller.h"
#include "platform/controls/CheckBox.h"
#include "platform/controls/DataCombo.h"
#include "platform/controls/DataGrid.h"
#include "platform/controls/PictureBox.h"
#include "windows/AdoDetailForm.h"

class QLabel;

namespace dw {

class frmInventoryMaint : public AdoDetailForm, public PictureCaller {
 public:
  static constexpr const char* kName = "frmInventoryMaint";
  frmInventoryMaint();

  /// Saves the record.
  bool AddAsset() { return SaveRecord(); }
  /// Saves the asset and opens a window for a new reading of it.
  void AddOdometer();

  ui::TextBox IDText{"IDText"};
  ui::TextBox AssetText{"AssetText", ui::Keys::UpperCase};
  ui::TextBox Text9{"Text9"};                                    ///< `Description`
  ui::TextBox Text13{"Text13"};                                  ///< `Location ID`
  ui::TextBox Text12{"Text12", ui::Keys::UpperCase};             ///< `VIN/Serial Number`
  ui::TextBox Text15{"Text15"};                                  ///< `Type`
  ui::TextBox Text20{"Text20"};                                  ///< `Meter Type`
  ui::MaskEdBox Text14{"Text14", "", ui::Keys::Digits};          ///< `Model Year`
  ui::MaskEdBox Text1{"Text1", "\"$\"#,##0.00", ui::Keys::Any};  ///< `Purchase Price`
  ui::DataCombo dcDivisions{"dcDivisions", "Description", "Division ID"};
  ui::DataCombo dcClasses{"dcClasses", "Description", "Class ID"};
  ui::DataCombo dcFuelTypes{"dcFuelTypes", "Description", "ID"};
  ui::CheckBox chkNotInService{"chkNotInService", "No Longer In Service"};
  ui::TextBox Text3{"Text3"};    ///< `Entry Date`
  ui::TextBox Text16{"Text16"};  ///< `Purchase Date`
  ui::TextBox Text17{"Text17"};  ///< `Replacement Date`
  ui::PictureBox imgAsset{"imgAsset"};
  QPushButton* cmdRename;
  std::array<QPushButton*, 2> cmdPicture;  ///< "cmdPicture(0)" shows the picture, "cmdPicture(1)" gets one
  QPushButton* cmdUnpost;

  QTabWidget SSIndexTab1;
  ui::NotesBox txtDue{"txtDue"};
  ui::TextBox txtDueBy{"txtDueBy"};
  ui::TextBox txtUsage{"txtUsage"};
  QPushButton* cmdDue;
  ui::DataGrid grdMaintenance{"grdMaintenance"};
  QCheckBox chkNonFuelOnly;
  QPushButton* cmdPrint;
  ui::DataGrid grdSchedule{"grdSchedule"};
  ui::NotesBox Text8{"Text8"};
  ui::DataGrid OdometerGrid{"OdometerGrid"};

 protected:
  void OnLoad() override;
  void OpenLists() override;
  void RecordLoaded() override;
  bool Refreshed() override;
  bool ValidData() override;
  bool StoreMore(ado::Recordset& record) override;

 private:
  /// A grid of what hangs on the asset.
  struct Child {
    ui::DataGrid* grid = nullptr;
    ui::Adodc* data = nullptr;
    long topRow = 0;
    bool armed = false;  ///< `topRow` is the row to go back to
    std::int32_t currentRow = 0;
  };

  void BindControls();
  void SetUpGrids();
  void LayOut();
  QLayout* LayOutFields();
  QLayout* LayOutPicture();
  void AddTabs();

  void FillCombos();
  /// The asset's code for a query; a marker that no asset bears where it has none yet.
  std::string CodeForQuery();
  void RefreshMaintenance();
  void CheckPosted();
  void ProposeDue();
  void RunDue();
  bool TakePhoto();
  void ShowPictureButtons();
  /// Takes down what had the focus last.
  void NoteFocus(QWidget* widget);
  void RestoreFocus();
  void Rename();
  void Unpost();
  void AddChild(int page);
  void ShowChild(int page);
  void OpenChild(int page, bool add, std::int32_t id);
  /// Reads the rows of a grid anew and goes back to where it stood.
  void RefreshChild(Child& child);
  /// The next page but so many, round and round.
  void TurnPage(int step);
  /// Brings the focus back to a field of the first page, which another page may cover by then.
  void ComeBackTo(ui::TextBox& field);
  void DeleteChild(int page);
  /// The number of the grid's row. False where another user deleted it, which is told.
  bool RowID(Child& child, std::int32_t& id);
  Child& ChildOn(int page);
  /// The rule of a date field: left with something that is no date, it takes the focus back.
  void CheckDateOnLeaving(ui::TextBox& field);

  ui::Adodc adoDivisions_;
  ui::Adodc adoClasses_;
  ui::Adodc adoFuelTypes_;
  ui::Adodc adoMaintenance_;
  ui::Adodc adoSchedule_;
  ui::Adodc adoOdometers_;
  std::vector<Child> children_;
  bool comingBack_ = false;      ///< the focus is on its way back to a field that was left too early
  bool justRead_ = false;        ///< the grids show the record that was read a moment ago
  std::vector<QWidget*> stops_;  ///< what the Tab key reaches, in its order
  int LastTabIndex = 0;          ///< the place among them that had the focus last
};

}  // namespace dw
