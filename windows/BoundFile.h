// The data files that windows bind their controls to.
#pragma once

#include <string>

#include "data/BrackenfelGlobals.h"

namespace ui {
class Adodc;
}

namespace dw {

/// A data file by the texts that sign-on has set: how to connect to it, and its path. Both may change when a
/// missing file is found elsewhere.
struct BoundFile {
  const std::string& connect;
  const std::string& path;
};

inline const BoundFile kMainFile{DataConnect, DataFile};
inline const BoundFile kDefinitionsFile{SandsConnect, SandsFile};  ///< select and sort definitions

/// Sets up a data control for a grid: query, lock type 3, 10 rows at a time. Errors that are not worth a box
/// get none. If the file is missing, asks the user for it once.
void BindToFile(ui::Adodc& data, const std::string& query, const BoundFile& file);

}  // namespace dw
