#include "platform/controls/PictureBox.h"

#include <utility>

#include "platform/screen/Screen.h"

namespace ui {
namespace {

constexpr const char* kNone = "No picture";

}  // namespace

PictureBox::PictureBox(const char* name) : PictureView(name) { ShowText(kNone, true); }

bool PictureBox::LoadFile(const std::string& path) {
  rt::Binary bytes;
  std::string fault = ReadPictureFile(path, bytes);
  DecodedPicture decoded;
  if (fault.empty()) {
    decoded = DecodePicture(bytes, PlaceOnScreen());
    fault = decoded.fault;
  }
  if (!fault.empty()) {
    screen::MessageBox("'" + path + "' cannot be used as a picture: " + fault + ".",
                       screen::Icon::Exclamation);
    return false;
  }
  Take(std::move(bytes), true);
  ShowDecoded(std::move(decoded));
  return true;
}

void PictureBox::ShowFile(const std::string& path) {
  rt::Binary bytes;
  std::string fault = ReadPictureFile(path, bytes);
  Take(std::move(bytes), true);
  if (fault.empty()) fault = Decode();
  if (fault.empty()) return;
  Take({}, true);
  ShowText("This file cannot be used as a picture: " + fault + ".", false);
}

void PictureBox::Clear() { Take({}, changed_ || !bytes_.empty()); }

bool PictureBox::HasPicture() {
  Prepare();
  return !Image().isNull();
}

void PictureBox::ShowValue(const rt::Value& value) {
  static const rt::Binary kNothing;
  const rt::Binary& bytes = value.Type() == rt::ValueType::Binary ? value.AsBinary() : kNothing;
  // Records are read again and again, mostly with the same picture.
  if (bytes != bytes_ || bytes.empty()) Take(bytes, false);
  changed_ = false;
}

rt::Value PictureBox::Content() const { return bytes_.empty() ? rt::Value() : rt::Value(bytes_); }

void PictureBox::Take(rt::Binary bytes, bool changed) {
  bytes_ = std::move(bytes);
  changed_ = changed;
  decoded_ = bytes_.empty();
  whole_ = {};
  ShowText(bytes_.empty() ? kNone : "", true);
}

std::string PictureBox::Decode() {
  DecodedPicture decoded = DecodePicture(bytes_, PlaceOnScreen());
  std::string fault = decoded.fault;
  ShowDecoded(std::move(decoded));
  return fault;
}

void PictureBox::ShowDecoded(DecodedPicture decoded) {
  decoded_ = true;
  decodedFor_ = PlaceOnScreen();
  whole_ = decoded.whole;
  if (!decoded.fault.empty())
    ShowText("The picture cannot be shown: " + decoded.fault + ".", false);
  else
    Show(std::move(decoded.image), decoded.whole);
}

void PictureBox::Prepare() {
  if (!decoded_) {
    Decode();
    return;
  }
  // An enlarged window needs more of the picture's pixels.
  const QSize held = Image().size();
  const QSize place = PlaceOnScreen();
  if (held.isEmpty() || held == whole_ || place.boundedTo(decodedFor_) == place) return;
  const QSize needed = whole_.scaled(place, Qt::KeepAspectRatio).boundedTo(whole_);
  if (held.width() < needed.width() || held.height() < needed.height()) Decode();
}

}  // namespace ui
