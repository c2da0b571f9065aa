// Small joined tables, held in memory while the rows of a report are read.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/print/data/QueryText.h"
#include "platform/store/Connection.h"

namespace print {

/// A value as the file has it.
struct HeldCell {
  rt::Value value;
  bool beyond = false;  ///< an amount beyond the range; `value` is Null
};

/// One small table. Each row of the report finds one partner in it at the most.
class Lookup {
 public:
  /// Reads the table, of which the source holds back the fields. False if it is too large to be held,
  /// or if a row could find two partners.
  bool Load(const std::shared_ptr<store::Connection>& connection, QuerySource& source, int table);

  /// The field whose value finds the partner; -1 if all rows have the same one.
  int KeyField() const { return keyField_; }
  /// The fields that it fills.
  const std::vector<int>& Fields() const { return fields_; }
  /// The partner's values in the order of Fields(), or null. `value` is the row's of KeyField().
  const HeldCell* Find(const rt::Value& value) const;

 private:
  /// Makes a key of a value, so that what the file's columns take for equal is equal; false for Null.
  static bool MakeKey(const rt::Value& value, std::string& key);

  int keyField_ = -1;
  std::vector<int> fields_;
  std::unordered_map<std::string, std::size_t> places_;
  std::vector<HeldCell> cells_;
  mutable std::string key_;
};

/// Takes those joined tables out of the query that can be held, which spares the engine a search for each
/// row, and reads them: small ones, in which a row finds one partner at the most.
std::vector<Lookup> HoldSmallTables(const std::shared_ptr<store::Connection>& connection,
                                    const ReportDefinition& report, QuerySource& source);

}  // namespace print
