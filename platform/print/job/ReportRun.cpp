#include "platform/print/job/ReportRun.h"

#include <chrono>
#include <exception>
#include <utility>

namespace print {

ReportRun::ReportRun(std::shared_ptr<const ReportDefinition> report, std::unique_ptr<ReportRows> rows,
                     LayoutOptions options, std::vector<std::string> warnings)
    : report_(std::move(report)),
      rows_(std::move(rows)),
      options_(std::move(options)),
      pages_(FactsOf(*report_, options_)),
      warnings_(std::move(warnings)) {
  worker_ = std::thread([this] { Work(); });
}

ReportRun::~ReportRun() {
  cancel_ = true;
  worker_.join();
}

void ReportRun::Work() {
  std::string failure;
  std::vector<std::string> warnings;
  try {
    LayOut(*report_, *rows_, options_, pages_, cancel_, &warnings);
  } catch (const std::bad_alloc&) {
    failure = "There is not enough memory for the report \"" + options_.title + "\".";
  } catch (const std::exception& error) {
    failure = error.what();
  }
  if (!pages_.Finished()) pages_.Finish();
  const std::lock_guard lock(mutex_);
  failure_ = std::move(failure);
  warnings_.insert(warnings_.end(), warnings.begin(), warnings.end());
  ended_ = true;
  changed_.notify_all();
}

std::string ReportRun::Failure() const {
  const std::lock_guard lock(mutex_);
  return failure_;
}

std::string ReportRun::Warnings() const {
  const std::lock_guard lock(mutex_);
  std::string all;
  for (const std::string& warning : warnings_) {
    if (!all.empty()) all += '\n';
    all += warning;
  }
  return all;
}

void ReportRun::WaitForFirstPage() const {
  std::unique_lock lock(mutex_);
  // The store tells nobody of a page; two milliseconds are less than a person notices.
  while (!ended_ && pages_.PageCount() == 0) changed_.wait_for(lock, std::chrono::milliseconds(2));
}

void ReportRun::WaitForEnd() const {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return ended_; });
}

}  // namespace print
