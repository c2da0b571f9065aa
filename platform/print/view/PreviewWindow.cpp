#include "platform/print/view/PreviewWindow.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>
#include <QScreen>
#include <QSpinBox>
#include <QSplitter>
#include <QTabWidget>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "platform/controls/Application.h"
#include "platform/print/PrintError.h"
#include "platform/print/job/PrintDialog.h"
#include "platform/print/view/PagePictures.h"
#include "platform/screen/Screen.h"

namespace print {
namespace {

/// While the pages are being made, the window looks this often for new ones.
constexpr int kRefresh = 50;
/// Steps of a search are short enough for typing.
constexpr int kSearchStep = 25;
constexpr int kTypingPause = 120;
constexpr int kPageRole = Qt::UserRole;
constexpr int kTopRole = Qt::UserRole + 1;
constexpr double kWholeSize = 96.0 / 72.0;
/// Between the short sides of A4 and Letter.
constexpr Length kBetweenPapers = 603 * kPoint;

/// What a window takes over from the one before it.
struct Habits {
  QRect place;
  Zoom zoom = Zoom::FitWidth;
  double scale = 0;
  bool twoPages = false;
  bool side = true;
  QList<int> widths;
};
Habits& Kept() {
  static Habits habits;
  return habits;
}

struct SaveKind {
  const char* filter;
  const char* ending;
};
constexpr SaveKind kKinds[] = {{"PDF (*.pdf)", ".pdf"},           {"Word processor (*.rtf)", ".rtf"},
                               {"Spreadsheet (*.xlsx)", ".xlsx"}, {"Comma separated rows (*.csv)", ".csv"},
                               {"Web page (*.html)", ".html"},    {"Text (*.txt)", ".txt"}};

QString AskForFile(QWidget* parent, const QString& name, const QString& filters) {
  QString filter;
  QString path = QFileDialog::getSaveFileName(parent, "Save the Report As", name, filters, &filter);
  if (!path.isEmpty() && !FormatOfEnding(path.toStdString())) {
    for (const SaveKind& kind : kKinds)
      if (filter == kind.filter) path += kind.ending;
  }
  return path;
}

QToolButton* ButtonFor(QAction* action, bool text, QWidget* parent) {
  auto* button = new QToolButton(parent);
  button->setDefaultAction(action);
  button->setAutoRaise(true);
  button->setFocusPolicy(Qt::TabFocus);
  button->setToolButtonStyle(text ? Qt::ToolButtonTextBesideIcon : Qt::ToolButtonIconOnly);
  return button;
}

QString Counted(int pages) { return pages == 1 ? QString("1 page") : QString("%L1 pages").arg(pages); }

}  // namespace

std::function<QString(QWidget*, const QString&, const QString&)> PreviewWindow::askForFile = AskForFile;

PreviewWindow::PreviewWindow(std::shared_ptr<RunningReport> report, const std::string& title)
    : Form(kName), report_(std::move(report)), title_(title) {
  setWindowTitle(QString::fromStdString(title));
}

PreviewWindow::~PreviewWindow() = default;

QAction* PreviewWindow::Add(const QString& text, const QString& tip, const QList<QKeySequence>& keys,
                            std::function<void()> work) {
  auto* action = new QAction(text, this);
  action->setShortcuts(keys);
  action->setToolTip(keys.isEmpty() ? tip
                                    : tip + " (" + keys.front().toString(QKeySequence::NativeText) + ")");
  connect(action, &QAction::triggered, this, [this, work = std::move(work)] {
    ui::Guard([&] {
      if (!busy_) work();
    });
  });
  addAction(action);
  return action;
}

void PreviewWindow::OnLoad() {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(6, 6, 6, 6);
  pages = new PageView(this);
  layout->addWidget(ToolRow());
  splitter_ = new QSplitter(this);
  splitter_->addWidget(SideTabs());
  splitter_->addWidget(pages);
  splitter_->setStretchFactor(1, 1);
  splitter_->setChildrenCollapsible(false);
  layout->addWidget(splitter_, 1);
  layout->addWidget(StateRow());

  const Habits& kept = Kept();
  const int letter = fontMetrics().averageCharWidth();
  splitter_->setSizes(kept.widths.isEmpty() ? QList<int>{letter * 34, letter * 120} : kept.widths);
  side_->setVisible(kept.side);
  showSide_->setChecked(kept.side);
  twoPages_->setChecked(kept.twoPages);
  pages->SetTwoPages(kept.twoPages);
  pages->SetZoom(kept.zoom, kept.scale);
  pages->changed = [this] { ShowPlace(); };
  pages->Show(&report_->Pages());
  pictures->Show(&report_->Pages());

  MinWidth = letter * 60;
  MinHeight = fontMetrics().height() * 16;
  if (kept.place.isValid()) {
    resize(kept.place.size());
    move(kept.place.topLeft());
  }

  connect(&refresh_, &QTimer::timeout, this, [this] { ui::Guard([this] { Refresh(); }); });
  refresh_.start(kRefresh);
  searchOn_.setSingleShot(true);
  connect(&searchOn_, &QTimer::timeout, this, [this] { ui::Guard([this] { SearchOn(); }); });
  Refresh();
  pages->setFocus();
}

QWidget* PreviewWindow::ToolRow() {
  auto* row = new QWidget(this);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);

