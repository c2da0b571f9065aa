// The files of the window that gets a picture: names for scans, the trace of a scan, discarded files.
#pragma once

#include <optional>
#include <string>

namespace dw {

/// Name of the trace in the data directory.
inline constexpr const char* kPictureTraceFile = "GetPictureFile.log";

/// The steps of one scan, each written and closed before the step begins: if a scanner's driver crashes the
/// program, the last line names the step.
class ScanTrace {
 public:
  /// Writes only if `wanted`.
  explicit ScanTrace(bool wanted) : wanted_(wanted) {}
  /// Adds a line; the first one replaces the trace of an earlier scan. If the file cannot be written, the
  /// user is told so, and the scan goes on without a trace.
  void Line(const std::string& text);

 private:
  bool wanted_;
  bool first_ = true;
};

/// The files that a scan is stored in.
struct ScanFiles {
  std::string bmp;
  std::string jpeg;
};
/// The files for a scan in `folder` (the program's own if it is empty) under `name` without an ending (a new
/// name if it is empty). Deletes older files of these names. Empty, after a message, if no name can be found.
std::optional<ScanFiles> PrepareScanFiles(const std::string& folder, const std::string& name,
                                          ScanTrace& trace);

/// The path of a file in a directory.
std::string PicturePath(const std::string& directory, const std::string& file);
/// Deletes the picture file that Cancel discards, whether scanned or chosen; does nothing for an empty path.
/// Reports a file that cannot be deleted.
void DiscardPicture(const std::string& path);

}  // namespace dw
