// One run of a report: its rows, its pages, and the thread that makes the one from the other.
#pragma once

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/print/job/Destinations.h"
#include "platform/print/layout/Layout.h"

namespace print {

/// Lays rows out in a thread of its own. Whoever holds it last cancels the thread and waits for its end.
class ReportRun : public RunningReport {
 public:
  ReportRun(std::shared_ptr<const ReportDefinition> report, std::unique_ptr<ReportRows> rows,
            LayoutOptions options, std::vector<std::string> warnings);
  ~ReportRun() override;
  ReportRun(const ReportRun&) = delete;
  ReportRun& operator=(const ReportRun&) = delete;

  const PageStore& Pages() const override { return pages_; }
  void Cancel() override { cancel_ = true; }
  std::string Failure() const override;
  std::string Warnings() const override;

  /// Waits until there is a page, or the run has ended.
  void WaitForFirstPage() const;
  /// Waits until the run has ended.
  void WaitForEnd() const;

 private:
  void Work();

  std::shared_ptr<const ReportDefinition> report_;
  std::unique_ptr<ReportRows> rows_;
  LayoutOptions options_;
  PageStore pages_;
  std::atomic<bool> cancel_ = false;
  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  bool ended_ = false;
  std::string failure_;
  std::vector<std::string> warnings_;
  std::thread worker_;
};

}  // namespace print