  print_ = Add("&Print…", "Print the report", {QKeySequence::Print}, [this] { Print(); });
  save_ = Add("&Save…", "Save the report as PDF, word processor file, spreadsheet, rows, web page or text",
              {QKeySequence::Save}, [this] { Save(); });
  QAction* zoomOut = Add("−", "Smaller", {QKeySequence("Ctrl+-")}, [this] { pages->ZoomOut(); });
  QAction* zoomIn =
      Add("+", "Larger", {QKeySequence("Ctrl++"), QKeySequence("Ctrl+=")}, [this] { pages->ZoomIn(); });
  QAction* fitWidth = Add("Fit &width", "As wide as the window", {QKeySequence("Ctrl+0")},
                          [this] { pages->SetZoom(Zoom::FitWidth); });
  QAction* fitPage =
      Add("W&hole page", "A whole page", {QKeySequence("Ctrl+9")}, [this] { pages->SetZoom(Zoom::FitPage); });
  Add("Size of paper", "As large as on paper", {QKeySequence("Ctrl+1")},
      [this] { pages->SetZoom(Zoom::Fixed, kWholeSize); });
  twoPages_ = Add("&Two pages", "Two pages side by side", {QKeySequence("Ctrl+2")},
                  [this] { pages->SetTwoPages(twoPages_->isChecked()); });
  twoPages_->setCheckable(true);
  showSide_ = Add("Si&de", "Groups and pictures of the pages", {QKeySequence("F9")},
                  [this] { side_->setVisible(showSide_->isChecked()); });
  showSide_->setCheckable(true);
  Add("Copy", "Copy the marked text", {QKeySequence::Copy}, [this] {
    const QString marked = pages->MarkedText();
    if (!marked.isEmpty()) QApplication::clipboard()->setText(marked);
  });
  Add("Mark all", "Mark the text of all pages", {QKeySequence::SelectAll}, [this] { pages->MarkAll(); });
  Add("Find", "Find words", {QKeySequence::Find}, [this] {
    find->setFocus();
    find->selectAll();
  });
  QAction* next =
      Add("Next", "The next place with these words", {QKeySequence("F3")}, [this] { NextHit(1); });
  QAction* before = Add("Previous", "The place before with these words", {QKeySequence("Shift+F3")},
                        [this] { NextHit(-1); });
  Add("Go to page", "Go to a page", {QKeySequence("Ctrl+G")}, [this] {
    pageNumber->setFocus();
    pageNumber->selectAll();
  });

  next->setIcon(style()->standardIcon(QStyle::SP_ArrowDown));
  before->setIcon(style()->standardIcon(QStyle::SP_ArrowUp));
  save_->setIcon(style()->standardIcon(QStyle::SP_DialogSaveButton));

  layout->addWidget(ButtonFor(print_, true, row));
  layout->addWidget(ButtonFor(save_, true, row));
  layout->addSpacing(10);
  pageNumber = new QSpinBox(row);
  pageNumber->setObjectName("pageNumber");
  pageNumber->setAccessibleName("Page");
  pageNumber->setKeyboardTracking(false);
  pageNumber->setMinimum(1);
  auto* page = new QLabel("Pa&ge", row);
  page->setBuddy(pageNumber);
  pageCount = new QLabel(row);
  pageCount->setObjectName("pageCount");
  layout->addWidget(page);
  layout->addWidget(pageNumber);
  layout->addWidget(pageCount);
  layout->addSpacing(10);
  layout->addWidget(ButtonFor(zoomOut, true, row));
  zoom_ = new QLabel(row);
  zoom_->setAlignment(Qt::AlignCenter);
  zoom_->setMinimumWidth(fontMetrics().horizontalAdvance("8000 %"));
  layout->addWidget(zoom_);
  layout->addWidget(ButtonFor(zoomIn, true, row));
  layout->addWidget(ButtonFor(fitWidth, true, row));
  layout->addWidget(ButtonFor(fitPage, true, row));
  layout->addWidget(ButtonFor(twoPages_, true, row));
  layout->addWidget(ButtonFor(showSide_, true, row));
  layout->addStretch(1);

