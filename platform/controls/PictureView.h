// A frame that shows a picture, scaled without distortion, or a text in its place.
#pragma once

#include <QFrame>
#include <QImage>
#include <QPixmap>
#include <string>

namespace ui {

/// The picture is never shown larger than it is on a screen at 100%.
class PictureView : public QFrame {
 public:
  explicit PictureView(const char* name);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  /// Shows an image that stands for a picture of this size; it may hold fewer pixels. An empty one shows the
  /// text.
  void Show(QImage image, const QSize& whole);
  /// What stands where no picture is; quiet texts are drawn in the colour of hints.
  void ShowText(const std::string& text, bool quiet);
  /// Called before painting: the last moment to show an image with pixels enough for the place.
  virtual void Prepare() {}
  /// The room that a picture has, in pixels of the screen.
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
