#include "platform/controls/GridSearch.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <functional>
#include <map>

#include "platform/runtime/Text.h"
#include "platform/store/QueryClauses.h"

namespace ui {
namespace {

using std::chrono::year_month_day;

/// In a longer list, the search does not read the whole file for a row that is not where its value belongs.
constexpr std::int64_t kShortList = 100'000;
constexpr std::size_t kMostRowsRead = 2000;

/// The classes in which the store orders values of different kinds: Null, numbers, texts, pictures.
enum class Rank { Null, Number, Text, Other };

Rank RankOf(const rt::Value& value) {
  switch (value.Type()) {
    case rt::ValueType::Null:
      return Rank::Null;
    case rt::ValueType::Text:
    case rt::ValueType::Date:
      return Rank::Text;
    case rt::ValueType::Binary:
      return Rank::Other;
    default:
      return Rank::Number;
  }
}

double NumberOf(const rt::Value& value) {
  return value.Type() == rt::ValueType::Boolean ? (value.AsBoolean() ? 1 : 0) : value.AsDouble();
}

/// Negative, zero or positive: the value is below, at or above a bound of a span.
int Compare(const rt::Value& value, const std::string& bound, Rank rank) {
  if (RankOf(value) != rank) return RankOf(value) < rank ? -1 : 1;
  if (rank == Rank::Text) return rt::FoldCase(value.AsText()).compare(rt::FoldCase(bound));
  double limit = 0;
  std::from_chars(bound.data(), bound.data() + bound.size(), limit);
  const double number = NumberOf(value);
  return number < limit ? -1 : number > limit ? 1 : 0;
}

bool IsBelow(const rt::Value& value, const Beginning::Span& span, Rank rank) {
  if (span.low.empty()) return RankOf(value) < rank;
  const int order = Compare(value, span.low, rank);
  return order < 0 || (order == 0 && !span.withLow);
}

bool IsAbove(const rt::Value& value, const Beginning::Span& span, Rank rank) {
  if (span.high.empty()) return RankOf(value) > rank;
  const int order = Compare(value, span.high, rank);
  return order > 0 || (order == 0 && !span.withHigh);
}

year_month_day DayOf(const rt::Value& value) {
  const rt::DateTime date = value.AsDate();
  return {std::chrono::year(date.Year()), std::chrono::month(static_cast<unsigned>(date.Month())),
          std::chrono::day(static_cast<unsigned>(date.Day()))};
}

/// A list that is ordered by one of its fields.
class OrderedRows {
 public:
  /// The result of a search. `known` is false if the search gave up.
  struct Answer {
    bool known = false;
    std::optional<std::int64_t> row;
  };

  OrderedRows(ado::Recordset& rows, int field, bool descending)
      : rows_(rows), field_(field), descending_(descending), count_(rows.RecordCount()) {}

  Answer Find(const Beginning& beginning, store::ColumnType type) {
    const store::Reading reading(rows_.ActiveConnection()->Store());
    try {
      return {true, type == store::ColumnType::DateTime ? FindDay(beginning.Dates())
                                                        : FindSpan(beginning.Spans(), type)};
    } catch (const GaveUp&) {
      return {};
    }
  }

 private:
  struct GaveUp {};

  /// The value in a row; empty if another user has deleted it.
  const std::optional<rt::Value>& At(std::int64_t row) {
    const auto known = values_.find(row);
    if (known != values_.end()) return known->second;
    if (values_.size() >= kMostRowsRead) throw GaveUp();
    std::optional<rt::Value> value;
    try {
      rows_.Cursor().MoveTo(row);
      value = rows_.Get(field_);
    } catch (const ado::Error& error) {
      if (error.Native() != store::kRecordDeleted) throw;
    }
    return values_.emplace(row, std::move(value)).first->second;
  }

  std::int64_t SkipDeleted(std::int64_t row, std::int64_t end) {
    while (row < end && !At(row)) ++row;
    return row;
  }

  /// The first row from `begin` on that does not come before the wanted value; the number of rows if there is
  /// none.
  std::int64_t FirstNot(std::int64_t begin, const std::function<bool(const rt::Value&)>& comesBefore) {
    std::int64_t end = count_;
    while (begin < end) {
      const std::int64_t middle = begin + (end - begin) / 2;
      const std::int64_t row = SkipDeleted(middle, end);
      if (row == end || !comesBefore(*At(row)))
        end = middle;
      else
        begin = row + 1;
    }
    return SkipDeleted(begin, count_);
  }

