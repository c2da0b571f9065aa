// The icon of the program's windows.
#pragma once

#include <QIcon>

namespace dw {

/// A truck on a road, painted in all sizes from 16 to 256 pixels. Needs the application object.
QIcon ApplicationIcon();

}  // namespace dw
