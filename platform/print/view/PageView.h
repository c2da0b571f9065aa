// The pages of a report under each other, as on a desk: scrolling, zooming, marking text.
#pragma once

#include <QAbstractScrollArea>
#include <QCache>
#include <QPixmap>
#include <functional>
#include <optional>
#include <vector>

#include "platform/print/view/PagePainter.h"

namespace print {

enum class Zoom { FitWidth, FitPage, Fixed };

/// A stretch of text on a page: characters `first` up to but without `last` of one run.
struct Mark {
  int page = 0;  ///< from 0
  int run = 0;
  int first = 0;
  int last = 0;
  friend bool operator==(const Mark&, const Mark&) = default;
};

/// Shows the pages that a store has so far. Pages that are visible are drawn once for each zoom.
class PageView : public QAbstractScrollArea {
 public:
  explicit PageView(QWidget* parent = nullptr);

  /// Shows this store from its beginning; null for none. The store must live as long as the view shows it.
  void Show(const PageStore* store);
  /// Takes in pages that were added and slots that were filled since the last call.
  void Refresh();

  int PageCount() const { return pages_; }
  /// The page that fills most of the view, from 0; 0 if there are no pages.
  int CurrentPage() const;
  /// Brings the page's upper edge, or the place `top` on it, to the upper edge of the view.
  void GoTo(int page, Length top = 0);

  void SetZoom(Zoom zoom, double pixelsPerPoint = 0);
  Zoom ZoomKind() const { return zoom_; }
  /// Real pixels for each point of paper.
  double Scale() const { return scale_; }
  void ZoomIn();
  void ZoomOut();
  void SetTwoPages(bool two);
  bool TwoPages() const { return twoPages_; }

  /// Marks all hits and shows the one with this place; -1 for none of them.
  void ShowHits(std::vector<Mark> hits, int current);
  /// The text that the user has marked, lines separated by line breaks; cells of one line by tabs.
  QString MarkedText() const;
  void MarkAll();

  /// Called after the current page, the zoom or the marking has changed.
  std::function<void()> changed;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  bool event(QEvent* event) override;

 private:
  struct Drawn {
    QPixmap picture;
    std::vector<TextRun> text;
    bool complete = true;  ///< no slot was empty
  };
  /// Where a marking begins or ends: the page and a point on it, in points.
  struct Spot {
    int page = 0;
    QPointF at;
  };

  int Columns() const;
  int Rows() const;
  QSize PageSize() const;
  QRect PageBox(int page) const;
  void Arrange();
  void KeepPlace(const std::function<void()>& change);
  Drawn* DrawnPage(int page);
  Spot SpotAt(QPoint point) const;
  /// The part of the user's marking on this page.
  std::vector<Mark> MarkedOn(int page, const std::vector<TextRun>& text) const;
  void Scroll(int pixels);
  void StepZoom(int direction);
  void Changed();

  const PageStore* store_ = nullptr;
  int pages_ = 0;
  Zoom zoom_ = Zoom::FitWidth;
  double scale_ = 1;
  bool twoPages_ = false;
  mutable QCache<int, Drawn> drawn_;
  std::vector<Mark> hits_;
  int hit_ = -1;
  std::optional<Spot> markStart_;
  std::optional<Spot> markEnd_;
  bool markColumn_ = false;
  bool marking_ = false;
  int shownPage_ = -1;
};

}  // namespace print
