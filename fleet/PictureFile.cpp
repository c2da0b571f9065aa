#include "fleet/PictureFile.h"

#include <cerrno>
#include <fstream>
#include <string_view>
#include <system_error>

#include "data/BrackenfelGlobals.h"
#include "data/GenericTools.h"
#include "platform/runtime/Text.h"
#include "platform/screen/Screen.h"
#include "platform/system/Files.h"
#include "platform/system/Machine.h"

namespace dw {
namespace {

std::string Replaced(std::string text, std::string_view from, std::string_view to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
    text.replace(at, from.size(), to);
  return text;
}

/// Where the bare name begins. The part before it names a directory, and a change of case there would name
/// another one.
std::size_t NameBegin(const std::string& path) { return path.size() - BareFileName(path).size(); }

void DeleteEarlier(const std::string& path) {
  if (FileExists(path)) DeleteFileChecked(path);
}

}  // namespace

void ScanTrace::Line(const std::string& text) {
  if (!wanted_) return;
  const std::string path = DataPath + kPictureTraceFile;
  errno = 0;
  std::ofstream file(path, std::ios::binary | (first_ ? std::ios::trunc : std::ios::app));
  first_ = false;
  file << text << "\r\n";
  file.close();
  if (file) return;
  wanted_ = false;
  screen::MessageBox("Unable to write '" + path + "': " + std::generic_category().message(errno) +
                         ".\rThe scan goes on without a trace log.",
                     screen::Icon::Exclamation);
}

std::optional<ScanFiles> PrepareScanFiles(const std::string& folder, const std::string& name,
                                          ScanTrace& trace) {
  std::string place = folder;
  if (!place.empty()) {
    place = WithSeparator(place);
    trace.Line("File path of '" + place + "' has been provided");
  }
  const std::string own = WithSeparator(sys::ProgramDirectory());
  std::string file;
  if (name.empty()) {
    trace.Line("Retrieving temporary file path");
    file = sys::TemporaryFileName(place.empty() ? own : place, "scn");
  } else {
    file = (place.empty() ? own : place) + name + ".bmp";
    trace.Line("File name of '" + file + "' has been provided");
  }
  if (file.empty()) {
    screen::MessageBox("Unable to get file name to store scanned image.", screen::Icon::Critical);
    return std::nullopt;
  }
  file = rt::Trim(file);
  const std::size_t begin = NameBegin(file);
  const std::string directory = file.substr(0, begin);
  const std::string bare = rt::LowerCase(file.substr(begin));
  trace.Line("Retrieved destination file name of '" + directory + bare + "'");

  const std::string bmp = Replaced(bare, ".tmp", ".bmp");
  const ScanFiles files{directory + bmp, directory + Replaced(bmp, ".bmp", ".jpg")};
  DeleteEarlier(files.bmp);
  DeleteEarlier(files.jpeg);
  trace.Line("Removed any previously existing " + files.bmp + " and " + files.jpeg + " files.");
  return files;
}

std::string PicturePath(const std::string& directory, const std::string& file) {
  return WithSeparator(directory) + file;
}

void DiscardPicture(const std::string& path) {
  if (!path.empty() && FileExists(path)) DeleteFileChecked(path);
}

}  // namespace dw
