// The window of the help pages: contents and search at the left, the page at the right.
#pragma once

#include <QWidget>
#include <string>

class QLineEdit;
class QStackedWidget;
class QTextBrowser;
class QToolButton;
class QTreeWidget;
class QTreeWidgetItem;
class QUrl;

namespace dw {

class HelpResults;

/// There is one at most. It does not belong to the program's open forms: the program can end while it is
/// open, and it closes then. It keeps nothing from one time to the next.
class HelpWindow : public QWidget {
 public:
  HelpWindow();

  /// Shows a page of the help directory; the name may end in an anchor.
  void ShowPage(const std::string& page);
  /// Brings the contents to the left side.
  void ShowContents();
  /// Puts the caret into the search field, with its text selected.
  void EnterSearch();
  /// Brings the window to the front, also before a modal window. It then belongs to that window until that
  /// closes.
  void BringForward();

  QLineEdit* searchField = nullptr;
  QTreeWidget* contentsTree = nullptr;
  HelpResults* results = nullptr;
  QTextBrowser* pageView = nullptr;
  QToolButton* backButton = nullptr;
  QToolButton* forwardButton = nullptr;
  QToolButton* contentsButton = nullptr;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QWidget* LeftSide();
  QWidget* RightSide();
  void AddKeys();
  void FillContents();
  void Search();
  void OpenResult();
  void PageShown(const QUrl& url);
  void MarkWords();
  /// While a modal window is open, only windows that belong to it can be used.
  void JoinModal();
  /// The modal window closes, and must not take the help with it.
  void LeaveModal();
  void SelectInContents(const QString& page);

  QStackedWidget* lists_ = nullptr;
  QWidget* modal_ = nullptr;  ///< the modal window that the help belongs to for now
  bool selecting_ = false;    ///< an entry of the contents is being selected to match the page
};

/// Opens the help window at its contents ("Contents" of the help menu).
void ShowHelpContents();
/// Opens the help window with the caret in the search field.
void ShowHelpSearch();
/// Opens the help window at the page of a window, by the window's name; at the contents if no page explains
/// it. If the help pages are missing, each of the three says so in a box.
void ShowHelpFor(const std::string& window);

}  // namespace dw
