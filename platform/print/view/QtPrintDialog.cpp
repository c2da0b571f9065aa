#include "platform/print/view/QtPrintDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "platform/controls/Layout.h"
#include "platform/screen/Screen.h"
#include "platform/system/Settings.h"

namespace print {
namespace {

constexpr const char* kSection = "Printing";
constexpr const char* kPaperKey = "Paper";
constexpr const char* kLetter = "Letter";
constexpr const char* kA4 = "A4";
/// The flag of a request that offers all choices. Without it the pages exist already, and so does their
/// paper.
constexpr int kEverything = 64;
constexpr int kMostPages = 999999;
constexpr int kMostCopies = 999;
/// The last entry of the printers.
const QString kToFile = "To a PDF file…";

std::string AskForFile(QWidget* parent) {
  QString path = QFileDialog::getSaveFileName(parent, "Print to a PDF File",
                                              QDir::home().filePath("report.pdf"), "PDF (*.pdf)");
  if (!path.isEmpty() && !path.endsWith(".pdf", Qt::CaseInsensitive)) path += ".pdf";
  return path.toStdString();
}

}  // namespace

std::function<std::string(QWidget*)> PrintForm::askForFile = AskForFile;
std::function<std::vector<Printer>()> QtPrintDialog::listPrinters = Printers;

PrintForm::PrintForm(const PrintDialogRequest& request, std::vector<Printer> printers)
    : Form(kName), request_(request), printers_(std::move(printers)) {
  setWindowTitle("Print");
}

void PrintForm::OnLoad() {
  printer = new QComboBox(this);
  printer->setObjectName("printer");
  for (const Printer& one : printers_) {
    QString text = QString::fromStdString(one.name);
    if (!one.description.empty() && one.description != one.name)
      text += " (" + QString::fromStdString(one.description) + ")";
    printer->addItem(text, QString::fromStdString(one.name));
  }
  printer->addItem(kToFile);
  const int chosen = printer->findData(QString::fromStdString(request_.choice.printer));
  printer->setCurrentIndex(std::max(0, request_.choice.printer.empty() ? 0 : chosen));
  ui::SetWidth(*printer, ui::kTextWidth);

  paper = new QComboBox(this);
  paper->setObjectName("paper");
  paper->addItems({kLetter, kA4});
  paper->setCurrentText(
      QString::fromStdString(request_.choice.paper.empty() ? kLetter : request_.choice.paper));

  allPages = new QRadioButton("&All pages", this);
  allPages->setObjectName("allPages");
  somePages = new QRadioButton("Pages &from", this);
  somePages->setObjectName("somePages");
  allPages->setChecked(true);
  firstPage = new QSpinBox(this);
  firstPage->setObjectName("firstPage");
  firstPage->setAccessibleName("First page");
  lastPage = new QSpinBox(this);
  lastPage->setObjectName("lastPage");
  for (QSpinBox* box : {firstPage, lastPage}) box->setRange(1, kMostPages);
  auto* to = new QLabel("&to", this);
  to->setBuddy(lastPage);
  auto* range = new QHBoxLayout;
  range->addWidget(somePages);
  range->addWidget(firstPage);
  range->addWidget(to);
  range->addWidget(lastPage);
  range->addStretch(1);
  auto* pages = new QVBoxLayout;
  pages->addWidget(allPages);
  pages->addLayout(range);

  copies = new QSpinBox(this);
  copies->setObjectName("copies");
  copies->setRange(1, kMostCopies);
  copies->setValue(request_.choice.copies);
  collate = new QCheckBox("C&ollate", this);
  collate->setObjectName("collate");
  collate->setChecked(request_.choice.collate);

  auto* fields = new ui::FieldRows;
  fields->Row("&Printer", {printer});
  if (request_.flags & kEverything) {
    fields->Row("Pape&r", {paper});
  } else {
    paper->hide();
  }
  fields->Row("&Copies", {copies, collate});

  okButton = new QPushButton("OK", this);
  okButton->setObjectName("okButton");
  cancelButton = new QPushButton("Cancel", this);
  cancelButton->setObjectName("cancelButton");
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(fields);
  layout->addWidget(ui::Group("Pages", pages));
  layout->addStretch(1);
  layout->addLayout(ui::ButtonRow({okButton, cancelButton}));
  SetDefault(okButton);
  SetCancel(cancelButton);
  ui::OnClick(*okButton, [this] { Accept(); });
  ui::OnClick(*cancelButton, [this] { Unload(); });
  ui::TabOrder(
      {printer, paper, copies, collate, allPages, somePages, firstPage, lastPage, okButton, cancelButton});

  connect(printer, &QComboBox::currentIndexChanged, this, [this] { ShowWhatApplies(); });
  connect(copies, &QSpinBox::valueChanged, this, [this] { ShowWhatApplies(); });
  for (QSpinBox* box : {firstPage, lastPage})
    connect(box, &QSpinBox::valueChanged, this, [this] { somePages->setChecked(true); });
  ShowWhatApplies();
  printer->setFocus();
}

bool PrintForm::ToFile() const { return printer->currentIndex() == printer->count() - 1; }

void PrintForm::ShowWhatApplies() {
  copies->setEnabled(!ToFile());
  collate->setEnabled(!ToFile() && copies->value() > 1);
}

void PrintForm::Accept() {
  firstPage->interpretText();
  lastPage->interpretText();
  if (somePages->isChecked() && firstPage->value() > lastPage->value()) {
    screen::MessageBox("The first page comes after the last one. Please change the pages.",
                       screen::Icon::Information);
    firstPage->setFocus();
    return;
  }
  PrinterChoice choice;
  choice.paper = paper->currentText().toStdString();
  if (ToFile()) {
    choice.pdfFile = askForFile(this);
    if (choice.pdfFile.empty()) return;
  } else {
    choice.printer = printer->currentData().toString().toStdString();
    choice.copies = copies->value();
    choice.collate = collate->isChecked();
  }
  result_.chosen = true;
  result_.choice = choice;
  if (somePages->isChecked()) {
    result_.firstPage = firstPage->value();
    result_.lastPage = lastPage->value();
  }
  Unload();
}

std::optional<PrinterChoice> QtPrintDialog::Default() {
  PrinterChoice choice;
  for (const Printer& one : listPrinters())
    if (one.isDefault) choice.printer = one.name;
  choice.paper = sys::GetSetting(application_, kSection, kPaperKey, kLetter) == kA4 ? kA4 : kLetter;
  return choice;
}

PrintDialogResult QtPrintDialog::Show(const PrintDialogRequest& request) {
  PrintDialogResult result;
  auto* form = new PrintForm(request, listPrinters());
  form->AtUnload([&result, form] { result = form->Result(); });
  form->ShowModal();
  if (result.chosen && request.flags & kEverything)
    sys::SaveSetting(application_, kSection, kPaperKey, result.choice.paper);
  return result;
}

}  // namespace print