  find = new QLineEdit(row);
  find->setObjectName("find");
  find->setClearButtonEnabled(true);
  find->setMinimumWidth(fontMetrics().averageCharWidth() * 12);
  find->setMaximumWidth(fontMetrics().averageCharWidth() * 30);
  auto* label = new QLabel("&Find", row);
  label->setBuddy(find);
  found = new QLabel(row);
  found->setObjectName("found");
  // The row keeps its shape while the numbers change.
  found->setMinimumWidth(fontMetrics().horizontalAdvance("88 of 888"));
  pageCount->setMinimumWidth(fontMetrics().horizontalAdvance("of 888"));
  layout->addWidget(label);
  layout->addWidget(find, 2);
  layout->addWidget(ButtonFor(before, false, row));
  layout->addWidget(ButtonFor(next, false, row));
  layout->addWidget(found);
  connect(find, &QLineEdit::textChanged, this, [this] { StartSearch(); });
  find->installEventFilter(this);
  connect(pageNumber, &QSpinBox::valueChanged, this, [this](int number) {
    if (number - 1 != pages->CurrentPage()) pages->GoTo(number - 1);
  });
  pageNumber->installEventFilter(this);
  return row;
}

QWidget* PreviewWindow::SideTabs() {
  side_ = new QTabWidget(this);
  groups = new QTreeWidget(side_);
  groups->setObjectName("groups");
  groups->setAccessibleName("Groups of the report");
  groups->setHeaderHidden(true);
  groups->setTextElideMode(Qt::ElideRight);
  connect(groups, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
    if (item) pages->GoTo(item->data(0, kPageRole).toInt() - 1, item->data(0, kTopRole).toInt());
  });
  pictures = new PagePictures(side_);
  pictures->chosen = [this](int page) { pages->GoTo(page); };
  side_->setMinimumWidth(fontMetrics().averageCharWidth() * 22);
  side_->addTab(groups, "&Groups");
  side_->addTab(pictures, "Pict&ures");
  return side_;
}

QWidget* PreviewWindow::StateRow() {
  auto* row = new QWidget(this);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  state = new QLabel(row);
  state->setObjectName("state");
  state->setTextInteractionFlags(Qt::TextSelectableByMouse);
  state->setWordWrap(true);
  running_ = new QProgressBar(row);
  running_->setRange(0, 0);
  running_->setTextVisible(false);
  running_->setMaximumWidth(fontMetrics().averageCharWidth() * 24);
  stop = new QPushButton("Cancel", row);
  stop->setObjectName("stop");
  stop->setToolTip("Makes no further pages. Those that are there stay.");
  ui::OnClick(*stop, [this] {
    report_->Cancel();
    stop->setEnabled(false);
  });
  layout->addWidget(state, 1);
  layout->addWidget(running_);
  layout->addWidget(stop);
  return row;
}

void PreviewWindow::OnUnload() {
  refresh_.stop();
  searchOn_.stop();
  Habits& kept = Kept();
  // The frame counts, or the window would move down by its title at each opening.
  kept.place = QRect(pos(), size());
  kept.zoom = pages->ZoomKind();
  kept.scale = pages->Scale();
  kept.twoPages = pages->TwoPages();
  kept.side = showSide_->isChecked();
  kept.widths = splitter_->sizes();
  report_->Cancel();
}

bool PreviewWindow::Complete() const { return report_->Pages().Finished() && report_->Failure().empty(); }

void PreviewWindow::Refresh() {
  if (settled_) return;
  // What was finished before the look at the pages is whole in them.
  const bool ended = report_->Pages().Finished() || !report_->Failure().empty();
  pages->Refresh();
  pictures->Refresh();
  RefreshGroups();
  pageNumber->setMaximum(std::max(1, pages->PageCount()));
  if (ended) {
    settled_ = true;
    refresh_.stop();
    // A report without groups has no tree to offer.
    side_->setTabVisible(side_->indexOf(groups), groupsShown_ > 0);
  }
  ShowState();
  ShowPlace();
  if (!search_.Text().isEmpty() && !searchOn_.isActive()) searchOn_.start(0);
}

