#include "platform/store/TransactionLog.h"

#include <algorithm>
#include <utility>

#include "platform/store/Numbers.h"
#include "platform/store/StoreError.h"

namespace store {

void TransactionLog::Settle() {
  marks_.pop_back();
  if (marks_.empty()) settled_ = changes_.size();
}

bool TransactionLog::Cut() {
  const std::size_t mark = marks_.back();
  marks_.pop_back();
  unstored_.reset();
  const auto first = changes_.begin() + static_cast<std::ptrdiff_t>(mark);
  const bool made = std::any_of(first, changes_.end(), [](const Change& change) { return change.made; });
  changes_.erase(first, changes_.end());
  firstWaiting_ = std::min(firstWaiting_, mark);
  return made;
}

void TransactionLog::Clear() {
  changes_.clear();
  marks_.clear();
  settled_ = 0;
  firstWaiting_ = 0;
  reserved_.clear();
  unstored_.reset();
}

void TransactionLog::ForgetSettled() {
  changes_.erase(changes_.begin(), changes_.begin() + static_cast<std::ptrdiff_t>(settled_));
  for (std::size_t& mark : marks_) mark -= settled_;
  firstWaiting_ -= std::min(firstWaiting_, settled_);
  settled_ = 0;
}

void TransactionLog::Add(Change change) {
  if (change.made && firstWaiting_ == changes_.size()) ++firstWaiting_;
  changes_.push_back(std::move(change));
  if (marks_.empty()) settled_ = changes_.size();
}

void TransactionLog::AddSettled(Change change) {
  firstWaiting_ = std::min(firstWaiting_, settled_);
  changes_.insert(changes_.begin() + static_cast<std::ptrdiff_t>(settled_), std::move(change));
  ++settled_;
  for (std::size_t& mark : marks_) ++mark;
}

void TransactionLog::ReplaceLast(std::shared_ptr<const std::string> sql, std::vector<rt::Value> values) {
  if (changes_.empty()) return;  // a write outside of a transaction is not kept
  changes_.back().sql = std::move(sql);
  changes_.back().values = std::move(values);
}

std::size_t TransactionLog::MakeRun(std::size_t first, std::size_t end, const Maker& maker) {
  std::size_t next = first + 1;
  if (changes_[first].update)
    while (next < end && !changes_[next].made && changes_[next].update == changes_[first].update &&
           KeyOf(changes_[next - 1].values.back()) < KeyOf(changes_[next].values.back()))
      ++next;
  const auto run = std::span(changes_).subspan(first, next - first);
  std::int64_t expected = 0;
  for (const Change& change : run) expected += change.changed;
  if (maker(run) != expected && changes_[first].counted)
    throw StoreError(
        kDataChanged,
        "The data base engine stopped: another user has changed the same data at the same time.");
  for (Change& change : run) change.made = true;
  return next;
}

void TransactionLog::MakeBefore(std::size_t end, const Maker& maker) {
  while (firstWaiting_ < end) {
    if (changes_[firstWaiting_].made)
      ++firstWaiting_;
    else
      firstWaiting_ = MakeRun(firstWaiting_, end, maker);
  }
}

void TransactionLog::Make(const Maker& maker) { MakeBefore(changes_.size(), maker); }

void TransactionLog::MakeSettled(const Maker& maker) { MakeBefore(settled_, maker); }

void TransactionLog::MakeOf(int table, const Maker& maker) {
  for (std::size_t i = firstWaiting_; i < changes_.size();) {
    const bool now = !changes_[i].made && (changes_[i].table == table || changes_[i].table == 0);
    i = now ? MakeRun(i, changes_.size(), maker) : i + 1;
  }
  while (firstWaiting_ < changes_.size() && changes_[firstWaiting_].made) ++firstWaiting_;
}

void TransactionLog::Unmake() {
  for (Change& change : changes_) change.made = false;
  firstWaiting_ = 0;
}

void TransactionLog::Reserve(const std::string& table, std::int64_t id) {
  std::int64_t& highest = reserved_[table];
  highest = std::max(highest, id);
}

void TransactionLog::NoteStored(std::string_view sql) {
  if (unstored_ && (unstored_->empty() || *unstored_ == sql)) unstored_.reset();
}

}  // namespace store
