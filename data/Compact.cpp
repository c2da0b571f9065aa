#include "data/Compact.h"

#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include "data/Application.h"
#include "data/Attempt.h"
#include "data/BrackenfelGlobals.h"
#include "platform/dao/Dao.h"
#include "platform/screen/Screen.h"
#include "platform/store/StoreError.h"
#include "platform/system/Files.h"

namespace dw {

using screen::Buttons;
using screen::Icon;

namespace {

namespace fs = std::filesystem;

/// The runtime's "path/file access error".
constexpr int kPathAccess = 75;

/// A copy that bears a temporary name, removed again unless it has taken the first file's place.
class TemporaryCopy {
 public:
  explicit TemporaryCopy(std::string path) : path_(std::move(path)) {}
  ~TemporaryCopy() {
    std::error_code ignored;
    fs::remove(path_, ignored);
    fs::remove(path_ + "-journal", ignored);
  }
  TemporaryCopy(const TemporaryCopy&) = delete;
  TemporaryCopy& operator=(const TemporaryCopy&) = delete;
  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

void ShowInUse() { screen::MessageBox("Cannot compact at this time. Currently in use.", Icon::Information); }

void ShowFailure(const Failure& failure) {
  const std::string said =
      "Error #" + std::to_string(failure.number) + "." + "\n" + failure.description + "\n\n";
  switch (failure.number) {
    case store::kExclusiveNeeded:
    case kPathAccess:
    case store::kDiskFull:
      ShowInUse();
      return;
    case store::kCannotCompactDiskFull:
      screen::MessageBox(said + "Free up space and try again.");
      return;
    default:
      screen::MessageBox(said + "Application terminated.", Icon::Critical);
      EndApplication();
  }
}

}  // namespace

void CompactDatabase(const std::string& path, const std::string& temporaryFolder) {
  const std::string name = sys::TemporaryFileName(temporaryFolder.empty() ? DataPath : temporaryFolder, "DW");
  if (name.empty()) {
    screen::MessageBox("Unable to get a temporary file name. Compression cancelled.", Icon::None,
                       Buttons::OkCancel);
    return;
  }
  const TemporaryCopy copy(name);
  // Keeps everybody out until the copy stands in the first file's place: what somebody wrote in between would
  // be lost.
  std::shared_ptr<void> alone;
  if (const Failure failure = Try([&] { alone = dao::DBEngine::CompactDatabase(path, copy.Path()); })) {
    ShowFailure(failure);
    return;
  }

  // The copy is written under the rights of this user; the others must be able to work with it as with the
  // first file.
  std::error_code ignored;
  fs::permissions(copy.Path(), fs::status(path, ignored).permissions(), ignored);

  // Deleting the first file and giving the copy its name are one step here: between two, a crash would leave
  // nothing under the name, while a rename over it leaves either the old file or the new one, each whole.
  const sys::FileResult renamed = sys::RenameOver(copy.Path(), path);
  alone.reset();
  if (!renamed.Done()) {
    screen::MessageBox("Could not delete file.\r" + renamed.text);
    return;
  }
  screen::MessageBox("Compacting complete.", Icon::Information);
}

}  // namespace dw
