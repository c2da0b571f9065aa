// The icon of the program's windows.
#pragma once

#include <QIcon>

namespace dw {

/// A lorry on a road, painted in all sizes from 16 to 256 pixels. Needs the application to be there.
QIcon ApplicationIcon();

}  // namespace dw
