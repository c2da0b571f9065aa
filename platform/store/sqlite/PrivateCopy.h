// A data file's pages as they are at one moment, for work that reads for long.
#pragma once

#include <functional>
#include <string>

#include "platform/store/sqlite/Handle.h"

namespace store {

/// Copies the file that the handle has open into a temporary file that is this process's own, and opens the
/// copy for reading; a handle for it that names the data file in its errors. Null where `goOn` said no, and
/// where the copy cannot be kept, as on a full temporary disk.
///
/// The copy is of one moment. It is made in looks of a few milliseconds, between which others commit. Where
/// somebody did, one last look compares the file with the copy and takes over the pages that differ: others
/// wait for a comparison of the file's bytes at the most.
std::unique_ptr<Handle> CopyPrivately(Handle& file, const std::function<bool()>& goOn);

}  // namespace store
