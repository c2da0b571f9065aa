// A picture that fills its area.
#pragma once

#include <QPixmap>
#include <QWidget>
#include <string>

namespace dw {

/// Shows a picture as large as its area. It keeps the proportions and cuts off the sides that do not fit.
/// Without a picture it is a plain background.
class MenuPicture : public QWidget {
 public:
  MenuPicture();
  /// Loads the picture; if the file is missing or is not a picture, shows none.
  void Load(const std::string& path);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QPixmap picture_;
  QPixmap fitted_;  ///< the picture at the current size
};

}  // namespace dw
