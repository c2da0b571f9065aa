// The preview window on runs that a test makes page by page.
#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QLabel>
#include <QScrollBar>
#include <QTabWidget>
#include <QTreeWidget>
#include <fstream>
#include <sstream>

#include "platform/print/PrintError.h"
#include "platform/print/job/PrintDialog.h"
#include "platform/print/view/PreviewWindow.h"
#include "print/SamplePages.h"
#include "support/ScreenScript.h"
#include "support/TempDirectory.h"
#include "support/desktop/FormDriver.h"

using print::Mark;
using print::PageStore;
using print::PreviewWindow;

namespace {

constexpr print::Length kPageWidth = 612 * test::kPt;
constexpr print::Length kPageHeight = 792 * test::kPt;

print::ReportFacts Facts() {
  print::ReportFacts facts;
  facts.title = "Costs";
  facts.pageWidth = kPageWidth;
  facts.pageHeight = kPageHeight;
  return facts;
}

/// A run whose pages the test adds.
class HandRun : public print::RunningReport {
 public:
  const PageStore& Pages() const override { return store; }
  void Cancel() override { canceled = true; }
  std::string Failure() const override { return failure; }
  std::string Warnings() const override { return warnings; }

  /// A page with a band for each line; a tab separates two cells.
  void Add(const std::vector<std::string>& lines, int slot = -1) {
    print::Page page;
    page.number = store.PageCount() + 1;
    page.width = kPageWidth;
    page.height = kPageHeight;
    print::Length top = 50 * test::kPt;
    for (const std::string& line : lines) {
      print::PlacedBand band;
      std::istringstream cells(line);
      print::Length left = 40 * test::kPt;
      for (std::string cell; std::getline(cells, cell, '\t'); left += 150 * test::kPt)
        band.cells.push_back(test::TextCell(left, top, 140 * test::kPt, cell));
      page.bands.push_back(band);
      top += 20 * test::kPt;
    }
    if (slot >= 0) {
      print::PlacedBand footer;
      footer.kind = print::BandKind::PageFooter;
      footer.cells.push_back(
          test::TextCell(400 * test::kPt, 740 * test::kPt, 100 * test::kPt, "", -1, print::Align::Right));
      footer.cells.back().lines.clear();
      footer.cells.back().slot = slot;
      page.bands.push_back(footer);
    }
    store.Append(page);
  }

  PageStore store{Facts()};
  bool canceled = false;
  std::string failure;
  std::string warnings;
};

/// Waits until the window has taken in what the run has.
void WaitFor(const std::function<bool()>& reached) {
  for (int i = 0; i < 200 && !reached(); ++i) QTest::qWait(10);
  EXPECT_TRUE(reached());
}

class Preview : public testing::Test {
 protected:
  PreviewWindow& Open(const std::shared_ptr<HandRun>& run, const std::string& title = "Costs") {
    viewer_.Open(run, title, 10, 10, 1000, 700);
    test::Settle();
    return dynamic_cast<PreviewWindow&>(*ui::ActiveForm());
  }
  std::shared_ptr<HandRun> Long(int pages) {
    auto run = std::make_shared<HandRun>();
    for (int page = 1; page <= pages; ++page)
      run->Add(
          {"Truck " + std::to_string(page) + "\t$1,234.50", "Oil\t($3.00)", "page-" + std::to_string(page)});
    run->store.Finish();
    return run;
  }

  print::PreviewViewer viewer_;
  test::ScreenScript screen_;
  test::FormsEnd end_;
};

}  // namespace

