// One asset: its data, its picture, and the readings, transactions and schedule lines that belong to it.
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
  QPushButton* renameButton;
  std::array<QPushButton*, 2>
      pictureButtons;  ///< "cmdPicture(0)" shows the picture, "cmdPicture(1)" gets one
  QPushButton* unpostButton;

  QTabWidget pages;
  ui::NotesBox due{"txtDue"};
  ui::TextBox dueBy{"txtDueBy"};
  ui::TextBox dueUsage{"txtUsage"};
  QPushButton* dueButton;
  ui::DataGrid transactionGrid{"grdMaintenance"};
  QCheckBox nonFuelOnly;
  QPushButton* printButton;
  ui::DataGrid scheduleGrid{"grdSchedule"};
  ui::NotesBox notes{"Text8"};
  ui::DataGrid readingGrid{"OdometerGrid"};

 protected:
  void OnLoad() override;
  void OpenLists() override;
  void RecordLoaded() override;
  bool Refreshed() override;
  bool ValidData() override;
  bool StoreMore() override;

 private:
  /// A grid of records that belong to the asset.
  struct Child {
    ui::DataGrid* grid = nullptr;
    ui::Adodc* data = nullptr;
    ui::GridPlace place = {};
    std::int32_t currentRow = 0;
  };

  void BindControls();
  void SetUpGrids();
  void PutTogether();
  QLayout* LayOutFields();
  QLayout* LayOutPicture();
  void AddTabs();

  void FillCombos();
  /// The asset's code for a query; for an asset without a code, a marker that no asset has.
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
  /// Saves the asset and asks for the dates of the report of its costs.
  void PrintCosts();
  void FocusPrintOrUnpost();
  void AddChild(int page);
  void ShowChild(int page);
  void OpenChild(int page, bool add, std::int32_t id);
  /// Reads the rows of a grid anew and goes back to the row where it was.
  void RefreshChild(Child& child);
  /// Goes on by `step` pages, from the last to the first and back.
  void TurnPage(int step);
  /// Returns the focus to a field of the first page, which may not be the one in front by then.
  void ComeBackTo(ui::TextBox& field);
  void DeleteChild(int page);
  Child& ChildOn(int page);
  /// The rule of a date field: if its text is not a date, it gets the focus back.
  void CheckDateOnLeaving(ui::TextBox& field);

  ui::Adodc divisionRows_;
  ui::Adodc classRows_;
  ui::Adodc fuelTypeRows_;
  ui::Adodc transactionRows_;
  ui::Adodc scheduleRows_;
  ui::Adodc readingRows_;
  std::vector<Child> children_;
  bool comingBack_ = false;  ///< the focus is on its way back to a field with a bad text
  bool justRead_ = false;    ///< the grids show the record that was just read
  FocusMemory focus_;
};

}  // namespace dw
