// The picture of one asset, for looking at.
#pragma once

#include <cstdint>

#include "platform/controls/DataControl.h"
#include "platform/controls/Form.h"
#include "platform/controls/PictureBox.h"

namespace dw {

class frmAssetPicture : public ui::Form {
 public:
  frmAssetPicture();

  std::int32_t DataID = 0;  ///< the asset's `ID`
  /// Reads the picture of the asset, as the first activation does by itself.
  void ReadPicture();

  ui::PictureBox picture{"imgPicture"};

 protected:
  void OnLoad() override;
  void OnActivate() override;

 private:
  void Read(std::int32_t id);

  ui::DataControl pictureData_;
  bool activated_ = false;
};

}  // namespace dw