TEST_F(Preview, ShowsPagesAndLateValuesAsTheyCome) {
  auto run = std::make_shared<HandRun>();
  const int slot = run->store.NewSlot();
  run->Add({"first"}, slot);
  PreviewWindow& window = Open(run);
  EXPECT_EQ(window.pages->PageCount(), 1);
  EXPECT_EQ(window.state->text(), "1 page so far…");
  EXPECT_TRUE(window.stop->isVisible());
  EXPECT_EQ(print::TextOf(run->store.Read(0), run->store).back().text, "…");

  run->Add({"second"}, slot);
  run->store.AddOutline({0, "Cars", 1, 0});
  run->store.AddOutline({1, "BUS-001", 1, 0});
  WaitFor([&] { return window.pages->PageCount() == 2; });
  run->store.AddOutline({1, "  ", 2, 0});
  run->store.AddOutline({0, "Trucks", 2, 0});
  run->store.FillSlot(slot, {"Page 1 of 2", {}});
  run->store.Finish();
  WaitFor([&] { return !window.stop->isVisible(); });
  EXPECT_EQ(window.state->text(), "2 pages. Esc closes.");
  EXPECT_EQ(window.pageCount->text(), "of 2");
  ASSERT_EQ(window.groups->topLevelItemCount(), 2);
  ASSERT_EQ(window.groups->topLevelItem(0)->childCount(), 2);
  EXPECT_EQ(window.groups->topLevelItem(0)->child(1)->text(0), "(none)");
  EXPECT_EQ(print::TextOf(run->store.Read(0), run->store).back().text, "Page 1 of 2");
  window.groups->setCurrentItem(window.groups->topLevelItem(1));
  EXPECT_EQ(window.pages->CurrentPage(), 1);
}

TEST_F(Preview, CancelKeepsThePagesAndCloseEndsTheRun) {
  auto run = std::make_shared<HandRun>();
  run->Add({"only"});
  PreviewWindow& window = Open(run);
  test::Click(window, "stop");
  EXPECT_TRUE(run->canceled);
  run->failure = "The temporary disk is full: page 2 could not be kept.";
  WaitFor([&] { return window.state->text().startsWith("The temporary disk"); });
  EXPECT_EQ(window.pages->PageCount(), 1);
  QTest::keySequence(&window, QKeySequence::Save);  // would ask for a file, and no test answers
  test::Press(*window.pages, Qt::Key_Escape);
  EXPECT_EQ(ui::FindForm(PreviewWindow::kName), nullptr);

  auto other = std::make_shared<HandRun>();
  other->Add({"only"});
  const std::uintptr_t opened = viewer_.Open(other, "Other", 0, 0, 0, 0);
  EXPECT_TRUE(viewer_.IsOpen(opened));
  viewer_.Close(opened);
  test::Settle();
  EXPECT_FALSE(viewer_.IsOpen(opened));
  EXPECT_TRUE(other->canceled);
}

TEST_F(Preview, FindsWordsOnAllPagesAndGoesAround) {
  auto run = Long(30);
  PreviewWindow& window = Open(run);
  QTest::keySequence(&window, QKeySequence::Find);
  EXPECT_TRUE(window.find->hasFocus());
  QTest::keyClicks(window.find, "TRUCK 2");
  WaitFor([&] { return window.found->text() == "1 of 11"; });  // 2 and 20 to 29
  EXPECT_EQ(window.pages->CurrentPage(), 1);
  QTest::keyClick(window.find, Qt::Key_Return);
  EXPECT_EQ(window.found->text(), "2 of 11");
  EXPECT_EQ(window.pages->CurrentPage(), 19);
  QTest::keyClick(window.find, Qt::Key_F3, Qt::ShiftModifier);
  QTest::keyClick(window.find, Qt::Key_F3, Qt::ShiftModifier);
  EXPECT_EQ(window.found->text(), "11 of 11");
  EXPECT_EQ(window.pages->CurrentPage(), 28);
  window.find->setText("ship");
  WaitFor([&] { return window.found->text() == "not found"; });
  test::Press(*window.find, Qt::Key_Escape);
  EXPECT_TRUE(window.pages->hasFocus());

  // Pages that come during a search are searched too.
  auto growing = std::make_shared<HandRun>();
  growing->Add({"nothing"});
  PreviewWindow& other = Open(growing);
  other.find->setText("late");
  WaitFor([&] { return other.found->text() == "not found"; });
  growing->Add({"too late"});
  growing->store.Finish();
  WaitFor([&] { return other.found->text() == "1 of 1"; });
}

