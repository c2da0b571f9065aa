// The window that asks for the dates of a report, for the six reports that need them.
#pragma once

#include <string>

#include "platform/controls/Form.h"
#include "platform/controls/TextBox.h"

class QLabel;
class QPushButton;

namespace dw {

/// Stays open behind the report until the user closes it. The end may lie before the start: the report is
/// empty then.
class DateRangeForm : public ui::Form {
 public:
  explicit DateRangeForm(const char* name);

  ui::TextBox startDate{"txtStartDate"};
  ui::TextBox endDate{"txtEndDate"};
  QPushButton* proceedButton;
  QPushButton* cancelButton;

 protected:
  void OnLoad() override;
  /// The code of the only asset of the report; empty for all.
  virtual std::string OnlyAsset() const { return {}; }
  /// Says something above the dates.
  QLabel* note;

 private:
  bool ValidDates();
  void Proceed();
};

class frmRptDWR004 : public DateRangeForm {
 public:
  static constexpr const char* kName = "frmRptDWR004";
  frmRptDWR004() : DateRangeForm(kName) {}
};

class frmRptDWR006 : public DateRangeForm {
 public:
  static constexpr const char* kName = "frmRptDWR006";
  frmRptDWR006() : DateRangeForm(kName) {}
  std::string AssetID;  ///< code of the only asset; empty for all

 protected:
  void OnActivate() override;
  std::string OnlyAsset() const override { return AssetID; }
};

class frmRptDWR009 : public DateRangeForm {
 public:
  static constexpr const char* kName = "frmRptDWR009";
  frmRptDWR009() : DateRangeForm(kName) {}
};

class frmRptDWR013 : public DateRangeForm {
 public:
  static constexpr const char* kName = "frmRptDWR013";
  frmRptDWR013() : DateRangeForm(kName) {}
};

class frmRptDWR016 : public DateRangeForm {
 public:
  static constexpr const char* kName = "frmRptDWR016";
  frmRptDWR016() : DateRangeForm(kName) {}
};

class frmRptDWR017 : public DateRangeForm {
 public:
  static constexpr const char* kName = "frmRptDWR017";
  frmRptDWR017() : DateRangeForm(kName) {}
};

/// Shows the dates of the equipment costs for one asset.
void ShowCostsOfAsset(const std::string& assetID);

}  // namespace dw
