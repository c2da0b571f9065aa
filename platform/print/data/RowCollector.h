// The rows of one report, as they come from the data file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "platform/print/data/Lookups.h"
#include "platform/print/data/QueryText.h"
#include "platform/print/data/Rows.h"
#include "platform/print/data/SortKeys.h"
#include "platform/print/formula/Formula.h"
#include "platform/store/QueryScan.h"

namespace print {

/// A selection or a key is evaluated for one row by itself.
class RowValues : public FormulaValues {
 public:
  explicit RowValues(rt::DateTime now) : now_(now) {}
  void SetRow(const Row& row) { row_ = &row; }

  const rt::Value& Field(int place) const override { return (*row_)[static_cast<std::size_t>(place)]; }
  rt::Value Neighbor(int, int) const override { return {}; }
  rt::Value TotalOf(int) const override { return {}; }
  bool FirstInGroup(int) const override { return false; }
  bool LastInGroup(int) const override { return false; }
  std::int64_t RowNumber() const override { return 0; }
  int PageNumber() const override { return 0; }
  rt::Value PageCount() const override { return {}; }
  bool Continued() const override { return false; }
  std::string ReportName() const override { return {}; }
  std::string User() const override { return {}; }
  rt::DateTime PrintTime() const override { return now_; }

 private:
  const Row* row_ = nullptr;
  rt::DateTime now_;
};

/// One key of the order: a field, or a formula of the row.
struct RowKey {
  int field = -1;
  Formula formula;  ///< where `field` is -1
  bool descending = false;
};

/// Something that is odd in the data, told once with its number.
struct Oddity {
  std::string subject;  ///< a field, or what could not be done
  std::string first;
  std::int64_t count = 0;
};

/// Checks, tests, spools and orders rows.
class RowCollector {
 public:
  /// `width` is the number of fields that are kept of each row.
  RowCollector(const QuerySource& source, std::size_t width, rt::DateTime now)
      : source_(source),
        width_(width),
        values_(now),
        queried_(source.QueriedFields()),
        row_(source.Fields().size()),
        oddities_(source.Fields().size()) {}

  /// Where each row finds what the query does not have, in this order.
  void LookInto(std::vector<Lookup> lookups) {
    lookups_ = std::move(lookups);
    partners_.assign(lookups_.size(), nullptr);
  }
  void AddTest(const Formula* test) { tests_.push_back(test); }
  /// The order of the rows; what it leaves equal goes by the key of the primary table.
  void OrderBy(std::vector<RowKey> keys) { keys_ = std::move(keys); }
  /// A row of the primary table is shown once, even if a joined table has two rows for it.
  void ShowEachOnce() { once_ = true; }
  /// Collects the values of a field, each once, for a subreport.
  void Collect(int field) { collected_.push_back({field, {}, 0}); }

  void Take(const store::QueriedRow& read);
  /// Rows that were taken and passed.
  std::int64_t Count() const { return spool_->Count(); }
  /// Puts the rows in order. Needs the data file no more.
  std::unique_ptr<ReportRows> Finish();
  /// The values of the nth collected field in their order, without Null.
  const std::vector<rt::Value>& Collected(std::size_t n);
  void Report(std::vector<std::string>* warnings) const;

  /// The value of a column of the query, as the field must have it. A value of another kind gives Null and
  /// notes it.
  rt::Value Checked(const store::QueriedRow& read, int column, int field);

 private:
  struct Collection {
    int field;
    std::vector<rt::Value> values;
    std::size_t sorted;
  };
  rt::Value Fitting(rt::Value value, int field, std::int64_t key);
  void TakePartner(std::size_t lookup, std::int64_t key);
  bool SeenBefore(std::int64_t key);
  bool Passes(std::int64_t key);
  void AddKeys(std::int64_t row);
  static void SortOut(Collection& collection);
  std::string ShownRow(std::int64_t key) const;

  const QuerySource& source_;
  std::size_t width_;
  RowValues values_;
  std::vector<int> queried_;
  std::vector<Lookup> lookups_;
  /// By lookup: the partner whose values the row has, as they are in the file; null where that is not so.
  std::vector<const HeldCell*> partners_;
  std::vector<const Formula*> tests_;
  std::vector<RowKey> keys_;
  SortKeys sortKeys_;
  std::vector<Collection> collected_;
  std::unique_ptr<ReportRows> rows_ = std::make_unique<ReportRows>();
  RowSpool* spool_ = &rows_->rows;
  Row row_;
  bool once_ = false;
  std::vector<bool> seen_;
  std::unordered_set<std::int64_t> seenFar_;
  std::vector<Oddity> oddities_;  ///< by field
  Oddity untested_;
  Oddity doubled_;
};

}  // namespace print
