// The files of the window that gets a picture: names for scans, the trace of a scan, files thrown away.
#pragma once

#include <optional>
#include <string>

namespace dw {

/// Name of the trace in the data directory.
inline constexpr const char* kPictureTraceFile = "GetPictureFile.log";

/// The steps of one scan, each written and closed before the step is taken: where a scanner's driver takes
/// the program down, the last line names the step.
class ScanTrace {
 public:
  /// Nothing is written unless it is wanted.
  explicit ScanTrace(bool wanted) : wanted_(wanted) {}
  /// Adds a line; the first one replaces the trace of an earlier scan. Where the file cannot be written the
  /// user is told, and the scan goes on without a trace.
  void Line(const std::string& text);

 private:
  bool wanted_;
  bool first_ = true;
};

/// Where a scan goes.
struct ScanFiles {
  std::string bmp;
  std::string jpeg;
};
/// The files for a scan in `folder` (the program's own where it is empty) under `name` without an ending (a
/// new name where it is empty). Files of these names from before are deleted. Empty, after a message, where
/// no name can be had.
std::optional<ScanFiles> PrepareScanFiles(const std::string& folder, const std::string& name,
                                          ScanTrace& trace);

/// The path of a file in a directory.
std::string PicturePath(const std::string& directory, const std::string& file);
/// Deletes the picture file that Cancel throws away, a scan or any file that was chosen; an empty path is
/// none. What cannot be deleted is told.
void DiscardPicture(const std::string& path);

}  // namespace dw
