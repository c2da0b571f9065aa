// One maintenance transaction: what an asset cost on a day, inside and outside the house.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "costing/TransactionEntry.h"
#include "windows/DetailForm.h"

class QGroupBox;
class QLabel;

namespace dw {

inline constexpr const char* kUnitsFormat = "###0.0";
inline constexpr const char* kHoursFormat = "###0.00";

/// Saving never posts. What was posted is only shown, but for notes, work order and mileage, until it has
/// been unposted and opened again.
class frmTransactionMaint : public DetailForm {
 public:
  static constexpr const char* kName = "frmTransactionMaint";
  frmTransactionMaint();

  std::string AssetID;            ///< the asset that the window is opened for; empty lets the user name one
  std::int16_t LastTabIndex = 0;  ///< of the control that the focus left last

  /// Whether everything on the window passes; tells what does not and goes to it.
  bool ValidData() override;
  void ShowAssetSerial();
  /// Both save the transaction first, for the task needs one on file; the window takes its record again when
  /// it becomes active.
  void AddTask();
  void ShowTask();
  void DeleteTask();

  ui::TextBox Text1{"Text1"};                                 ///< `ID`
  ui::TextBox txtAssetID{"txtAssetID", ui::Keys::UpperCase};  ///< `Asset ID`
  QLabel* lblAssetSerial;
  ui::TextBox Text8{"Text8"};                              ///< `Transaction Date`
  ui::TextBox Text9{"Text9"};                              ///< `Work Order Number`
  ui::MaskEdBox Text11{"Text11", {}, ui::Keys::Digits};    ///< `Year`
  ui::MaskEdBox Text10{"Text10", {}, ui::Keys::Digits};    ///< `Period`
  ui::MaskEdBox MaskEdBox3{"MaskEdBox3", kUnitsFormat};    ///< `Mileage`
  ui::MaskEdBox MaskedEdit5{"MaskedEdit5", kUnitsFormat};  ///< `Internal Fuel Units`
  ui::MaskEdBox edtUnleadedCost{"edtUnleadedCost", ui::kMoneyFormat};
  ui::MaskEdBox txtOilUnits{"txtOilUnits", {}, ui::Keys::Digits};      ///< `Oil`
  ui::MaskEdBox MaskedEdit9{"MaskedEdit9", ui::kMoneyFormat};          ///< `Oil Cost`
  ui::MaskEdBox MaskEdBox2{"MaskEdBox2", kHoursFormat};                ///< `Time`
  ui::MaskEdBox MaskEdBox1{"MaskEdBox1", ui::kMoneyFormat};            ///< `Internal Time Cost`
  ui::MaskEdBox MaskedEdit3{"MaskedEdit3", ui::kMoneyFormat};          ///< `Parts Cost`
  ui::MaskEdBox MaskedEdit16{"MaskedEdit16", kUnitsFormat};            ///< `Outside Fuel Units`
  ui::MaskEdBox MaskedEdit1{"MaskedEdit1", ui::kMoneyFormat};          ///< `Outside Fuel Cost`
  ui::MaskEdBox txtOutsideOil{"txtOutsideOil", {}, ui::Keys::Digits};  ///< `Outside Oil Units`
  ui::MaskEdBox MaskedEdit2{"MaskedEdit2", ui::kMoneyFormat};          ///< `Outside Oil Cost`
  ui::MaskEdBox MaskedEdit18{"MaskedEdit18", ui::kMoneyFormat};        ///< `Outside Cost`
  ui::NotesBox Text2{"Text2"};
  std::array<QLabel*, 5> lblExternals{};
  std::array<QLabel*, 6> lblInternals{};
  std::array<QGroupBox*, 2> fraTab{};  ///< external and internal costs
  QPushButton* cmdUnpost;

 private:
  InnerGrid& tasks_;

 public:
  ui::DataGrid& grdTasks;
  ui::Adodc& adoSchedule;

 protected:
  void OnActivate() override;
  void FillPlaceholder(dao::Recordset& record) override { FillNewTransaction(record, AssetID); }
  void RecordLoaded() override;
  bool eventFilter(QObject* watched, QEvent* event) override;

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
  /// The window is left as well where Enter presses OK with the focus on units.
  void PriceFocusedField();
  void RestoreFocus();
  /// Stores the transaction for a task. False where it does not pass.
  bool CommitForTask();
  void OpenTask(bool add, std::int32_t id);
  /// Whether another user deleted the grid's task before it was read: that is told.
  bool TaskIsGone();
  void Unpost();

  std::int32_t currentTask_ = 0;
  bool checking_ = false;
  std::vector<QWidget*> tabOrder_;
};

}  // namespace dw
