// The one screen through which every report runs.
#pragma once

#include <QCheckBox>
#include <QRadioButton>
#include <array>
#include <deque>
#include <memory>
#include <string>

#include "platform/controls/Form.h"
#include "platform/controls/TextBox.h"
#include "reports/ReportRun.h"

class QLayout;
class QPushButton;

namespace dw {

/// Takes the globals of a launch, lets the user edit the titles, choose the output and a stored selection,
/// and runs the report. While a preview is open the form stays, and other windows can be used. A launch while
/// it is open shows the same form again.
class ReportForm : public ui::Form {
 public:
  static constexpr const char* kName = "ReportForm";
  ReportForm();

  bool UseAddress = false;  ///< the titles come from the row of `Parameters`
  bool SectionPageBreak = false;
  std::string Title1, Title2, Title3, Title4;            ///< preset titles
  std::string Aux1, Aux2, Aux3, Aux4, Aux5, Aux6, Aux7;  ///< texts of RptAux1 to RptAux7

  std::deque<ui::TextBox> titleLines;  ///< "Text1(0)" to "Text1(3)"
  QRadioButton toScreen, toPrinter, byMail;
  QCheckBox summaryOnly;
  QPushButton* selectButton;
  QPushButton* proceedButton;
  QPushButton* cancelButton;
  ReportPrinterDialog ReportPrinter;

 protected:
  void OnLoad() override;
  void OnUnload() override;
  void closeEvent(QCloseEvent* event) override;

 private:
  QLayout* LayOutTitles();
  QLayout* LayOutOutput();
  bool TitlesFromAddress();
  void PresetTitles();
  void Select();
  void Proceed();
  void Cancel();
  ReportOptions Options() const;
  bool WaitForPreview();

  bool EngineOpen = false;
  bool HasSelection = false;
  bool HasSort = false;
  bool running_ = false;                         ///< between the click on Proceed and its end
  bool stopped_ = false;                         ///< the user closes the form while a preview is open
  std::unique_ptr<screen::Hourglass> starting_;  ///< until the preview is there
};

}  // namespace dw
