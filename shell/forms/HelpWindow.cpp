#include "shell/forms/HelpWindow.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSplitter>
#include <QStackedWidget>
#include <QTextBrowser>
#include <QToolButton>
#include <QTreeWidget>
#include <QUrl>
#include <QVBoxLayout>
#include <functional>
#include <utility>

#include "platform/controls/Contrast.h"
#include "platform/controls/Later.h"
#include "platform/screen/Screen.h"
#include "shell/Help.h"
#include "shell/forms/HelpResults.h"

namespace dw {
namespace {

constexpr int kPageRole = Qt::UserRole;
constexpr int kPageMargin = 14;

QUrl PageUrl(const QString& page) {
  QUrl url =
      QUrl::fromLocalFile(QDir(QString::fromStdString(HelpDirectory())).filePath(page.section('#', 0, 0)));
  if (page.contains('#')) url.setFragment(page.section('#', 1));
  return url;
}

QToolButton* PageButton(QWidget* parent, QStyle::StandardPixmap icon, const QString& text,
                        const QString& name, const QString& tip) {
  auto* button = new QToolButton(parent);
  button->setObjectName(name);
  button->setText(text);
  button->setIcon(parent->style()->standardIcon(icon));
  button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  button->setAutoRaise(true);
  button->setToolTip(tip);
  button->setFocusPolicy(Qt::TabFocus);
  return button;
}

/// Shows pages in colors that are readable on the desktop's own background, dark or light.
class PageView : public QTextBrowser {
 public:
  using QTextBrowser::QTextBrowser;

  QVariant loadResource(int type, const QUrl& url) override {
    const QVariant resource = QTextBrowser::loadResource(type, url);
    if (type != QTextDocument::StyleSheetResource) return resource;
    const QColor ground = palette().color(QPalette::Base);
    QString sheet = QString::fromUtf8(resource.toByteArray());
    static const QRegularExpression color("#[0-9a-fA-F]{6}\\b");
    for (auto found = color.match(sheet); found.hasMatch(); found = color.match(sheet, found.capturedEnd()))
      sheet.replace(found.capturedStart(), found.capturedLength(),
                    ui::Readable(QColor(found.captured()), ground).name());
    return sheet + "a { color: " + ui::Readable(palette().color(QPalette::Link), ground).name() + "; }";
  }
};

}  // namespace

HelpWindow::HelpWindow() {
  setObjectName("HelpWindow");
  setWindowTitle("Drovewright Help");
  setAttribute(Qt::WA_DeleteOnClose);
  setAttribute(Qt::WA_QuitOnClose, false);

  auto* splitter = new QSplitter(this);
  splitter->addWidget(LeftSide());
  splitter->addWidget(RightSide());
  splitter->setStretchFactor(1, 1);
  splitter->setChildrenCollapsible(false);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(splitter);
  const int letter = fontMetrics().averageCharWidth();
  splitter->setSizes({letter * 40, letter * 96});
  resize(letter * 142, fontMetrics().height() * 40);
  setMinimumSize(letter * 70, fontMetrics().height() * 16);

  AddKeys();
  FillContents();
  ShowPage(kHelpContentsPage);
}

QWidget* HelpWindow::LeftSide() {
  auto* side = new QWidget(this);
  auto* label = new QLabel("&Search for:", side);
  searchField = new QLineEdit(side);
  searchField->setObjectName("txtSearch");
  searchField->setPlaceholderText("Words, or the text of a message");
  searchField->setClearButtonEnabled(true);
  label->setBuddy(searchField);

  contentsTree = new QTreeWidget(side);
  contentsTree->setObjectName("treContents");
  contentsTree->setAccessibleName("Contents");
  contentsTree->setHeaderHidden(true);
  results = new HelpResults(side);
  results->setObjectName("lstResults");
  results->setAccessibleName("Pages found");
  lists_ = new QStackedWidget(side);
  lists_->addWidget(contentsTree);
  lists_->addWidget(results);

  auto* layout = new QVBoxLayout(side);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(label);
  layout->addWidget(searchField);
  layout->addWidget(lists_, 1);

  connect(searchField, &QLineEdit::textChanged, this, [this] { Search(); });
  connect(searchField, &QLineEdit::returnPressed, this, [this] {
    if (lists_->currentWidget() != results || results->Found() == 0) return;
    if (results->currentRow() < 0) results->setCurrentRow(0);
    OpenResult();
  });
  connect(results, &QListWidget::currentRowChanged, this, [this](int row) {
    if (row >= 0) OpenResult();
  });
  connect(contentsTree, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
    const QString page = item == nullptr ? QString() : item->data(0, kPageRole).toString();
    if (!selecting_ && !page.isEmpty()) ShowPage(page.toStdString());
  });
  searchField->installEventFilter(this);
  return side;
}