  std::optional<std::int64_t> FindSpan(const std::vector<Beginning::Span>& spans, store::ColumnType type) {
    const bool text = type == store::ColumnType::Text || type == store::ColumnType::Memo;
    const Rank rank = text ? Rank::Text : Rank::Number;
    std::optional<std::int64_t> first;
    for (const auto& span : spans) {
      const std::int64_t row = FirstNot(0, [&](const rt::Value& value) {
        return descending_ ? IsAbove(value, span, rank) : IsBelow(value, span, rank);
      });
      if (row == count_ || (first && *first <= row)) continue;
      const rt::Value& value = *At(row);
      if (!IsBelow(value, span, rank) && !IsAbove(value, span, rank)) first = row;
    }
    return first;
  }

  // After a day that does not match, the search goes on at the next one that could.
  std::optional<std::int64_t> FindDay(const Beginning::Days& days) {
    const auto comesBefore = [&](const rt::Value& value, year_month_day wanted) {
      if (value.Type() != rt::ValueType::Date) {
        if (RankOf(value) == Rank::Text) throw GaveUp();  // not a date, so its place says nothing
        return (RankOf(value) < Rank::Text) != descending_;
      }
      return descending_ ? DayOf(value) > wanted : DayOf(value) < wanted;
    };
    constexpr year_month_day kFirst{std::chrono::year(0), std::chrono::January, std::chrono::day(1)};
    constexpr year_month_day kLast{std::chrono::year(9999), std::chrono::December, std::chrono::day(31)};
    year_month_day wanted = days.Nearest(
        descending_ ? std::min(kLast, {std::chrono::year(days.lastYear), kLast.month(), kLast.day()})
                    : std::max(kFirst, {std::chrono::year(days.firstYear), kFirst.month(), kFirst.day()}),
        descending_);
    for (std::int64_t row = 0; wanted.ok();) {
      row = FirstNot(row, [&](const rt::Value& value) { return comesBefore(value, wanted); });
      if (row == count_ || At(row)->Type() != rt::ValueType::Date) return std::nullopt;
      const year_month_day there = DayOf(*At(row));
      if (days.Hold(there)) return row;
      wanted = days.Nearest(there, descending_);
    }
    return std::nullopt;
  }

  ado::Recordset& rows_;
  int field_;
  bool descending_;
  std::int64_t count_;
  std::map<std::int64_t, std::optional<rt::Value>> values_;
};

/// Whether the list is in descending order of the field; empty if it is not ordered by the field.
std::optional<bool> Descends(Adodc& source, const store::FieldInfo& field) {
  if (source.Sorted())
    return source.SortedBy(field) ? std::optional<bool>(!source.SortsAscending()) : std::nullopt;
  const store::QueryClauses query(source.Query());
  if (query.OrderedBy().empty()) return std::nullopt;
  const auto& first = query.OrderedBy().front();
  const auto is = [&](const std::string& name) { return rt::EqualNoCase(first.column, name); };
  if (!is(store::ColumnReference(field)) && !is("[" + field.column + "]") && !is(field.column))
    return std::nullopt;
  return first.descends;
}

}  // namespace

std::optional<std::int64_t> FirstRowThatBegins(Adodc& source, const store::FieldInfo& field,
                                               const Beginning& beginning) {
  const auto& rows = source.Recordset();
  if (!rows || !beginning.Possible()) return std::nullopt;
  if (const auto descends = Descends(source, field)) {
    const std::int64_t place = rows->Cursor().Position();
    const std::string name = field.table.empty() ? field.name : field.table + "." + field.column;
    OrderedRows ordered(*rows, rows->FieldIndex(name), *descends);
    const auto answer = ordered.Find(beginning, field.type);
    rows->Cursor().MoveTo(place);
    if (answer.known && (answer.row || rows->RecordCount() > kShortList)) return answer.row;
  }
  return FirstRowWhere(source, beginning.Condition());
}

std::optional<std::int64_t> FirstRowWhere(Adodc& source, const std::string& condition) {
  // The list does not have rows that another user has added since; it may have one of the next hits.
  static constexpr int kTried = 8;
  const auto& rows = source.Recordset();
  if (!rows) return std::nullopt;
  const std::int64_t place = rows->Cursor().Position();
  ado::Recordset hits;
  hits.Open(store::QueryClauses(source.Query()).First(kTried, condition), rows->ActiveConnection(),
            ado::adOpenKeyset, ado::adLockReadOnly);
  for (; !hits.AtEnd(); hits.MoveNext()) {
    try {
      rows->SetBookmark(hits.Bookmark());
    } catch (const ado::Error& error) {
      if (error.Native() != store::kRecordDeleted) throw;
      continue;
    }
    const std::int64_t found = rows->Cursor().Position();
    rows->Cursor().MoveTo(place);
    return found;
  }
  return std::nullopt;
}

}  // namespace ui
