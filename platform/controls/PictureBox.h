// The picture of a record.
#pragma once

#include <string>

#include "platform/controls/BoundControl.h"
#include "platform/controls/PictureBytes.h"
#include "platform/controls/PictureView.h"

namespace ui {

/// Shows what a column holds as a picture, or "No picture", or why it cannot be shown. The bytes are kept and
/// stored as they came, whatever can be shown of them.
class PictureBox : public PictureView, public BoundControl {
 public:
  explicit PictureBox(const char* name);

  /// Takes the picture of a file. False, after a box with the reason, where the file is no picture that can
  /// be shown or is too large; the old picture stays then.
  bool LoadFile(const std::string& path);
  /// Shows the picture of a file or, in its place, why it cannot be shown; then there is none.
  void ShowFile(const std::string& path);
  /// Takes the picture away.
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
  /// Decodes and shows what the bytes hold; gives why they cannot be shown.
  std::string Decode();
  void ShowDecoded(DecodedPicture decoded);
  void Take(rt::Binary bytes, bool changed);

  rt::Binary bytes_;
  bool changed_ = false;
  bool decoded_ = true;  ///< what is shown is what the bytes hold
  QSize whole_;          ///< the picture's own size
  QSize decodedFor_;     ///< the place that it was decoded for
};

}  // namespace ui
