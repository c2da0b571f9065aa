#include "platform/print/layout/Totals.h"

#include "platform/print/formula/ValueRules.h"
#include "platform/runtime/Letters.h"

namespace print {
void Accumulator::Add(const rt::Value& value) {
  if (value.IsNull()) return;
  switch (kind_) {
    case TotalKind::Sum:
    case TotalKind::Average:
    case TotalKind::Running:
    case TotalKind::Percent:
      kept_ = AddToTotal(kept_, value);
      break;
    case TotalKind::Count:
      break;
    case TotalKind::DistinctCount:
      distinct_.insert(rt::FoldCase(value.Shown()));
      break;
    case TotalKind::Minimum:
      if (count_ == 0 || SortOrder(value, kept_) < 0) kept_ = value;
      break;
    case TotalKind::Maximum:
      if (count_ == 0 || SortOrder(value, kept_) > 0) kept_ = value;
      break;
    case TotalKind::First:
      if (count_ == 0) kept_ = value;
      break;
    case TotalKind::Last:
      kept_ = value;
      break;
  }
  ++count_;
}

rt::Value Accumulator::Result() const {
  switch (kind_) {
    case TotalKind::Sum:
    case TotalKind::Running:
    case TotalKind::Percent:
      return count_ == 0 ? rt::Value(std::int32_t{0}) : kept_;
    case TotalKind::Average:
      if (count_ == 0) return rt::Null();
      if (kept_.Type() == rt::ValueType::Currency)
        return rt::Currency::RoundedToEven(kept_.AsDouble() / static_cast<double>(count_));
      return kept_.AsDouble() / static_cast<double>(count_);
    case TotalKind::Count:
      return static_cast<std::int32_t>(count_);
    case TotalKind::DistinctCount:
      return static_cast<std::int32_t>(distinct_.size());
    default:
      return kept_;
  }
}

void Accumulator::Reset() { *this = Accumulator(kind_); }

bool SameArgument(const FormulaNode* a, const FormulaNode* b) {
  if (a == b) return true;
  return a != nullptr && b != nullptr && a->kind == NodeKind::Field && b->kind == NodeKind::Field &&
         a->place == b->place;
}

int TotalsPlan::Require(const Total& total, TotalKind kind, int level, bool ahead) {
  int same = -1;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    Entry& entry = entries_[i];
    if (!SameArgument(entry.total->argument.get(), total.argument.get())) continue;
    if (same < 0) same = static_cast<int>(i);
    if (entry.kind == kind && entry.level == level) {
      entry.ahead = entry.ahead || ahead;
      return static_cast<int>(i);
    }
  }
  entries_.push_back({&total, kind, level, ahead, same});
  return static_cast<int>(entries_.size()) - 1;
}

bool TotalsPlan::NeedsAhead(int level) const {
  for (const Entry& entry : entries_)
    if (entry.ahead && entry.level == level) return true;
  return false;
}

bool TotalsPlan::HasPageTotals() const {
  for (const Entry& entry : entries_)
    if (entry.level < kReportLevel) return true;
  return false;
}

TotalsBook::TotalsBook(const TotalsPlan& plan) : plan_(plan) {
  for (const TotalsPlan::Entry& entry : plan.Entries()) sums_.emplace_back(entry.kind);
  ahead_.resize(sums_.size());
}

void TotalsBook::Add(const RowValues& values, int fromLevel, int toLevel,
                     const std::function<void(std::size_t, const rt::Error&)>& refused) {
  for (std::size_t i = 0; i < sums_.size() && i < values.size(); ++i) {
    const int level = plan_.Entries()[i].level;
    if (level < fromLevel || level > toLevel) continue;
    try {
      sums_[i].Add(values[i]);
    } catch (const rt::Error& error) {
      refused(i, error);
    }
  }
}

void TotalsBook::Reset(int level) {
  for (std::size_t i = 0; i < sums_.size(); ++i)
    if (plan_.Entries()[i].level == level) sums_[i].Reset();
}

rt::Value TotalsBook::One(int accumulator, bool ahead) const {
  const auto place = static_cast<std::size_t>(accumulator);
  return ahead ? ahead_[place] : sums_[place].Result();
}

rt::Value TotalsBook::Value(const TotalUse& use, const RowValues& row) const {
  if (use.divisor < 0) return One(use.accumulator, use.ahead);
  const auto place = static_cast<std::size_t>(use.accumulator);
  rt::Value part;
  if (!use.ownRow) {
    part = One(use.accumulator, use.ahead);
  } else if (place < row.size()) {
    part = row[place];
  }
  const rt::Value whole = One(use.divisor, use.divisorAhead);
  if (part.IsNull() || whole.IsNull() || whole.AsDouble() == 0) return rt::Null();
  return part.AsDouble() / whole.AsDouble();
}

void TotalsBook::TakeAhead(const TotalsBook& scanned, int level) {
  for (std::size_t i = 0; i < sums_.size(); ++i)
    if (plan_.Entries()[i].level == level) ahead_[i] = scanned.sums_[i].Result();
}

}  // namespace print