TEST_F(Preview, IsWorkedByKeysWithoutPauses) {
  auto run = Long(40);
  PreviewWindow& window = Open(run);
  ASSERT_TRUE(window.pages->hasFocus());
  QTest::keyClick(window.pages, Qt::Key_9, Qt::ControlModifier);
  for (int i = 0; i < 5; ++i) QTest::keyClick(window.pages, Qt::Key_PageDown);
  EXPECT_EQ(window.pages->CurrentPage(), 5);
  QTest::keyClick(window.pages, Qt::Key_PageUp);
  EXPECT_EQ(window.pages->CurrentPage(), 4);
  QTest::keyClick(window.pages, Qt::Key_End);
  EXPECT_EQ(window.pages->CurrentPage(), 39);
  QTest::keyClick(window.pages, Qt::Key_G, Qt::ControlModifier);
  QTest::keyClicks(QApplication::focusWidget(), "17");
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  EXPECT_EQ(window.pages->CurrentPage(), 16);
  EXPECT_TRUE(window.pages->hasFocus());
  EXPECT_EQ(window.pageCount->text(), "of 40");

  // The place stays when the size changes.
  const double before = window.pages->Scale();
  QTest::keyClick(window.pages, Qt::Key_Plus, Qt::ControlModifier);
  QTest::keyClick(window.pages, Qt::Key_Plus, Qt::ControlModifier);
  EXPECT_GT(window.pages->Scale(), before * 1.5);
  EXPECT_EQ(window.pages->CurrentPage(), 16);
  QTest::keyClick(window.pages, Qt::Key_0, Qt::ControlModifier);
  EXPECT_EQ(window.pages->CurrentPage(), 16);
  QTest::keyClick(window.pages, Qt::Key_2, Qt::ControlModifier);
  EXPECT_TRUE(window.pages->TwoPages());
  QTest::keyClick(window.pages, Qt::Key_F9);
  EXPECT_FALSE(window.groups->isVisible());
  const int height = 677;
  window.resize(window.width(), height);
  QTest::keyClick(window.pages, Qt::Key_Escape);
  test::Settle();

  // The next report's window takes over what the reader has chosen.
  PreviewWindow& next = Open(Long(3), "Next");
  EXPECT_TRUE(next.pages->TwoPages());
  EXPECT_FALSE(next.groups->isVisible());
  EXPECT_EQ(next.height(), height);
  QTest::keyClick(next.pages, Qt::Key_2, Qt::ControlModifier);
  QTest::keyClick(next.pages, Qt::Key_F9);
}

TEST_F(Preview, CopiesLinesAndColumns) {
  auto run = Long(2);
  PreviewWindow& window = Open(run);
  QTest::keySequence(&window, QKeySequence::SelectAll);
  QTest::keySequence(&window, QKeySequence::Copy);
  EXPECT_EQ(QApplication::clipboard()->text(),
            "Truck 1\t$1,234.50\nOil\t($3.00)\npage-1\nTruck 2\t$1,234.50\nOil\t($3.00)\npage-2");

  // With Alt, the second column alone: from above its first line to below its second.
  window.pages->SetZoom(print::Zoom::Fixed, 1);
  QTest::keyClick(window.pages, Qt::Key_Home);
  QWidget* paper = window.pages->viewport();
  const int left = (paper->width() - 612) / 2;
  const auto at = [&](int x, int y) { return QPoint(std::max(12, left) + x, 12 + y); };
  QTest::mousePress(paper, Qt::LeftButton, Qt::AltModifier, at(185, 45));
  QMouseEvent move(QEvent::MouseMove, at(330, 85), paper->mapToGlobal(at(330, 85)), Qt::LeftButton,
                   Qt::LeftButton, Qt::AltModifier);
  QApplication::sendEvent(paper, &move);
  QTest::mouseRelease(paper, Qt::LeftButton, Qt::AltModifier, at(330, 85));
  EXPECT_EQ(window.pages->MarkedText(), "$1,234.50\n($3.00)");
}

