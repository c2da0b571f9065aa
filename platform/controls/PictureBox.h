// The picture of a record.
#pragma once

#include <string>

#include "platform/controls/BoundControl.h"
#include "platform/controls/PictureBytes.h"
#include "platform/controls/PictureView.h"

namespace ui {

/// Shows a column's picture, or "No picture", or why it cannot show it. It keeps and stores the bytes as they
/// came, whether it can show them or not.
class PictureBox : public PictureView, public BoundControl {
 public:
  explicit PictureBox(const char* name);

  /// Takes the picture of a file. False, after a box with the reason, if the file is too large or not a
  /// picture that can be shown; the old picture stays then.
  bool LoadFile(const std::string& path);
  /// Shows the picture of a file; if it cannot, shows the reason and has no picture.
  void ShowFile(const std::string& path);
  /// Removes the picture.
  void Clear();
  /// Whether there is a picture that can be shown.
  bool HasPicture();

  void ShowValue(const rt::Value& value) override;
  bool Changed() const override { return changed_; }
  /// The bytes as they came, or Null.
  rt::Value Content() const override;
  void SetUnchanged() override { changed_ = false; }
  QWidget* Widget() override { return this; }

 protected:
  void Prepare() override;

 private:
  /// Decodes the bytes and shows the picture; returns why it cannot be shown.
  std::string Decode();
  void ShowDecoded(DecodedPicture decoded);
  void Take(rt::Binary bytes, bool changed);

  rt::Binary bytes_;
  bool changed_ = false;
  bool decoded_ = true;  ///< the display shows the bytes
  QSize whole_;          ///< the picture's own size
  QSize decodedFor_;     ///< the size that the picture was decoded for
};

}  // namespace ui
