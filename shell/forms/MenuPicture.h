// A picture that covers its place.
#pragma once

#include <QPixmap>
#include <QWidget>
#include <string>

namespace dw {

/// Shows a picture as large as its place, cut at the sides that stand over, never out of proportion. Without
/// a picture it is a plain ground.
class MenuPicture : public QWidget {
 public:
  MenuPicture();
  /// A file that is missing or holds no picture takes the picture away.
  void Load(const std::string& path);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QPixmap picture_;
  QPixmap fitted_;  ///< the picture at the present size
};

}  // namespace dw
