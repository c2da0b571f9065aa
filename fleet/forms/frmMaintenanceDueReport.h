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

  ui::TextBox dueBy{"Text1"};  ///< due by this date
  ui::MaskEdBox usage{"txtUsage"};
  QPushButton* proceedButton;
  QPushButton* cancelButton;

 protected:
  void OnLoad() override;

 private:
  void Proceed();
};

}  // namespace dw
