// From an asset's window to the windows of its picture.
#pragma once

#include <cstdint>

#include "platform/controls/Form.h"

namespace dw {

class PictureCaller;

/// Shows the picture that is stored with the asset of this number in its window; says so if there is none.
void OpenAssetPicture(std::int32_t id);
/// Opens the window that gets a picture for `caller`, whose form is `callerForm`. It closes together with
/// that form.
void OpenGetPicture(PictureCaller& caller, ui::Form& callerForm);

}  // namespace dw