QWidget* HelpWindow::RightSide() {
  auto* side = new QWidget(this);
  backButton = PageButton(side, QStyle::SP_ArrowBack, "&Back", "cmdBack", "The page before (Alt+Left)");
  forwardButton = PageButton(side, QStyle::SP_ArrowForward, "&Forward", "cmdForward",
                             "The page that you came back from (Alt+Right)");
  contentsButton = PageButton(side, QStyle::SP_DirHomeIcon, "&Contents", "cmdContents",
                              "The list of all pages (Alt+Home)");
  backButton->setEnabled(false);
  forwardButton->setEnabled(false);

  pageView = new PageView(side);
  pageView->setObjectName("txtPage");
  pageView->setAccessibleName("Page");
  pageView->document()->setDocumentMargin(kPageMargin);

  auto* buttons = new QHBoxLayout;
  for (QToolButton* button : {backButton, forwardButton, contentsButton}) buttons->addWidget(button);
  buttons->addStretch(1);
  auto* layout = new QVBoxLayout(side);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addLayout(buttons);
  layout->addWidget(pageView, 1);

  connect(backButton, &QToolButton::clicked, this, [this] { pageView->backward(); });
  connect(forwardButton, &QToolButton::clicked, this, [this] { pageView->forward(); });
  connect(contentsButton, &QToolButton::clicked, this, [this] {
    ShowContents();
    ShowPage(kHelpContentsPage);
  });
  connect(pageView, &QTextBrowser::backwardAvailable, backButton, &QWidget::setEnabled);
  connect(pageView, &QTextBrowser::forwardAvailable, forwardButton, &QWidget::setEnabled);
  connect(pageView, &QTextBrowser::sourceChanged, this, [this](const QUrl& url) { PageShown(url); });
  return side;
}

void HelpWindow::AddKeys() {
  const auto add = [this](const QList<QKeySequence>& keys, const std::function<void()>& work) {
    auto* action = new QAction(this);
    action->setShortcuts(keys);
    connect(action, &QAction::triggered, this, work);
    addAction(action);
  };
  add({QKeySequence(Qt::ALT | Qt::Key_Left), QKeySequence(Qt::Key_Back)}, [this] { pageView->backward(); });
  add({QKeySequence(Qt::ALT | Qt::Key_Right), QKeySequence(Qt::Key_Forward)},
      [this] { pageView->forward(); });
  add({QKeySequence(Qt::ALT | Qt::Key_Home)}, [this] { contentsButton->click(); });
  add({QKeySequence::Find}, [this] { EnterSearch(); });
  add({QKeySequence::ZoomIn, QKeySequence(Qt::CTRL | Qt::Key_Equal)}, [this] { pageView->zoomIn(); });
  add({QKeySequence::ZoomOut}, [this] { pageView->zoomOut(); });
}

void HelpWindow::FillContents() {
  for (const HelpSection& section : HelpContents()) {
    auto* head = new QTreeWidgetItem(contentsTree, {QString::fromStdString(section.title)});
    head->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    for (const HelpEntry& entry : section.entries) {
      auto* item = new QTreeWidgetItem(head, {QString::fromStdString(entry.title)});
      item->setData(0, kPageRole, QString::fromStdString(entry.page));
    }
  }
  contentsTree->expandAll();
}

void HelpWindow::ShowPage(const std::string& page) {
  pageView->setSource(PageUrl(QString::fromStdString(page)));
}

void HelpWindow::ShowContents() {
  searchField->clear();
  lists_->setCurrentWidget(contentsTree);
}

void HelpWindow::EnterSearch() {
  searchField->setFocus(Qt::ShortcutFocusReason);
  searchField->selectAll();
}

void HelpWindow::Search() {
  const std::string words = searchField->text().toStdString();
  if (HelpSearchWords(words).empty()) {
    lists_->setCurrentWidget(contentsTree);
    MarkWords();
    return;
  }
  results->Fill(SearchHelp(words));
  lists_->setCurrentWidget(results);
}

void HelpWindow::OpenResult() {
  const std::string page = results->CurrentPage();
  if (page.empty()) return;
  ShowPage(page);
  MarkWords();
}

