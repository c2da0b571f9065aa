#include "platform/print/layout/RowWalk.h"

#include "platform/print/formula/ValueRules.h"

namespace print {

RowWalk::RowWalk(const ReportDefinition& report, const RunFacts& run, const RowSource& source,
                 std::int64_t start, int begins, const Warn& warn)
    : report_(report), run_(run), source_(source), warn_(warn), place_(start - 1), firstBegins_(begins) {
  Load(start);
}

void RowWalk::Load(std::int64_t place) {
  next_.reset();
  if (place >= source_.first + source_.count) return;
  next_ = std::make_shared<Row>();
  source_.spool->Read(place, *next_);
  BandValues values(run_, source_);
  values.SetRow(place, next_);
  nextKeys_.assign(report_.groups.size(), rt::Value());
  for (std::size_t i = 0; i < report_.groups.size(); ++i) {
    try {
      nextKeys_[i] = report_.groups[i].key.Evaluate(values);
    } catch (const rt::Error& error) {
      warn_("key " + report_.groups[i].keyText, "Row " + std::to_string(place + 1) + ", group by " +
                                                    report_.groups[i].keyText + ": " + error.what());
    }
  }
}

bool RowWalk::Next() {
  if (!next_) return false;
  const int groups = static_cast<int>(report_.groups.size());
  begins_ = current_ ? ends_ : firstBegins_;
  previous_ = std::move(current_);
  current_ = next_;
  keys_ = nextKeys_;
  ++place_;
  Load(place_ + 1);
  ends_ = 0;
  if (next_)
    while (ends_ < groups &&
           SameKey(keys_[static_cast<std::size_t>(ends_)], nextKeys_[static_cast<std::size_t>(ends_)]))
      ++ends_;
  return true;
}

}  // namespace print
