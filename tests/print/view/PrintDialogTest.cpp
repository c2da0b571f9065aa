// The print dialog, worked through its controls.
#include <QCheckBox>
#include <QComboBox>
#include <QRadioButton>
#include <QSpinBox>
#include <QTimer>

#include "platform/print/view/QtPrintDialog.h"
#include "platform/system/Settings.h"
#include "support/ScreenScript.h"
#include "support/TempDirectory.h"
#include "support/desktop/FormDriver.h"

using print::PrintForm;

namespace {

class PrintDialogTest : public testing::Test {
 protected:
  PrintDialogTest() {
    sys::UseSettingsFile(directory_.Path("settings.ini"));
    print::QtPrintDialog::listPrinters = [] {
      return std::vector<print::Printer>{{"garage", "Laser in the garage", false}, {"office", "", true}};
    };
  }
  ~PrintDialogTest() override {
    print::QtPrintDialog::listPrinters = usual_;
    sys::UseSettingsFile("");
  }

  /// Shows the dialog with its default choice and works in it; the window must be closed by the work.
  print::PrintDialogResult Show(const std::function<void(PrintForm&)>& work) {
    print::PrintDialogRequest request;
    request.flags = 64;
    request.choice = dialog_.Default().value();
    QTimer::singleShot(0, [&] {
      test::Settle();
      work(dynamic_cast<PrintForm&>(test::Open(PrintForm::kName)));
    });
    return dialog_.Show(request);
  }

  std::function<std::vector<print::Printer>()> usual_ = print::QtPrintDialog::listPrinters;
  test::TempDirectory directory_;
  test::ScreenScript screen_;
  print::QtPrintDialog dialog_{"Test"};
  test::FormsEnd end_;
};

}  // namespace

TEST_F(PrintDialogTest, OffersTheDefaultPrinterAndKeepsThePaper) {
  const auto result = Show([](PrintForm& form) {
    EXPECT_EQ(form.printer->currentData().toString(), "office");
    EXPECT_EQ(form.printer->itemText(0), "garage (Laser in the garage)");
    EXPECT_EQ(form.paper->currentText(), "Letter");
    EXPECT_FALSE(form.collate->isEnabled());
    form.paper->setCurrentText("A4");
    form.copies->setValue(3);
    EXPECT_TRUE(form.collate->isEnabled());
    form.firstPage->setValue(2);
    form.lastPage->setValue(4);
    EXPECT_TRUE(form.somePages->isChecked());
    test::Click(form, "okButton");
  });
  EXPECT_TRUE(result.chosen);
  EXPECT_FALSE(result.error);
  EXPECT_EQ(result.choice.printer, "office");
  EXPECT_EQ(result.choice.paper, "A4");
  EXPECT_EQ(result.choice.copies, 3);
  EXPECT_EQ(result.firstPage, 2);
  EXPECT_EQ(result.lastPage, 4);
  EXPECT_EQ(dialog_.Default()->paper, "A4");
}

TEST_F(PrintDialogTest, CancelChangesNothing) {
  const auto result = Show([](PrintForm& form) {
    form.paper->setCurrentText("A4");
    test::Press(*form.copies, Qt::Key_Escape);
  });
  EXPECT_FALSE(result.chosen);
  EXPECT_FALSE(result.error);
  EXPECT_EQ(dialog_.Default()->paper, "Letter");
}

TEST_F(PrintDialogTest, PrintsToAFileAndRefusesAnEmptyRange) {
  const auto usual = PrintForm::askForFile;
  std::string answer;
  PrintForm::askForFile = [&](QWidget*) { return answer; };
  screen_->Expect("The first page comes after the last one. Please change the pages.",
                  screen::Icon::Information, screen::Buttons::Ok, screen::Answer::Ok);
  const auto result = Show([&](PrintForm& form) {
    form.printer->setCurrentIndex(form.printer->count() - 1);
    EXPECT_FALSE(form.copies->isEnabled());
    form.lastPage->setValue(3);
    form.firstPage->setValue(5);
    test::Click(form, "okButton");
    form.allPages->setChecked(true);
    test::Click(form, "okButton");  // no file is named, so the dialog stays
    EXPECT_TRUE(form.isVisible());
    answer = "/tmp/costs.pdf";
    test::Click(form, "okButton");
  });
  PrintForm::askForFile = usual;
  EXPECT_EQ(result.choice.pdfFile, "/tmp/costs.pdf");
  EXPECT_EQ(result.choice.printer, "");
  EXPECT_EQ(result.firstPage, 0);
}