void HelpWindow::MarkWords() {
  QList<QTextEdit::ExtraSelection> marks;
  QTextCharFormat format;
  format.setBackground(palette().highlight());
  format.setForeground(palette().highlightedText());
  const std::vector<std::string> words = HelpSearchWords(searchField->text().toStdString());
  for (const std::string& word : words) {
    const QString text = QString::fromStdString(word);
    for (QTextCursor at = pageView->document()->find(text); !at.isNull();
         at = pageView->document()->find(text, at))
      marks.push_back({at, format});
  }
  pageView->setExtraSelections(marks);
  if (marks.isEmpty()) return;
  // Latin-1 has one byte for each character of the page, so that positions are the same.
  const std::string text = pageView->document()->toPlainText().toLatin1().toStdString();
  QTextCursor place(pageView->document());
  place.movePosition(QTextCursor::End);
  pageView->setTextCursor(place);
  place.setPosition(static_cast<int>(BestHelpPlace(text, words)));
  pageView->setTextCursor(place);
  // The cursor comes from the end, so the place is at the top edge. Scrolling back a little shows some text
  // above it.
  QScrollBar* bar = pageView->verticalScrollBar();
  bar->setValue(bar->value() - 3 * bar->singleStep());
}

void HelpWindow::PageShown(const QUrl& url) {
  const QString title = pageView->documentTitle();
  // The title of the page of contents is that of the whole help.
  const QString whole = "Drovewright Help";
  setWindowTitle(title.isEmpty() || title == whole ? whole : title + " - " + whole);
  pageView->setExtraSelections({});
  SelectInContents(url.fileName());
}

void HelpWindow::SelectInContents(const QString& page) {
  selecting_ = true;
  contentsTree->setCurrentItem(nullptr);
  for (QTreeWidgetItemIterator it(contentsTree); *it != nullptr; ++it)
    if ((*it)->data(0, kPageRole).toString().section('#', 0, 0) == page) {
      contentsTree->setCurrentItem(*it);
      break;
    }
  selecting_ = false;
}

void HelpWindow::BringForward() {
  JoinModal();
  show();
  setWindowState(windowState() & ~Qt::WindowMinimized);
  raise();
  activateWindow();
}

void HelpWindow::JoinModal() {
  QWidget* modal = QApplication::activeModalWidget();
  if (modal == nullptr || modal == modal_) return;
  if (modal_ != nullptr) modal_->removeEventFilter(this);
  modal_ = modal;
  modal_->installEventFilter(this);
  setParent(modal, Qt::Window);
}

void HelpWindow::LeaveModal() {
  const bool shown = isVisible();
  std::exchange(modal_, nullptr)->removeEventFilter(this);
  setParent(nullptr, Qt::Window);
  if (!shown) return;
  // There may be another modal window below this one; which one is known only after this one has gone.
  ui::Later(*this, [this] {
    JoinModal();
    show();
  });
}

bool HelpWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == modal_ && event->type() == QEvent::Hide) {
    LeaveModal();
    return false;
  }
  if (watched == searchField && event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Escape && !searchField->text().isEmpty()) {
      searchField->clear();
      return true;
    }
    if (key == Qt::Key_Down) {
      lists_->currentWidget()->setFocus(Qt::TabFocusReason);
      if (lists_->currentWidget() == results && results->currentRow() < 0) results->setCurrentRow(0);
      return true;
    }
  }
  return QWidget::eventFilter(watched, event);
}

void HelpWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    close();
    return;
  }
  QWidget::keyPressEvent(event);
}

namespace {

/// The one window, made if there is none; null, after a box, if the pages are missing.
HelpWindow* TheWindow() {
  static QPointer<HelpWindow> window;
  if (!window.isNull()) return window;
  if (!HelpAvailable()) {
    screen::MessageBox(
        "The help pages were not found in the folder \"" + HelpDirectory() +
            "\".\rThey are part of the program. Contact your System Administrator to have them "
            "put back.",
        screen::Icon::Exclamation);
    return nullptr;
  }
  window = new HelpWindow;
  QObject::connect(qApp, &QCoreApplication::aboutToQuit, window, [] { delete window.data(); });
  return window;
}

}  // namespace

void ShowHelpContents() {
  HelpWindow* window = TheWindow();
  if (window == nullptr) return;
  window->ShowContents();
  window->ShowPage(kHelpContentsPage);
  window->BringForward();
  window->contentsTree->setFocus();
}

void ShowHelpSearch() {
  HelpWindow* window = TheWindow();
  if (window == nullptr) return;
  window->BringForward();
  window->EnterSearch();
}

void ShowHelpFor(const std::string& name) {
  HelpWindow* window = TheWindow();
  if (window == nullptr) return;
  const std::string page = PageOf(name);
  window->ShowContents();
  window->ShowPage(page.empty() ? kHelpContentsPage : page);
  window->BringForward();
  window->pageView->setFocus();
}

}  // namespace dw
