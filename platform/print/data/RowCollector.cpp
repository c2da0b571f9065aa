#include "platform/print/data/RowCollector.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "platform/print/formula/ValueRules.h"
#include "platform/runtime/Letters.h"

namespace print {
namespace {

void Note(Oddity& oddity, const std::string& first) {
  if (oddity.count++ == 0) oddity.first = first;
}

/// The beginning of a value for a message.
std::string Beginning(const rt::Value& value) {
  constexpr std::size_t kMostBytes = 40;
  std::string text = JoinedText(value);
  if (text.size() <= kMostBytes) return "\"" + text + "\"";
  std::size_t end = kMostBytes;
  while (end > 0 && rt::IsContinuation(text[end])) --end;
  return "\"" + text.substr(0, end) + "...\"";
}

bool Fits(const rt::Value& value, ValueKind kind) {
  if (KindOf(value.Type()) != kind) return false;
  return kind != ValueKind::Number || std::isfinite(value.AsDouble());
}

}  // namespace

std::string RowCollector::ShownRow(std::int64_t key) const {
  return "the row with the ID " + std::to_string(key) + " of " + source_.Table(0).name;
}

rt::Value RowCollector::Checked(const store::QueriedRow& read, int column, int field) {
  rt::Value value;
  try {
    value = read.Value(column);
  } catch (const rt::Error&) {
    Note(oddities_[static_cast<std::size_t>(field)], "beyond the range in " + ShownRow(read.Key()));
    return rt::Null{};
  }
  return Fitting(std::move(value), field, read.Key());
}

rt::Value RowCollector::Fitting(rt::Value value, int field, std::int64_t key) {
  if (value.IsNull()) return value;
  const auto place = static_cast<std::size_t>(field);
  const ValueKind kind = KindOf(source_.Fields()[place].type);
  // Of a picture a report only knows that there is one.
  if (kind == ValueKind::Binary) return rt::Binary{};
  if (Fits(value, kind)) return value;
  const bool number = KindOf(value.Type()) == ValueKind::Number;
  if (kind == ValueKind::Text && number) return value.AsText();
  Note(oddities_[place], Beginning(value) + " in " + ShownRow(key));
  return rt::Null{};
}

void RowCollector::TakePartner(std::size_t lookup, std::int64_t key) {
  const Lookup& held = lookups_[lookup];
  const HeldCell* cells =
      held.Find(held.KeyField() < 0 ? rt::Value() : row_[static_cast<std::size_t>(held.KeyField())]);
  if (cells && cells == partners_[lookup]) return;
  bool odd = false;
  for (std::size_t i = 0; i < held.Fields().size(); ++i) {
    const int field = held.Fields()[i];
    auto& value = row_[static_cast<std::size_t>(field)];
    if (!cells) {
      value = rt::Null{};
      continue;
    }
    if (cells[i].beyond) {
      Note(oddities_[static_cast<std::size_t>(field)], "beyond the range in " + ShownRow(key));
      value = rt::Null{};
    } else {
      value = Fitting(cells[i].value, field, key);
    }
    odd = odd || cells[i].beyond || value != cells[i].value;
  }
  // What is odd counts for each row.
  partners_[lookup] = odd ? nullptr : cells;
}

bool RowCollector::SeenBefore(std::int64_t key) {
  constexpr std::int64_t kMostNear = 100'000'000;
  if (key < 0 || key >= kMostNear) return !seenFar_.insert(key).second;
  const auto place = static_cast<std::size_t>(key);
  if (place >= seen_.size()) seen_.resize(std::max(place + 1, seen_.size() * 2));
  const bool before = seen_[place];
  seen_[place] = true;
  return before;
}

bool RowCollector::Passes(std::int64_t key) {
  try {
    return std::all_of(tests_.begin(), tests_.end(),
                       [&](const Formula* test) { return test->Holds(values_); });
  } catch (const PrintError& error) {
    Note(untested_, ShownRow(key) + ": " + error.what());
    return false;
  }
}

void RowCollector::AddKeys(std::int64_t row) {
  sortKeys_.BeginRow();
  for (const auto& key : keys_) {
    try {
      sortKeys_.Add(
          key.field >= 0 ? row_[static_cast<std::size_t>(key.field)] : key.formula.Evaluate(values_),
          key.descending);
    } catch (const PrintError& error) {
      sortKeys_.Add(rt::Null{}, key.descending);
      Note(untested_, ShownRow(row) + ": " + error.what());
    }
  }
  // Keys of rows fit into a Double.
  sortKeys_.Add(static_cast<double>(row), false);
}

void RowCollector::Take(const store::QueriedRow& read) {
  for (std::size_t i = 0; i < queried_.size(); ++i)
    row_[static_cast<std::size_t>(queried_[i])] = Checked(read, static_cast<int>(i), queried_[i]);
  for (std::size_t i = 0; i < lookups_.size(); ++i) TakePartner(i, read.Key());
  values_.SetRow(row_);
  if (!Passes(read.Key())) return;
  if (once_ && SeenBefore(read.Key())) return Note(doubled_, ShownRow(read.Key()));
  AddKeys(read.Key());
  for (auto& collection : collected_) {
    const auto& value = row_[static_cast<std::size_t>(collection.field)];
    if (value.IsNull() || (!collection.values.empty() && SameKey(collection.values.back(), value))) continue;
    collection.values.push_back(value);
    constexpr std::size_t kFew = 10'000;
    if (collection.values.size() > collection.sorted * 2 + kFew) SortOut(collection);
  }
  spool_->Append(std::span(row_).first(width_));
}

void RowCollector::SortOut(Collection& collection) {
  auto& values = collection.values;
  std::sort(values.begin(), values.end(), [](const auto& a, const auto& b) { return SortOrder(a, b) < 0; });
  values.erase(std::unique(values.begin(), values.end(), SameKey), values.end());
  collection.sorted = values.size();
}

const std::vector<rt::Value>& RowCollector::Collected(std::size_t n) {
  SortOut(collected_[n]);
  return collected_[n].values;
}

std::unique_ptr<ReportRows> RowCollector::Finish() {
  auto order = sortKeys_.Order();
  sortKeys_ = {};
  if (!order.empty()) spool_->Arrange(std::move(order));
  return std::move(rows_);
}

void RowCollector::Report(std::vector<std::string>* warnings) const {
  if (!warnings) return;
  const auto many = [](std::int64_t count, const std::string& one, const std::string& several) {
    return std::to_string(count) + " " + (count == 1 ? one : several);
  };
  for (std::size_t i = 0; i < oddities_.size(); ++i) {
    const auto& odd = oddities_[i];
    if (odd.count == 0) continue;
    warnings->push_back(many(odd.count, "value of ", "values of ") + source_.ShownName(static_cast<int>(i)) +
                        " cannot be read as " + std::string(KindName(KindOf(source_.Fields()[i].type))) +
                        " and " + (odd.count == 1 ? "is" : "are") + " left blank; the first is " + odd.first +
                        ".");
  }
  if (untested_.count > 0)
    warnings->push_back(many(untested_.count, "row", "rows") +
                        " could not be tested or ordered; the first is " + untested_.first);
  if (doubled_.count > 0)
    warnings->push_back(many(doubled_.count, "row was", "rows were") +
                        " found more than once, because a joined table has several rows for it, and " +
                        (doubled_.count == 1 ? "is" : "are") + " shown once; the first is " + doubled_.first +
                        ".");
}

}  // namespace print
