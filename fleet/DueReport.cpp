#include "fleet/DueReport.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "data/Attempt.h"
#include "data/BrackenfelGlobals.h"
#include "data/GenericDAO.h"
#include "fleet/DueFacts.h"
#include "fleet/DueQueries.h"
#include "platform/runtime/Clock.h"
#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"
#include "platform/screen/Screen.h"
#include "platform/store/StoreError.h"

namespace dw {

namespace {

constexpr const char* kLogName = "Maintenance Report.Log";
constexpr const char* kRule = "-----------------------";

void Tell(const std::string& what) {
  screen::MessageBox(what + "\rNo maintenance report was written.", screen::Icon::Critical);
}

/// The log while it is being written. It has a temporary name and takes the log's name once it is complete.
/// Until then an earlier log stays, and nobody mistakes the part that a broken run has written for the whole.
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

  /// Whether all lines so far were written; a full disk may show only at the end.
  bool Healthy() const { return failure_ == 0; }

  /// Replaces an earlier log by the complete one. False after a message, and then no temporary file is left.
  bool Finish() {
    if (std::fclose(std::exchange(file_, nullptr)) != 0) NoteFailure();
    if (Healthy() && std::rename(growing_.c_str(), path_.c_str()) != 0) NoteFailure();
    if (Healthy()) return true;
    TellFailure();
    std::remove(growing_.c_str());
    return false;
  }

 private:
  /// Keeps the first failure; later calls may change what the system reports about the last one.
  void NoteFailure() {
    if (failure_ == 0) failure_ = errno;
  }
  void TellFailure() const { Tell("Unable to write '" + path_ + "'.\r" + std::strerror(failure_)); }

  int failure_ = 0;
  std::string path_;
  std::string growing_;
  std::FILE* file_ = nullptr;
};

/// A typed text that is not a date or a number. It ends the whole run, unlike a bad value of an asset.
class BadHorizon : public rt::RuntimeError {
 public:
  explicit BadHorizon(const std::string& text) : rt::RuntimeError(13, text) {}
};

/// The typed texts as values; throws BadHorizon with words for the user.
DueHorizon TypedHorizon(const std::string& dueBy, const std::string& usage) {
  DueHorizon horizon;
  horizon.dueBy = [dueBy] {
    const auto date = rt::ParseDate(dueBy);
    if (!date) throw BadHorizon("The date '" + dueBy + "' is not a valid date.");
    return *date;
  };
  horizon.extraUsage = [usage] {
    const auto number = rt::ParseNumber(usage);
    const double limit = std::numeric_limits<float>::max();
    if (!number || *number > limit || *number < -limit) {
      throw BadHorizon("The usage '" + usage + "' is not a valid number.");
    }
    return static_cast<float>(*number);
  };
  return horizon;
}

/// Whether an error of the engine comes from the asset itself: from its code, which goes into the queries
/// unchanged, or from a value. All other errors, such as a lock or a lost disk, are not the asset's.
bool IsOfAsset(const std::string& assetID, std::int32_t native) {
  switch (native) {
    case store::kTypeMismatch:
    case store::kOverflow:
      return true;
    case store::kSyntax:
    case store::kTooFewParameters:
    case store::kTableNotFound:
    case store::kAmbiguousColumn:
    case store::kItemNotFound:
    case store::kSelectNotExecuted:
      return assetID.find('\'') != std::string::npos;
    default:
      return false;
  }
}

/// The lines of one run of the report.
class Run {
 public:
  Run(AdoConnectionPtr connection, LogFile& log, const DueReportRequest& request)
      : connection_(std::move(connection)),
        log_(log),
        request_(request),
        queries_([this](const std::string& sql) { return Opened(sql); }),
        analysis_({.write = [this](const std::string& line) { lines_.push_back(line); }, .separator = {}},
                  TypedHorizon(request.dueBy, request.usage),
                  [this](const DueItem& item) { items_.push_back(item); }) {
    if (request.way == DueWay::OnePass) facts_.emplace(connection_->Store());
  }

  /// Throws what ends the run.
  void Write(ado::Recordset& assets) {
    log_.Line("Maintenance Schedule as of " + rt::GeneralDate(rt::Now()));
    log_.Line(kRule);
    log_.Line("Items due in the next " + request_.usage + " mile(s) or by " + request_.dueBy);
    log_.Line(kRule);
    log_.Line("");
    // A full disk ends the loop early; closing the log reports it.
    for (; !assets.AtEnd() && log_.Healthy(); assets.MoveNext()) {
      // Another user may have deleted it.
      const auto row = UnlessDeleted([&] {
        return AssetRow{assetID_.Of(assets), description_.Of(assets), purchaseDate_.Of(assets)};
      });
      if (row) WriteAsset(*row);
    }
    log_.Line(kRule);
    log_.Line("--- End of Schedule ---");
    log_.Line(kRule);
  }

  /// The codes of the assets that could not be analyzed.
  const std::vector<std::string>& Failed() const { return failed_; }

 private:
  struct AssetRow {
    rt::Value code;
    rt::Value description;
    rt::Value purchaseDate;
  };

