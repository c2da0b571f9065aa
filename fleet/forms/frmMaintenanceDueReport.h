// What is due by a date or within some miles, as a text to read.
#pragma once

#include "platform/controls/Form.h"
#include "platform/controls/TextBox.h"

class QPushButton;

namespace dw {

/// Writes the report beside the program and shows it. The window stays open if no report could be written.
class frmMaintenanceDueReport : public ui::Form {
 public:
  static constexpr const char* kName = "frmMaintenanceDueReport";
  frmMaintenanceDueReport();

  ui::TextBox Text1{"Text1"};  ///< due by this date
  ui::MaskEdBox txtUsage{"txtUsage"};
  QPushButton* cmdProceed;
  QPushButton* cmdCancel;

 protected:
  void OnLoad() override;

 private:
  void Proceed();
};

}  // namespace dw
