// Commands that make data files: create and sample.
#include <fcntl.h>
#include <stdlib.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <iostream>
#include <vector>

#include "data/Attempt.h"
#include "data/BrackenfelGlobals.h"
#include "data/Catalogue.h"
#include "data/GenericTools.h"
#include "data/Version.h"
#include "platform/runtime/Clock.h"
#include "platform/runtime/Text.h"
#include "platform/store/Engine.h"
#include "tools/dwadmin/Commands.h"
#include "tools/dwadmin/RowWriter.h"
#include "tools/dwadmin/Sample.h"

namespace dw {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFirstUser = "ADMIN";
constexpr const char* kFirstWorkstation = "OFFICE";
constexpr std::size_t kLongestWorkstation = 20;

NotDone AlreadyThere(const fs::path& file) {
  return NotDone("The file " + file.string() + " exists already. Existing data is never replaced.");
}

NotDone Failed(const std::string& what, const fs::path& path, int error) {
  return NotDone("Unable to " + what + " " + path.string() + ": " + std::strerror(error));
}

/// Makes the files in a temporary place and moves them once all are complete, so that a run that breaks off
/// leaves nothing that looks like data.
class Workshop {
 public:
  explicit Workshop(const fs::path& directory) {
    std::error_code error;
    fs::create_directories(directory, error);
    if (error) throw Failed("make the directory", directory, error.value());
    std::string pattern = (directory / "new-files-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw Failed("make files in", directory, errno);
    path_ = pattern;
  }
  ~Workshop() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  Workshop(const Workshop&) = delete;
  Workshop& operator=(const Workshop&) = delete;

  const fs::path& Path() const { return path_; }

  /// Moves the file to its place, which must be empty.
  void Deliver(const char* file, const fs::path& directory) const {
    const fs::path from = path_ / file;
    const fs::path to = directory / file;
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return;
    if (errno == EEXIST) throw AlreadyThere(to);
    // Some network file systems have only the plain rename.
    if (errno != EINVAL && errno != ENOSYS) throw Failed("make", to, errno);
    if (fs::exists(to)) throw AlreadyThere(to);
    if (std::rename(from.c_str(), to.c_str()) != 0) throw Failed("make", to, errno);
  }

 private:
  fs::path path_;
};

void MakeFiles(const fs::path& directory, const std::function<void(const std::string& workshop)>& make) {
  for (const char* file : kDataFiles)
    if (const fs::path there = FindFile(directory.string(), file); fs::exists(there))
      throw AlreadyThere(there);
  const Workshop workshop(directory);
  make(workshop.Path().string());
  std::vector<fs::path> delivered;
  try {
    for (const char* file : kDataFiles) {
      workshop.Deliver(file, directory);
      delivered.push_back(directory / file);
    }
  } catch (...) {
    for (const fs::path& file : delivered) Try([&] { store::Engine::Of(file).Drop(file); });
    throw;
  }
}

void Fill(const std::string& directory, const char* file,
          const std::function<void(dao::Database& database, Batch& batch)>& write) {
  const auto workspace = dao::DBEngine::CreateWorkspace("Create", "admin", "");
  const auto database = workspace->OpenDatabase((fs::path(directory) / file).string(), true);
  Batch batch(*workspace);
  write(*database, batch);
  batch.Finish();
  database->Close();
  workspace->Close();
}

/// The rows that a set of files needs at least: without them nobody could sign on.
void WriteFirstRows(const std::string& directory, const std::string& workstation) {
  const rt::DateTime now = rt::Now();
  Fill(directory, "DW.MDB", [&](dao::Database& database, Batch& batch) {
    RowWriter parameters(batch, database, "Parameters",
                         {"ID", "Date Installed", "Major Version Number", "Minor Version Number",
                          "Revision Number", "Data Initialized"});
    // There are no sample rows for the first start to clear.
    const bool initialized = true;
    parameters.Add({std::int32_t{1}, now.DateOnly(), static_cast<std::int16_t>(kMajorVersion),
                    static_cast<std::int16_t>(kMinorVersion), static_cast<std::int16_t>(kRevision),
                    initialized});
  });
  Fill(directory, "DW_USERS.MDB", [&](dao::Database& database, Batch& batch) {
    RowWriter users(batch, database, "Application User List",
                    {"User Name", "Allow Access", "Administrator", "Created By", "Date Created"});
    users.Add({kFirstUser, true, true, kFirstUser, now});
    RowWriter workstations(batch, database, "Application Workstation List",
                           {"Workstation Name", "Allow Access", "Active", "Created By", "Date Created"});
    workstations.Add({workstation, true, true, kFirstUser, now});
  });
}

}  // namespace

int CreateFiles(const std::string& directory, const std::string& workstation) {
  const std::string name = workstation.empty() ? kFirstWorkstation : workstation;
  if (rt::Length(name) > kLongestWorkstation)
    throw NotDone("The workstation name should be 20 characters or less. Please re-enter.");
  MakeFiles(directory, [&](const std::string& workshop) {
    for (const char* file : kDataFiles) CreateDataFile(workshop, file);
    WriteFirstRows(workshop, name);
  });
  std::cout << "Made " << kDataFiles.size() << " empty data files in " << directory << ".\n"
            << "Sign on as " << kFirstUser << " without a password at the workstation " << name << ".\n";
  return 0;
}

int CreateSample(const std::string& directory, const SampleRequest& request) {
  WatchSignals();
  MakeFiles(directory, [&](const std::string& workshop) {
    Progress progress;
    progress.Stage("Making the sample fleet...");
    MakeSample(workshop, request.assets, request.years, request.seed, [&](int percent) {
      StopIfAsked();
      progress.Percent(percent);
    });
  });
  std::cout << "Made a sample fleet of " << request.assets << " assets over " << request.years
            << (request.years == 1 ? " year" : " years") << " in " << directory << ".\n"
            << "Sign on as ADMIN without a password, or as CLERK with the password FLEET, at the workstation "
               "OFFICE or SHOP.\n";
  return 0;
}

}  // namespace dw
