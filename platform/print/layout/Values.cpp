#include "platform/print/layout/Values.h"

namespace print {
namespace {

const rt::Value kNull;

const rt::Value& At(const Row* row, int place) {
  if (row == nullptr || place < 0 || static_cast<std::size_t>(place) >= row->size()) return kNull;
  return (*row)[static_cast<std::size_t>(place)];
}

}  // namespace

const rt::Value& BandValues::Field(int place) const { return At(row_ ? row_.get() : source_.blank, place); }

rt::Value BandValues::Neighbor(int place, int distance) const {
  const std::int64_t other = place_ + distance;
  if (place_ < 0 || other < source_.first || other >= source_.first + source_.count) return rt::Null();
  if (distance == -1 && before_) return At(before_.get(), place);
  if (distance == 1 && after_) return At(after_.get(), place);
  Row row;
  source_.spool->Read(other, row);
  return At(&row, place);
}

rt::Value BandValues::TotalOf(int total) const {
  const auto place = static_cast<std::size_t>(total);
  return total >= 0 && place < totals_.size() ? totals_[place] : rt::Value();
}

int BandValues::PageNumber() const {
  if (!page_) missedPage_ = true;
  return page_.value_or(0);
}

rt::Value BandValues::PageCount() const {
  if (!pages_) {
    missedPageCount_ = true;
    return rt::Null();
  }
  return static_cast<std::int32_t>(*pages_);
}

}  // namespace print
