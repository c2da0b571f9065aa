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
#include "windows/FocusMemory.h"
#include "windows/RecordForm.h"

class QLabel;

namespace dw {

class frmInventoryMaint : public RecordForm, public PictureCaller {
 public:
  static constexpr const char* kName = "frmInventoryMaint";
  frmInventoryMaint();

  ui::Adodc& Data() { return ByTransaction().Data(); }
  /// Saves the record.
  bool AddAsset() { return SaveRecord(); }
  /// Saves the asset and opens a window for a new reading of it.
  void AddOdometer();

  ui::TextBox recordNumber{"IDText"};
  ui::TextBox assetCode{"AssetText", ui::Keys::UpperCase};
  ui::TextBox description{"Text9"};                                      ///< `Description`
  ui::TextBox location{"Text13"};                                        ///< `Location ID`
  ui::TextBox serialNumber{"Text12", ui::Keys::UpperCase};               ///< `VIN/Serial Number`
  ui::TextBox assetType{"Text15"};                                       ///< `Type`
  ui::TextBox meterType{"Text20"};                                       ///< `Meter Type`
  ui::MaskEdBox modelYear{"Text14", "", ui::Keys::Digits};               ///< `Model Year`
  ui::MaskEdBox purchasePrice{"Text1", "\"$\"#,##0.00", ui::Keys::Any};  ///< `Purchase Price`
  ui::DataCombo division{"dcDivisions", "Description", "Division ID"};
  ui::DataCombo assetClass{"dcClasses", "Description", "Class ID"};
  ui::DataCombo fuelType{"dcFuelTypes", "Description", "ID"};
  ui::CheckBox notInService{"chkNotInService", "No Longer In Service"};
  ui::TextBox entryDate{"Text3"};         ///< `Entry Date`
  ui::TextBox purchaseDate{"Text16"};     ///< `Purchase Date`
  ui::TextBox replacementDate{"Text17"};  ///< `Replacement Date`
  ui::PictureBox photograph{"imgAsset"};
  QPushButton* cmdRename;
  std::array<QPushButton*, 2> cmdPicture;  ///< "cmdPicture(0)" shows the picture, "cmdPicture(1)" gets one
  QPushButton* cmdUnpost;

  QTabWidget pages;
  ui::NotesBox txtDue{"txtDue"};
  ui::TextBox txtDueBy{"txtDueBy"};
  ui::TextBox txtUsage{"txtUsage"};
  QPushButton* cmdDue;
  ui::DataGrid grdMaintenance{"grdMaintenance"};
  QCheckBox chkNonFuelOnly;
  QPushButton* cmdPrint;
  ui::DataGrid grdSchedule{"grdSchedule"};
  ui::NotesBox notes{"Text8"};
  ui::DataGrid grdOdometer{"OdometerGrid"};

 protected:
  void OnLoad() override;
  void OpenLists() override;
  void RecordLoaded() override;
  bool Refreshed() override;
  bool ValidData() override;
  bool StoreMore() override;

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
  void PutTogether();
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
  bool comingBack_ = false;  ///< the focus is on its way back to a field that was left too early
  bool justRead_ = false;    ///< the grids show the record that was read a moment ago
  FocusMemory focus_;
};

}  // namespace dw