TEST_F(Preview, SavesAndPrintsWhatItShows) {
  const test::TempDirectory directory;
  auto run = Long(3);
  PreviewWindow& window = Open(run);
  const auto usual = PreviewWindow::askForFile;
  std::string asked;
  std::string answer = directory.Path("costs.txt");
  PreviewWindow::askForFile = [&](QWidget*, const QString& name, const QString&) {
    asked = name.toStdString();
    return QString::fromStdString(answer);
  };
  QTest::keySequence(&window, QKeySequence::Save);
  std::ostringstream saved;
  saved << std::ifstream(answer).rdbuf();
  EXPECT_NE(saved.str().find("Truck 1"), std::string::npos);
  EXPECT_NE(saved.str().find("page-3"), std::string::npos);
  EXPECT_NE(asked.find("Costs.pdf"), std::string::npos);

  answer = directory.Path("costs.doc");
  screen_->Expect(
      "A report can be saved as .pdf, .rtf, .xlsx, .csv, .html or .txt. Please choose a name with one of "
      "these endings.",
      screen::Icon::Information, screen::Buttons::Ok, screen::Answer::Ok);
  QTest::keySequence(&window, QKeySequence::Save);
  PreviewWindow::askForFile = usual;

  // A dialog that chooses pages 2 to 3 of a PDF file, and a queue that keeps what it gets.
  struct Chooser : print::PrintDialog {
    std::optional<print::PrinterChoice> Default() override { return print::PrinterChoice{}; }
    print::PrintDialogResult Show(const print::PrintDialogRequest& request) override {
      EXPECT_EQ(request.choice.paper, "Letter");
      print::PrintDialogResult result;
      result.chosen = true;
      result.choice.printer = "shop";
      result.choice.copies = 2;
      result.firstPage = 2;
      result.lastPage = 3;
      return result;
    }
  };
  struct Queue : print::PrinterQueue {
    void Print(const std::string& file, const print::PrintTicket& sent) override {
      std::ostringstream content;
      content << std::ifstream(file).rdbuf();
      pdf = content.str();
      ticket = sent;
      if (refuses) throw print::PrintError("The printer shop does not take jobs: out of service.");
    }
    std::string pdf;
    print::PrintTicket ticket;
    bool refuses = false;
  };
  auto queue = std::make_shared<Queue>();
  const auto earlierQueue = print::InstallPrinterQueue(queue);
  const auto earlierDialog = print::InstallPrintDialog(std::make_shared<Chooser>());
  QTest::keySequence(&window, QKeySequence::Print);
  EXPECT_EQ(queue->pdf.substr(0, 5), "%PDF-");
  EXPECT_EQ(queue->ticket.printer, "shop");
  EXPECT_EQ(queue->ticket.copies, 2);
  EXPECT_EQ(queue->ticket.title, "Costs");
  queue->refuses = true;
  screen_->Expect("The printer shop does not take jobs: out of service.", screen::Icon::Exclamation,
                  screen::Buttons::Ok, screen::Answer::Ok);
  QTest::keySequence(&window, QKeySequence::Print);
  print::InstallPrinterQueue(earlierQueue);
  print::InstallPrintDialog(earlierDialog);
}

TEST_F(Preview, DrawsWhateverAPageHolds) {
  test::RandomPages random(7);
  PageStore store(Facts());
  store.NewSlot();
  store.NewSlot();
  store.NewSlot();
  for (int i = 0; i < 60; ++i) {
    const print::Page page = random.Next();
    for (const print::TextRun& run : print::TextOf(page, store))
      ASSERT_EQ(run.edges.size(), static_cast<std::size_t>(run.text.size()) + 1);
    const QImage picture = print::PagePicture(page, store, 200);
    EXPECT_EQ(picture.width(), 200);
  }
  // Text really is drawn: black on white, at its place.
  auto run = std::make_shared<HandRun>();
  run->Add({"XXXXXXXX"});
  const QImage picture = print::PagePicture(run->store.Read(0), run->store, 612);
  int dark = 0;
  for (int x = 40; x < 100; ++x)
    for (int y = 50; y < 62; ++y) dark += qGray(picture.pixel(x, y)) < 128 ? 1 : 0;
  EXPECT_GT(dark, 50);
  EXPECT_EQ(qGray(picture.pixel(300, 400)), 255);
}

TEST_F(Preview, ScreenAndPaperAgreeOnWidths) {
  const std::vector<std::string> texts{"Maintenance Transactions", "AVAWATa.,-", "$1,234,567.89",
                                       "Größe 10 µm", "iiiiiiWWWWWW"};
  for (const print::FontFace face :
       {print::FontFace::Sans, print::FontFace::SansBold, print::FontFace::Mono}) {
    for (const std::string& text : texts) {
      print::Page page;
      print::PlacedBand band;
      band.cells.push_back(test::TextCell(0, 0, 60000, text));
      band.cells.back().style = {face, 1150, {}};
      page.bands.push_back(band);
      const auto runs = print::TextOf(page, PageStore(Facts()));
      ASSERT_EQ(runs.size(), 1U);
      EXPECT_NEAR(runs[0].edges.back(), print::TextWidth({face, 1150, {}}, text) / 100.0, 0.02) << text;
    }
  }
}
