// The interface between the window that gets a picture and the window that wants one.
#pragma once

#include <string>
#include <utility>

namespace dw {

/// A form that gets a picture. It reads both members at its next activation and clears them then.
class PictureCaller {
 public:
  virtual ~PictureCaller() = default;
  /// Path of the picture file to load; empty for none.
  virtual const std::string& Photo() const { return photo_; }
  virtual void SetPhoto(std::string path) { photo_ = std::move(path); }
  /// The picture is to be removed.
  virtual bool RemovePhoto() const { return removePhoto_; }
  virtual void SetRemovePhoto(bool remove) { removePhoto_ = remove; }

 protected:
  std::string photo_;
  bool removePhoto_ = false;
};

}  // namespace dw
