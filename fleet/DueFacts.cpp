#include "fleet/DueFacts.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <tuple>
#include <utility>

#include "platform/runtime/Letters.h"
#include "platform/store/TableScan.h"

namespace dw {
namespace {

using store::ColumnType;
using store::ScannedRecord;
using Cell = ScannedRecord::Cell;

/// Up to this number a Double can represent every whole number.
constexpr std::int64_t kLargestExact = std::int64_t{1} << 53;

bool FitsLong(std::int64_t number) {
  return number >= std::numeric_limits<std::int32_t>::min() &&
         number <= std::numeric_limits<std::int32_t>::max();
}

/// Texts in the file compare without regard to the case of A to Z.
void FoldCase(std::string_view text, std::string& folded) {
  folded.assign(text);
  for (char& c : folded) c = rt::FoldLetter(c);
}

/// An apostrophe ends the text in the query, and a NUL ends the comparison of two texts.
bool CanBeAskedFor(std::string_view code) {
  return code.find('\'') == std::string_view::npos && code.find('\0') == std::string_view::npos;
}

/// A column that may be Null. `proper` is false if the value is not of the column's kind.
template <class T>
struct Read {
  bool proper = true;
  std::optional<T> value;
};

Read<std::int32_t> LongOf(const ScannedRecord& record, int column) {
  const Cell cell = record.CellOf(column);
  if (cell == Cell::Null) return {};
  if (cell != Cell::Whole || !FitsLong(record.Whole(column))) return {.proper = false, .value = {}};
  return {.proper = true, .value = static_cast<std::int32_t>(record.Whole(column))};
}

Read<double> MileageOf(const ScannedRecord& record, int column) {
  switch (record.CellOf(column)) {
    case Cell::Null:
      return {};
    case Cell::Real:
      return {.proper = true, .value = record.Real(column)};
    case Cell::Whole:
      if (std::abs(record.Real(column)) <= static_cast<double>(kLargestExact))
        return {.proper = true, .value = record.Real(column)};
      break;
    default:
      break;
  }
  return {.proper = false, .value = {}};
}

/// Dates in the file's own form sort as texts in the order of time. Any other text does not.
Read<std::int64_t> DateOf(const ScannedRecord& record, int column) {
  const Cell cell = record.CellOf(column);
  if (cell == Cell::Null) return {};
  constexpr std::size_t kWithTime = 19;
  if (cell == Cell::Text && record.Text(column).size() == kWithTime) {
    if (const auto date = rt::DateTime::FromIso(record.Text(column)))
      return {.proper = true, .value = date->Time().time_since_epoch().count()};
  }
  return {.proper = false, .value = {}};
}

std::optional<float> AsSingle(const std::optional<double>& mileage) {
  if (!mileage) return std::nullopt;
  return static_cast<float>(*mileage);
}

template <class T>
rt::Value OrNull(const std::optional<T>& value) {
  return value ? rt::Value(*value) : rt::Value();
}

}  // namespace

DueFacts::DueFacts(const std::shared_ptr<store::Connection>& connection) {
  if (!LaidOutAsExpected(*connection)) {
    unknowable_ = true;
    return;
  }
  // The codes come first: an asset that gets the code of another one during the pass is not among them.
  ReadCodes(connection);
  ReadTypes(connection);
  ReadSchedule(connection);
  ReadTransactions(connection);
  ReadReadings(connection);
}

bool DueFacts::LaidOutAsExpected(store::Connection& connection) {
  struct Expected {
    const char* table;
    std::vector<std::pair<const char*, ColumnType>> columns;
  };
  static const Expected kExpected[] = {
      {"Vehicles", {{"Asset ID", ColumnType::Text}}},
      {"Maintenance Types", {{"ID", ColumnType::Counter}, {"Description", ColumnType::Text}}},
      {"Maintenance Schedule",
       {{"Asset ID", ColumnType::Text},
        {"Type ID", ColumnType::Long},
        {"Monthly Frequently", ColumnType::Long},
        {"Usage Frequency", ColumnType::Long}}},
      {"Maintenance_Performed",
       {{"Maintenance_Entry_ID", ColumnType::Long}, {"Maintenance_Type_ID", ColumnType::Long}}},
      {"Maintenance Transactions",
       {{"ID", ColumnType::Counter},
        {"Asset ID", ColumnType::Text},
        {"Transaction Date", ColumnType::DateTime},
        {"Mileage", ColumnType::Single}}},
      {"Odometer Entries",
       {{"Asset ID", ColumnType::Text}, {"Date", ColumnType::DateTime}, {"Mileage", ColumnType::Single}}}};
  const auto schema = connection.Tables();
  return std::all_of(std::begin(kExpected), std::end(kExpected), [&](const Expected& expected) {
    const store::TableInfo* table = schema->Find(expected.table);
    return table && std::all_of(expected.columns.begin(), expected.columns.end(), [&](const auto& column) {
             const int at = table->Find(column.first);
             return at >= 0 && table->columns[static_cast<std::size_t>(at)].type == column.second;
           });
  });
}

// --- the pass

void DueFacts::ReadCodes(const std::shared_ptr<store::Connection>& connection) {
  store::ScanTable(connection, "Vehicles", {"Asset ID"}, [this](const ScannedRecord& record) {
    // An asset without a code is looked up by the empty text. One whose code is not a text stays unknown.
    const Cell cell = record.CellOf(0);
    if (cell != Cell::Null && cell != Cell::Text) return;
    const std::string_view code = record.Text(0);
    if (!CanBeAskedFor(code)) return;
    FoldCase(code, folded_);
    if (places_.emplace(folded_, static_cast<std::int32_t>(assets_.size())).second) assets_.emplace_back();
  });
}

void DueFacts::ReadTypes(const std::shared_ptr<store::Connection>& connection) {
  store::ScanTable(connection, "Maintenance Types", {"Description"}, [this](const ScannedRecord& record) {
    const Cell cell = record.CellOf(0);
    if (!FitsLong(record.Key()) || (cell != Cell::Null && cell != Cell::Text))
      unknowable_ = true;
    else
      types_[static_cast<std::int32_t>(record.Key())] = record.Text(0);
  });
}

void DueFacts::ReadSchedule(const std::shared_ptr<store::Connection>& connection) {
  store::ScanTable(
      connection, "Maintenance Schedule", {"Asset ID", "Type ID", "Monthly Frequently", "Usage Frequency"},
      [this](const ScannedRecord& record) {
        Asset* asset = record.CellOf(0) == Cell::Text ? Find(record.Text(0)) : nullptr;
        if (!asset) return;
        const auto type = LongOf(record, 1);
        const auto months = LongOf(record, 2);
        const auto usage = LongOf(record, 3);
        if (!type.proper || !months.proper || !usage.proper) asset->odd = true;
        const auto place = static_cast<std::int32_t>(lines_.size());
        (asset->lastLine == kNone ? asset->firstLine
                                  : lines_[static_cast<std::size_t>(asset->lastLine)].nextLine) = place;
        asset->lastLine = place;
        Line& line = lines_.emplace_back();
        line.typeID = type.value.value_or(0);
        line.hasType = type.value.has_value();
        line.months = months.value;
        line.usage = usage.value;
      });
}

std::vector<DueFacts::Performed> DueFacts::ReadPerformed(
    const std::shared_ptr<store::Connection>& connection) {
  std::vector<Performed> performed;
  store::ScanTable(
      connection, "Maintenance_Performed", {"Maintenance_Entry_ID", "Maintenance_Type_ID"},
      [&](const ScannedRecord& record) {
        // A value that is not a whole number equals no ID.
        if (record.CellOf(0) != Cell::Whole || record.CellOf(1) != Cell::Whole) return;
        const std::int64_t type = record.Whole(1);
        if (!FitsLong(type)) return;
        if (!FitsLong(record.Whole(0)) || !FitsLong(record.Key())) {
          unknowable_ = true;
          return;
        }
        performed.push_back({static_cast<std::int32_t>(record.Whole(0)),
                             static_cast<std::int32_t>(record.Key()), static_cast<std::int32_t>(type)});
      });
  const auto byTransaction = [](const Performed& a, const Performed& b) {
    return std::tie(a.transaction, a.key) < std::tie(b.transaction, b.key);
  };
  if (!std::is_sorted(performed.begin(), performed.end(), byTransaction))
    std::sort(performed.begin(), performed.end(), byTransaction);
  return performed;
}

void DueFacts::ReadTransactions(const std::shared_ptr<store::Connection>& connection) {
  const std::vector<Performed> performed = ReadPerformed(connection);
  auto next = performed.begin();
  store::ScanTable(connection, "Maintenance Transactions", {"Asset ID", "Transaction Date", "Mileage"},
                   [&](const ScannedRecord& record) {
                     while (next != performed.end() && next->transaction < record.Key()) ++next;
                     if (record.CellOf(0) != Cell::Text) return;
                     Asset* asset = Find(record.Text(0));
                     if (!asset) return;
                     const auto mileage = MileageOf(record, 2);
                     const bool highest = mileage.value && *mileage.value > asset->highestMileage;
                     const bool done = next != performed.end() && next->transaction == record.Key();
                     if (!mileage.proper) asset->odd = true;
                     if (!highest && !done) return;

                     const auto date = DateOf(record, 1);
                     if (!date.proper) asset->odd = true;
                     const Moment moment = date.value.value_or(kNoDate);
                     if (highest) {
                       asset->highestMileage = *mileage.value;
                       asset->highestDate = moment;
                     }
                     for (; next != performed.end() && next->transaction == record.Key(); ++next)
                       NotePerformed(*asset, *next, moment, AsSingle(mileage.value));
                   });
}

void DueFacts::NotePerformed(Asset& asset, const Performed& performed, Moment date,
                             std::optional<float> mileage) {
  for (std::int32_t at = asset.firstLine; at != kNone;) {
    Line& line = lines_[static_cast<std::size_t>(at)];
    at = line.nextLine;
    if (line.typeID != performed.type) continue;
    const bool counts = !line.performed || date > line.performedDate ||
                        (date == line.performedDate && performed.key < line.performedKey);
    if (!counts) continue;
    line.performed = true;
    line.performedKey = performed.key;
    line.performedDate = date;
    line.performedMileage = mileage;
  }
}

void DueFacts::ReadReadings(const std::shared_ptr<store::Connection>& connection) {
  store::ScanTable(connection, "Odometer Entries", {"Asset ID", "Date", "Mileage"},
                   [this](const ScannedRecord& record) {
                     Asset* asset = record.CellOf(0) == Cell::Text ? Find(record.Text(0)) : nullptr;
                     if (!asset) return;
                     const auto date = DateOf(record, 1);
                     const auto mileage = MileageOf(record, 2);
                     if (!date.proper || !mileage.proper) asset->odd = true;
                     const Moment moment = date.value.value_or(kNoDate);
                     if (asset->hasReading && moment <= asset->readingDate) return;
                     asset->hasReading = true;
                     asset->readingDate = moment;
                     asset->readingMileage = AsSingle(mileage.value);
                   });
}

// --- the facts

rt::Value DueFacts::DateValue(Moment moment) {
  if (moment == kNoDate) return {};
  return rt::DateTime(std::chrono::local_seconds(std::chrono::seconds(moment)));
}

DueFacts::Asset* DueFacts::Find(std::string_view code) {
  FoldCase(code, folded_);
  const auto found = places_.find(folded_);
  return found == places_.end() ? nullptr : &assets_[static_cast<std::size_t>(found->second)];
}

bool DueFacts::Know(const std::string& assetID) {
  if (unknowable_) return false;
  const Asset* asset = Find(assetID);
  return asset && !asset->odd;
}

std::optional<DatedMileage> DueFacts::NewestReading(const std::string& assetID) {
  const Asset& asset = *Find(assetID);
  if (!asset.hasReading) return std::nullopt;
  return DatedMileage{DateValue(asset.readingDate), OrNull(asset.readingMileage)};
}

std::optional<DatedMileage> DueFacts::HighestTransaction(const std::string& assetID) {
  const Asset& asset = *Find(assetID);
  if (asset.highestMileage <= 0) return std::nullopt;
  return DatedMileage{DateValue(asset.highestDate), static_cast<float>(asset.highestMileage)};
}

bool DueFacts::ForEachLine(const std::string& assetID, const std::function<void(const DueLine&)>& look) {
  const Asset& asset = *Find(assetID);
  for (std::int32_t at = asset.firstLine; at != kNone;) {
    const Line& line = lines_[static_cast<std::size_t>(at)];
    at = line.nextLine;
    const auto type = line.hasType ? types_.find(line.typeID) : types_.end();
    look({line.typeID, type == types_.end() ? std::string() : type->second, OrNull(line.months),
          OrNull(line.usage)});
  }
  return asset.firstLine != kNone;
}

std::optional<DatedMileage> DueFacts::LastPerformance(const std::string& assetID, const DueLine& line) {
  for (std::int32_t at = Find(assetID)->firstLine; at != kNone;) {
    const Line& kept = lines_[static_cast<std::size_t>(at)];
    at = kept.nextLine;
    if (kept.typeID != line.typeID) continue;
    if (!kept.performed) break;
    return DatedMileage{DateValue(kept.performedDate), OrNull(kept.performedMileage)};
  }
  return std::nullopt;
}

}  // namespace dw
