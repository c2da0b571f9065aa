// One maintenance transaction: what an asset cost on a day, inside and outside the organization.
#pragma once

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "costing/TransactionEntry.h"
#include "windows/FocusMemory.h"
#include "windows/RecordForm.h"

class QGroupBox;
class QLabel;

namespace dw {

inline constexpr const char* kUnitsFormat = "###0.0";
inline constexpr const char* kHoursFormat = "###0.00";

/// Saving never posts. A posted transaction can only be read, except for notes, work order and mileage, until
/// it has been unposted and opened again.
class frmTransactionMaint : public RecordForm {
 public:
  static constexpr const char* kName = "frmTransactionMaint";
  frmTransactionMaint();

  std::string AssetID;  ///< the asset that the window is opened for; if empty, the user names one

  ui::DataControl& Data() { return ByEdit().Data(); }
  /// Whether everything on the window is valid; reports what is not and moves the focus there.
  bool ValidData() override;
  void ShowAssetSerial();
  /// Both save the transaction first, because a task needs one on file. The window takes its record again
  /// when it becomes active.
  void AddTask();
  void ShowTask();
  void DeleteTask();

  ui::TextBox recordNumber{"Text1"};                         ///< `ID`
  ui::TextBox assetCode{"txtAssetID", ui::Keys::UpperCase};  ///< `Asset ID`
  QLabel* assetSerial;
  ui::TextBox transactionDate{"Text8"};                          ///< `Transaction Date`
  ui::TextBox workOrder{"Text9"};                                ///< `Work Order Number`
  ui::MaskEdBox fiscalYear{"Text11", {}, ui::Keys::Digits};      ///< `Year`
  ui::MaskEdBox fiscalPeriod{"Text10", {}, ui::Keys::Digits};    ///< `Period`
  ui::MaskEdBox mileage{"MaskEdBox3", kUnitsFormat};             ///< `Mileage`
  ui::MaskEdBox internalFuelUnits{"MaskedEdit5", kUnitsFormat};  ///< `Internal Fuel Units`
  ui::MaskEdBox internalFuelCost{"edtUnleadedCost", ui::kMoneyFormat};
  ui::MaskEdBox internalOilUnits{"txtOilUnits", {}, ui::Keys::Digits};   ///< `Oil`
  ui::MaskEdBox internalOilCost{"MaskedEdit9", ui::kMoneyFormat};        ///< `Oil Cost`
  ui::MaskEdBox laborHours{"MaskEdBox2", kHoursFormat};                  ///< `Time`
  ui::MaskEdBox laborCost{"MaskEdBox1", ui::kMoneyFormat};               ///< `Internal Time Cost`
  ui::MaskEdBox partsCost{"MaskedEdit3", ui::kMoneyFormat};              ///< `Parts Cost`
  ui::MaskEdBox outsideFuelUnits{"MaskedEdit16", kUnitsFormat};          ///< `Outside Fuel Units`
  ui::MaskEdBox outsideFuelCost{"MaskedEdit1", ui::kMoneyFormat};        ///< `Outside Fuel Cost`
  ui::MaskEdBox outsideOilUnits{"txtOutsideOil", {}, ui::Keys::Digits};  ///< `Outside Oil Units`
  ui::MaskEdBox outsideOilCost{"MaskedEdit2", ui::kMoneyFormat};         ///< `Outside Oil Cost`
  ui::MaskEdBox outsideCost{"MaskedEdit18", ui::kMoneyFormat};           ///< `Outside Cost`
  ui::NotesBox notes{"Text2"};
  std::array<QLabel*, 5> externalHeadings{};
  std::array<QLabel*, 6> internalHeadings{};
  std::array<QGroupBox*, 2> costGroups{};  ///< external and internal costs
  QPushButton* unpostButton;

 private:
  InnerGrid& tasks_;

 public:
  ui::DataGrid& taskGrid;
  ui::Adodc& taskRows;

 protected:
  void OnActivate() override;
  void FillPlaceholder() override { FillNewTransaction(*Data().Recordset(), AssetID); }
  void RecordLoaded() override;

 private:
  void BindFields();
  void SetRules();
  void PutTogether();
  void SetTabOrder();
  QLayout* Header();
  QWidget* TasksGroup();

  bool CheckDate();
  bool CheckAll();
  void PriceField(OwnUnits kind, ui::TextBox& units, ui::TextBox& cost);
  /// The same leave rule runs if Enter presses OK with the focus on units.
  void PriceFocusedField();
  /// Stores the transaction for a task. False if it is not valid.
  bool CommitForTask();
  void OpenTask(bool add, std::int32_t id);
  void Unpost();
  /// Subtracts the figures from the sums to which they were added.
  void UnpostAtItsPlace();

  std::int32_t currentTask_ = 0;
  bool checking_ = false;
  bool keepsPeriod_ = false;  ///< a posted row: its year and period stay those of its sums
  std::vector<std::pair<std::string, ui::TextBox*>> figures_;  ///< the number fields, by their column
  FocusMemory focus_;
};

}  // namespace dw