  AdoRecordsetPtr Opened(const std::string& sql) {
    auto rows = std::make_shared<ado::Recordset>();
    rows->Open(sql, connection_, ado::adOpenKeyset, ado::adLockReadOnly);
    return rows;
  }

  void WriteAsset(const AssetRow& row) {
    const auto& [code, description, purchaseDate] = row;
    DueAsset asset{.assetID = {}, .description = description, .purchaseDate = purchaseDate};
    std::string described;
    const std::string words = WordsOfFailure(asset, [&] {
      asset.assetID = code.Shown();
      described = description.IsNull() ? "Null" : description.AsText();
      Analyze(asset);
    });
    log_.Line(kRule);
    log_.Line("Asset ID: " + asset.assetID);
    log_.Line(described);
    if (words.empty()) {
      for (const std::string& line : lines_) log_.Line(line);
      if (request_.onItem) std::for_each(items_.begin(), items_.end(), request_.onItem);
      return;
    }
    // The lines before the failure would look as if nothing else were due.
    failed_.push_back(asset.assetID);
    log_.Line("ERROR: " + words);
  }

  void Analyze(const DueAsset& asset) {
    lines_.clear();
    items_.clear();
    if (facts_ && facts_->Know(asset.assetID)) return analysis_.Run(asset, *facts_);
    // A dozen queries about one asset share one look.
    const store::Reading reading(connection_->Store());
    analysis_.Run(asset, queries_);
  }

  /// The engine's words in one line if a step fails because of the asset; empty if it does not fail.
  template <class Step>
  std::string WordsOfFailure(const DueAsset& asset, Step step) {
    try {
      step();
      return {};
    } catch (const BadHorizon&) {
      throw;
    } catch (const rt::RuntimeError& error) {
      return InOneLine(error.what());
    } catch (const ado::Error& error) {
      if (IsOfAsset(asset.assetID, error.Native())) return InOneLine(error.what());
      throw ado::Error(error.Number(), error.Native(),
                       "The analysis of asset '" + asset.assetID + "' could not be finished.\rError #" +
                           std::to_string(error.Number()) + ": " + error.what());
    }
  }

  static std::string InOneLine(std::string words) {
    std::replace_if(
        words.begin(), words.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    return words;
  }

  AdoConnectionPtr connection_;
  LogFile& log_;
  const DueReportRequest& request_;
  DueQueries queries_;
  std::optional<DueFacts> facts_;
  DueAnalysis analysis_;
  std::vector<std::string> lines_;  ///< of the asset that is being analyzed
  std::vector<DueItem> items_;      ///< the same
  std::vector<std::string> failed_;
  DueColumn assetID_{"Asset ID"};
  DueColumn description_{"Description"};
  DueColumn purchaseDate_{"Purchase Date"};
};

void TellFailed(const std::vector<std::string>& assets) {
  if (assets.empty()) return;
  constexpr std::size_t kMostNamed = 10;
  std::string named;
  for (std::size_t i = 0; i < assets.size() && i < kMostNamed; ++i) named += "\r" + assets[i];
  if (assets.size() > kMostNamed) named += "\rand " + std::to_string(assets.size() - kMostNamed) + " more";
  screen::MessageBox("What is due could not be worked out for these assets. The report says why.\r" + named,
                     screen::Icon::Exclamation);
}

/// The path that was written; empty after a message.
std::string WriteLog(const AdoConnectionPtr& connection, ado::Recordset& assets,
                     const DueReportRequest& request) {
  const std::string path = (std::filesystem::path(request.directory) / kLogName).string();
  LogFile log(path);
  if (!log.Open()) return {};
  bool complete = false;
  std::vector<std::string> failed;
  const Failure failure = Try([&] {
    Run run(connection, log, request);
    run.Write(assets);
    failed = run.Failed();
    complete = log.Finish();
  });
  if (failure) Tell(failure.description);
  if (!complete) return {};
  TellFailed(failed);
  return path;
}

}  // namespace

DueReportEnd MakeDueReport(const DueReportRequest& request, std::string& path) {
  AdoConnectionPtr connection;
  if (!AdoOpenConnection(connection, DataConnect, false)) return DueReportEnd::Failed;
  AdoRecordsetPtr assets =
      AdoOpenRecordset(connection,
                       "SELECT [Asset ID], [Description], [Purchase Date] FROM Vehicles WHERE "
                       "No_Longer_In_Service = FALSE ORDER BY [Asset ID]");
  DueReportEnd end = DueReportEnd::Failed;
  if (assets && assets->AtEnd()) {
    screen::MessageBox("There are no assets in service to report.", screen::Icon::Information);
    end = DueReportEnd::NoAssets;
  } else if (assets) {
    path = WriteLog(connection, *assets, request);
    if (!path.empty()) end = DueReportEnd::Written;
  }
  CloseObject(assets);
  CloseObject(connection);
  return end;
}

std::string WriteDueReport(const std::string& directory, const std::string& dueBy, const std::string& usage,
                           const std::function<void(const DueItem&)>& onItem) {
  std::string path;
  return MakeDueReport({directory, dueBy, usage, onItem}, path) == DueReportEnd::Written ? path
                                                                                         : std::string();
}

}  // namespace dw
