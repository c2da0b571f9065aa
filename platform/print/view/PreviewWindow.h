// The preview: the pages of a report on the screen, while they are still being made.
#pragma once

#include <QPointer>
#include <QString>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>

#include "platform/controls/Form.h"
#include "platform/print/job/Destinations.h"
#include "platform/print/view/PageSearch.h"

class QAction;
class QBoxLayout;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QSpinBox;
class QSplitter;
class QTabWidget;
class QTreeWidget;

namespace print {

class PagePictures;

/// Shows the pages of a run as they come. The window keeps its place, size and zoom from one report to the
/// next for as long as the program runs. Its unload cancels a run that is not finished.
class PreviewWindow : public ui::Form {
 public:
  static constexpr const char* kName = "PreviewWindow";

  PreviewWindow(std::shared_ptr<RunningReport> report, const std::string& title);
  ~PreviewWindow() override;

  /// Asks for a file to save to; the path, or an empty text. `name` is the proposal. Tests replace it.
  static std::function<QString(QWidget* parent, const QString& name, const QString& filter)> askForFile;

  PageView* pages = nullptr;
  QTreeWidget* groups = nullptr;
  PagePictures* pictures = nullptr;
  QLineEdit* find = nullptr;
  QLabel* found = nullptr;
  QSpinBox* pageNumber = nullptr;
  QLabel* pageCount = nullptr;
  QLabel* state = nullptr;
  QPushButton* stop = nullptr;

 protected:
  void OnLoad() override;
  void OnUnload() override;
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QAction* Add(const QString& text, const QString& tip, const QList<QKeySequence>& keys,
               std::function<void()> work);
  QWidget* ToolRow();
  QWidget* SideTabs();
  QWidget* StateRow();
  void Refresh();
  void RefreshGroups();
  void ShowState();
  void ShowPlace();
  void StartSearch();
  void SearchOn();
  void NextHit(int direction);
  void Save();
  void Print();
  void RunOutput(const QString& label, const std::function<bool(const OutputProgress&)>& output);
  bool Complete() const;

  std::shared_ptr<RunningReport> report_;
  std::string title_;
  QTimer refresh_;
  QTimer searchOn_;
  PageSearch search_;
  int hit_ = -1;
  std::size_t groupsShown_ = 0;
  bool settled_ = false;  ///< the run has ended, and the window shows all of it
  bool busy_ = false;     ///< an output is being written
  QSplitter* splitter_ = nullptr;
  QTabWidget* side_ = nullptr;
  QProgressBar* running_ = nullptr;
  QAction* save_ = nullptr;
  QAction* print_ = nullptr;
  QAction* twoPages_ = nullptr;
  QAction* showSide_ = nullptr;
  QLabel* zoom_ = nullptr;
};

/// Opens a PreviewWindow for each run.
class PreviewViewer : public Viewer {
 public:
  std::uintptr_t Open(std::shared_ptr<RunningReport> report, const std::string& title, int left, int top,
                      int width, int height) override;
  bool IsOpen(std::uintptr_t window) override;
  void Close(std::uintptr_t window) override;
};

}  // namespace print
