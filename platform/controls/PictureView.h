// A frame that shows a picture, scaled without distortion, or a text in its place.
#pragma once

#include <QFrame>
#include <QImage>
#include <QPixmap>
#include <string>

namespace ui {

/// The picture never appears larger than its own size on a screen at 100%.
class PictureView : public QFrame {
 public:
  explicit PictureView(const char* name);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  /// Shows an image of a picture of this size; the image may have fewer pixels. An empty one shows the text.
  void Show(QImage image, const QSize& whole);
  /// The text that appears when there is no picture; quiet texts have the color of hints.
  void ShowText(const std::string& text, bool quiet);
  /// Called before painting: the last moment to show an image with enough pixels for its place.
  virtual void Prepare() {}
  /// The room for a picture, in pixels of the screen.
  QSize PlaceOnScreen() const;
  const QImage& Image() const { return image_; }

  void paintEvent(QPaintEvent* event) override;

 private:
  QRect Place() const;

  QImage image_;
  QSize whole_;
  QPixmap fitted_;  ///< the image at the present size
  QString text_;
  bool quiet_ = true;
};

}  // namespace ui
