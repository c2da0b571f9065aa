// The print dialog on a desktop.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/controls/Form.h"
#include "platform/print/job/PrintDialog.h"
#include "platform/print/view/Printers.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QRadioButton;
class QSpinBox;

namespace print {

/// Printer or PDF file, pages, copies and paper. The paper is kept from one time to the next in the settings.
class PrintForm : public ui::Form {
 public:
  static constexpr const char* kName = "PrintForm";

  PrintForm(const PrintDialogRequest& request, std::vector<Printer> printers);

  /// Asks for the PDF file; the path, or an empty text. Tests replace it.
  static std::function<std::string(QWidget* parent)> askForFile;

  const PrintDialogResult& Result() const { return result_; }

  QComboBox* printer = nullptr;
  QComboBox* paper = nullptr;
  QRadioButton* allPages = nullptr;
  QRadioButton* somePages = nullptr;
  QSpinBox* firstPage = nullptr;
  QSpinBox* lastPage = nullptr;
  QSpinBox* copies = nullptr;
  QCheckBox* collate = nullptr;
  QPushButton* okButton = nullptr;
  QPushButton* cancelButton = nullptr;

 protected:
  void OnLoad() override;

 private:
  void Accept();
  void ShowWhatApplies();
  bool ToFile() const;

  PrintDialogRequest request_;
  std::vector<Printer> printers_;
  PrintDialogResult result_;
};

/// Shows PrintForm. The paper is the setting "Paper" of the application's section "Printing".
class QtPrintDialog : public PrintDialog {
 public:
  explicit QtPrintDialog(std::string application) : application_(std::move(application)) {}
  std::optional<PrinterChoice> Default() override;
  PrintDialogResult Show(const PrintDialogRequest& request) override;

  /// The printers that the dialog offers. Tests replace it.
  static std::function<std::vector<Printer>()> listPrinters;

 private:
  std::string application_;
};

}  // namespace print