void PreviewWindow::RefreshGroups() {
  const std::vector<OutlineEntry> entries = report_->Pages().Outline();
  std::vector<QTreeWidgetItem*> path;
  // The items that entries to come belong to are the last ones of each level.
  for (QTreeWidgetItem* item = groups->topLevelItem(groups->topLevelItemCount() - 1); item;
       item = item->child(item->childCount() - 1))
    path.push_back(item);
  for (; groupsShown_ < entries.size(); ++groupsShown_) {
    const OutlineEntry& entry = entries[groupsShown_];
    path.resize(std::min(path.size(), static_cast<std::size_t>(std::max(0, entry.level))));
    auto* item = path.empty() ? new QTreeWidgetItem(groups) : new QTreeWidgetItem(path.back());
    const QString title = QString::fromStdString(entry.title);
    item->setText(0, title.trimmed().isEmpty() ? QString("(none)") : title);
    item->setToolTip(0, title);
    item->setData(0, kPageRole, entry.page);
    item->setData(0, kTopRole, entry.top);
    path.push_back(item);
  }
}

void PreviewWindow::ShowState() {
  const std::string failure = report_->Failure();
  const std::string warnings = report_->Warnings();
  QString text;
  if (!failure.empty()) {
    text = QString::fromStdString(failure);
  } else if (!settled_) {
    text = QString("%1 so far…").arg(Counted(pages->PageCount()));
  } else if (!warnings.empty()) {
    text = QString::fromStdString(warnings);
  } else {
    text = QString("%1. Esc closes.").arg(Counted(pages->PageCount()));
  }
  if (state->text() != text) state->setText(text);
  running_->setVisible(!settled_);
  stop->setVisible(!settled_);
  const bool complete = Complete();
  save_->setEnabled(complete);
  print_->setEnabled(complete);
}

void PreviewWindow::ShowPlace() {
  const int page = pages->CurrentPage();
  if (!pageNumber->hasFocus() || pageNumber->value() != page + 1) {
    const QSignalBlocker blocker(pageNumber);
    pageNumber->setValue(page + 1);
  }
  pageCount->setText(settled_ ? QString("of %L1").arg(pages->PageCount()) : QString("of …"));
  zoom_->setText(QString("%1 %").arg(std::lround(pages->Scale() / kWholeSize * 100)));
  pictures->SetCurrent(page);
}

void PreviewWindow::StartSearch() {
  search_.Start(&report_->Pages(), find->text());
  hit_ = -1;
  pages->ShowHits({}, -1);
  found->clear();
  searchOn_.start(find->text().isEmpty() ? 0 : kTypingPause);
}

void PreviewWindow::SearchOn() {
  const bool all = search_.Step(kSearchStep);
  const auto& hits = search_.Hits();
  if (hit_ < 0 && !hits.empty()) {
    // The first hit from here on, so that typing does not throw the reader back to page 1.
    const auto here = std::find_if(hits.begin(), hits.end(),
                                   [this](const Mark& hit) { return hit.page >= pages->CurrentPage(); });
    if (here != hits.end()) {
      hit_ = static_cast<int>(here - hits.begin());
    } else if (all) {
      hit_ = 0;
    }
    if (hit_ >= 0) pages->ShowHits(hits, hit_);
  }
  if (search_.Text().isEmpty()) {
    found->clear();
  } else if (hits.empty()) {
    found->setText(all ? "not found" : "…");
  } else {
    found->setText(QString("%L1 of %L2%3").arg(hit_ + 1).arg(hits.size()).arg(all && settled_ ? "" : "…"));
  }
  if (!all) {
    searchOn_.start(0);
  } else if (hit_ >= 0) {
    pages->ShowHits(hits, hit_);
  }
}

void PreviewWindow::NextHit(int direction) {
  if (searchOn_.isActive() && hit_ < 0) SearchOn();
  const int count = static_cast<int>(search_.Hits().size());
  if (count == 0) return;
  hit_ = (hit_ + direction + count) % count;
  pages->ShowHits(search_.Hits(), hit_);
  found->setText(QString("%L1 of %L2").arg(hit_ + 1).arg(count));
}

void PreviewWindow::Save() {
  if (!Complete()) return;
  QStringList filters;
  for (const SaveKind& kind : kKinds) filters += kind.filter;
  QString name = QString::fromStdString(title_);
  name.replace('/', '-');
  const QString path = askForFile(this, QDir::home().filePath(name + kKinds[0].ending), filters.join(";;"));
  if (path.isEmpty()) return;
  const auto format = FormatOfEnding(path.toStdString());
  if (!format) {
    screen::MessageBox(
        "A report can be saved as .pdf, .rtf, .xlsx, .csv, .html or .txt. Please choose a name "
        "with one of these endings.",
        screen::Icon::Information);
    return;
  }
  RunOutput("Saving " + path, [&](const OutputProgress& progress) {
    return WriteOutput(report_->Pages(), *format, path.toStdString(), {}, progress);
  });
}

