#include "data/Compact.h"

#include <memory>

#include "data/Application.h"
#include "data/Attempt.h"
#include "data/BrackenfelGlobals.h"
#include "platform/dao/Dao.h"
#include "platform/screen/Screen.h"
#include "platform/store/Compaction.h"
#include "platform/store/StoreError.h"
#include "platform/system/Files.h"

namespace dw {

using screen::Buttons;
using screen::Icon;

namespace {

/// The runtime's "path/file access error".
constexpr int kPathAccess = 75;

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
  // Keeps everybody out until the copy has replaced the first file: changes made in between would be lost.
  std::shared_ptr<store::Compaction> compaction;
  if (const Failure failure = Try([&] { compaction = dao::DBEngine::CompactDatabase(path, name); })) {
    ShowFailure(failure);
    return;
  }
  // One step deletes the first file and gives the copy its name. A crash between two steps would leave no
  // file under the name.
  if (const Failure failure = Try([&] { compaction->TakePlace(); })) {
    screen::MessageBox("Could not delete file.\r" + failure.description);
    return;
  }
  compaction.reset();
  screen::MessageBox("Compacting complete.", Icon::Information);
}

}  // namespace dw
