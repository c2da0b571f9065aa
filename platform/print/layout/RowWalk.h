// The rows of a report in their order, with the groups that begin and end at each.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/print/definition/ReportDefinition.h"
#include "platform/print/layout/Values.h"

namespace print {

/// Tells a fault that costs one cell or one row.
using Warn = std::function<void(const std::string& kind, const std::string& text)>;

/// Walks over rows with one row of foresight, so that a group's end is known while its last row is current:
/// footers see the row and the sums that they belong to.
class RowWalk {
 public:
  /// Begins at `start`, which must lie in the source. `begins` is the outermost group that begins with the
  /// first row.
  RowWalk(const ReportDefinition& report, const RunFacts& run, const RowSource& source, std::int64_t start,
          int begins, const Warn& warn);

  /// Moves to the next row; false after the last.
  bool Next();
  std::int64_t Place() const { return place_; }
  const std::shared_ptr<const Row>& Current() const { return current_; }
  /// The rows around it, where the walk knows them.
  const std::shared_ptr<const Row>& Previous() const { return previous_; }
  std::shared_ptr<const Row> Following() const { return next_; }
  /// The outermost group that begins with the current row; the number of groups if none does.
  int Begins() const { return begins_; }
  /// The outermost group that ends with the current row; the number of groups if none does.
  int Ends() const { return ends_; }
  /// The key of a group in the current row.
  const rt::Value& Key(int group) const { return keys_[static_cast<std::size_t>(group)]; }

 private:
  void Load(std::int64_t place);

  const ReportDefinition& report_;
  const RunFacts& run_;
  RowSource source_;
  Warn warn_;
  std::int64_t place_;
  int firstBegins_;
  int begins_ = 0;
  int ends_ = 0;
  std::shared_ptr<const Row> previous_;
  std::shared_ptr<const Row> current_;
  std::shared_ptr<Row> next_;
  std::vector<rt::Value> keys_;
  std::vector<rt::Value> nextKeys_;
};

}  // namespace print
