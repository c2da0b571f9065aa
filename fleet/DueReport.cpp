#include "fleet/DueReport.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
#include <utility>

#include "data/Attempt.h"
#include "data/BrackenfelGlobals.h"
#include "data/GenericDAO.h"
#include "data/GenericTools.h"
#include "platform/runtime/Clock.h"
#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"
#include "platform/screen/Screen.h"

namespace dw {

namespace {

constexpr const char* kLogName = "Maintenance Report.Log";
constexpr const char* kRule = "-----------------------";

void Tell(const std::string& what) {
  screen::MessageBox(what + "\rNo maintenance report was written.", screen::Icon::Critical);
}

/// The log while it is being written. The earlier log goes first, so that nobody takes it for the one of this
/// run; the new one grows under a name of its own and gets the log's name once it is complete, so that nobody
/// takes the beginning of a run that broke off for the whole.
class LogFile {
 public:
  explicit LogFile(std::string path)
      : path_(std::move(path)), growing_(path_ + "." + std::to_string(getpid())) {}
  ~LogFile() {
    if (!file_) return;
    std::fclose(file_);
    std::remove(growing_.c_str());
  }
  LogFile(const LogFile&) = delete;
  LogFile& operator=(const LogFile&) = delete;

  /// False after a message.
  bool Open() {
    if (FileExists(path_)) DeleteFileChecked(path_);
    if (FileExists(path_)) return false;
    file_ = std::fopen(growing_.c_str(), "wb");
    if (file_) return true;
    NoteFailure();
    TellFailure();
    return false;
  }

  void Line(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), file_) != text.size() ||
        std::fwrite("\r\n", 1, 2, file_) != 2) {
      NoteFailure();
    }
  }

  /// Whether all lines up to here went out; a full disk may come to light only at the end.
  bool Healthy() const { return failure_ == 0; }

  /// Gives the complete log its name. False after a message, and then nothing is left of it.
  bool Finish() {
    if (std::fclose(std::exchange(file_, nullptr)) != 0) NoteFailure();
    if (Healthy() && std::rename(growing_.c_str(), path_.c_str()) != 0) NoteFailure();
    if (Healthy()) return true;
    TellFailure();
    std::remove(growing_.c_str());
    return false;
  }

 private:
  /// Keeps the first failure; later calls may change what the system says of the last one.
  void NoteFailure() {
    if (failure_ == 0) failure_ = errno;
  }
  void TellFailure() const { Tell("Unable to write '" + path_ + "'.\r" + std::strerror(failure_)); }

  int failure_ = 0;
  std::string path_;
  std::string growing_;
  std::FILE* file_ = nullptr;
};

/// The typed texts as values; throws RuntimeError 13 with words for the user.
DueHorizon TypedHorizon(const std::string& dueBy, const std::string& usage) {
  DueHorizon horizon;
  horizon.dueBy = [dueBy] {
    const auto date = rt::ParseDate(dueBy);
    if (!date) throw rt::RuntimeError(13, "The date '" + dueBy + "' is not a valid date.");
    return *date;
  };
  horizon.extraUsage = [usage] {
    const auto number = rt::ParseNumber(usage);
    const double limit = std::numeric_limits<float>::max();
    if (!number || *number > limit || *number < -limit) {
      throw rt::RuntimeError(13, "The usage '" + usage + "' is not a valid number.");
    }
    return static_cast<float>(*number);
  };
  return horizon;
}

/// The lines of the whole report; false after a message.
bool WriteLines(const AdoConnectionPtr& connection, ado::Recordset& assets, LogFile& log,
                const std::string& dueBy, const std::string& usage,
                const std::function<void(const DueItem&)>& onItem) {
  log.Line("Maintenance Schedule as of " + rt::GeneralDate(rt::Now()));
  log.Line(kRule);
  log.Line("Items due in the next " + usage + " mile(s) or by " + dueBy);
  log.Line(kRule);
  log.Line("");

  DueDestination destination;
  destination.write = [&](const std::string& line) { log.Line(line); };
  DueAnalysis analysis(connection, destination, TypedHorizon(dueBy, usage), onItem);
  // A full disk ends the loop early; the close tells of it.
  for (; !assets.AtEnd() && log.Healthy(); assets.MoveNext()) {
    const auto asset = analysis.Read(assets);
    if (!asset) continue;
    log.Line(kRule);
    log.Line("Asset ID: " + asset->assetID);
    log.Line(asset->description.IsNull() ? "Null" : asset->description.AsText());
    if (!analysis.Run(*asset)) {
      Tell("The analysis of asset '" + asset->assetID + "' could not be finished.");
      return false;
    }
  }

  log.Line(kRule);
  log.Line("--- End of Schedule ---");
  log.Line(kRule);
  return true;
}

std::string WriteLog(const AdoConnectionPtr& connection, ado::Recordset& assets, const std::string& path,
                     const std::string& dueBy, const std::string& usage,
                     const std::function<void(const DueItem&)>& onItem) {
  LogFile log(path);
  if (!log.Open()) return {};
  bool complete = false;
  const Failure failure =
      Try([&] { complete = WriteLines(connection, assets, log, dueBy, usage, onItem) && log.Finish(); });
  if (failure) Tell(failure.description);
  return complete ? path : std::string();
}

}  // namespace

DueReportEnd MakeDueReport(const std::string& directory, const std::string& dueBy, const std::string& usage,
                           std::string& path, const std::function<void(const DueItem&)>& onItem) {
  AdoConnectionPtr connection;
  if (!AdoOpenConnection(connection, DataConnect, false)) return DueReportEnd::Failed;
  AdoRecordsetPtr assets = AdoOpenRecordset(
      connection, "SELECT * FROM Vehicles WHERE No_Longer_In_Service = FALSE ORDER BY [Asset ID]");
  DueReportEnd end = DueReportEnd::Failed;
  if (assets && assets->AtEnd()) {
    screen::MessageBox("There are no assets in service to report.", screen::Icon::Information);
    end = DueReportEnd::NoAssets;
  } else if (assets) {
    path = WriteLog(connection, *assets, (std::filesystem::path(directory) / kLogName).string(), dueBy, usage,
                    onItem);
    if (!path.empty()) end = DueReportEnd::Written;
  }
  CloseObject(assets);
  CloseObject(connection);
  return end;
}

std::string WriteDueReport(const std::string& directory, const std::string& dueBy, const std::string& usage,
                           const std::function<void(const DueItem&)>& onItem) {
  std::string path;
  return MakeDueReport(directory, dueBy, usage, path, onItem) == DueReportEnd::Written ? path : std::string();
}

}  // namespace dw