void PreviewWindow::Print() {
  if (!Complete()) return;
  PrintDialog& dialog = CurrentPrintDialog();
  PrintDialogRequest request;
  request.parent = reinterpret_cast<std::uintptr_t>(static_cast<QWidget*>(this));
  if (const auto choice = dialog.Default()) request.choice = *choice;
  const ReportFacts& facts = report_->Pages().Facts();
  request.choice.paper = std::min(facts.pageWidth, facts.pageHeight) < kBetweenPapers ? "A4" : "Letter";
  const PrintDialogResult result = dialog.Show(request);
  if (result.error)
    screen::MessageBox(DialogErrorName(*result.error), screen::Icon::Exclamation, screen::Buttons::Ok,
                       "Failure");
  if (!result.chosen) return;
  PrintTicket ticket;
  ticket.printer = result.choice.printer;
  ticket.pdfFile = result.choice.pdfFile;
  ticket.copies = result.choice.copies;
  ticket.collate = result.choice.collate;
  ticket.paper = result.choice.paper;
  ticket.title = title_;
  const PageRange range{std::max(1, result.firstPage), result.lastPage};
  RunOutput("Printing", [&](const OutputProgress& progress) {
    return PrintPages(report_->Pages(), range, ticket, progress);
  });
}

void PreviewWindow::RunOutput(const QString& label,
                              const std::function<bool(const OutputProgress&)>& output) {
  // The program may end while the output runs; the pages live on until the output has let go of them.
  const std::shared_ptr<RunningReport> report = report_;
  const QPointer<PreviewWindow> alive(this);
  busy_ = true;
  std::string failure;
  const QPointer<QProgressDialog> shown(
      new QProgressDialog(label, "Cancel", 0, std::max(1, pages->PageCount()), this));
  shown->setWindowModality(Qt::WindowModal);
  QElapsedTimer watch;
  watch.start();
  try {
    output([&](int page, int) {
      if (watch.elapsed() < kRefresh) return true;
      watch.restart();
      if (shown) shown->setValue(page);
      QApplication::processEvents();
      return alive && shown && !shown->wasCanceled();
    });
  } catch (const PrintError& error) {
    failure = error.what();
  }
  // The window takes the progress with it if it is deleted first.
  delete shown.data();
  if (alive) busy_ = false;
  if (!failure.empty()) screen::MessageBox(failure, screen::Icon::Exclamation);
}

void PreviewWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    if (!busy_) Unload();
    return;
  }
  Form::keyPressEvent(event);
}

bool PreviewWindow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress && (watched == find || watched == pageNumber)) {
    auto* key = static_cast<QKeyEvent*>(event);
    const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
    if (key->key() == Qt::Key_Escape) {
      pages->setFocus();
      return true;
    }
    if (enter && watched == find) {
      NextHit(key->modifiers() & Qt::ShiftModifier ? -1 : 1);
      return true;
    }
    if (enter) {
      pageNumber->interpretText();
      pages->GoTo(pageNumber->value() - 1);
      pages->setFocus();
      return true;
    }
  }
  return Form::eventFilter(watched, event);
}

namespace {

PreviewWindow* WindowOf(std::uintptr_t window) {
  const auto& forms = ui::Forms();
  const auto found = std::find_if(forms.begin(), forms.end(), [&](ui::Form* form) {
    return reinterpret_cast<std::uintptr_t>(form) == window;
  });
  return found == forms.end() ? nullptr : dynamic_cast<PreviewWindow*>(*found);
}

}  // namespace

std::uintptr_t PreviewViewer::Open(std::shared_ptr<RunningReport> report, const std::string& title, int left,
                                   int top, int width, int height) {
  auto* window = new PreviewWindow(std::move(report), title);
  const bool first = !Kept().place.isValid();
  if (first && width > 0 && height > 0) {
    // The title must stay in reach, whatever the caller knows of this screen.
    window->resize(QSize(width, height).boundedTo(ui::RoomFor(*window)));
    window->move(std::max(0, left), std::max(0, top));
  }
  window->ShowForm();
  return reinterpret_cast<std::uintptr_t>(static_cast<ui::Form*>(window));
}

bool PreviewViewer::IsOpen(std::uintptr_t window) { return WindowOf(window) != nullptr; }

void PreviewViewer::Close(std::uintptr_t window) {
  if (PreviewWindow* open = WindowOf(window)) open->Unload();
}

}  // namespace print
