// From the syntax of a query to its parts in the file's SQL.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/store/DialectEmitter.h"

namespace store::dialect {

/// Fills the parts of a Select.
class QueryTranslator {
 public:
  QueryTranslator(const Schema& schema, const Spelling& spelled, std::string_view key)
      : scope_(schema), spelled_(spelled), emitter_(scope_, spelled, key), key_(key) {}
  void Translate(const Query& query, Translation& result);
  /// The values of the columns, in order, for an Insert that stores them.
  const std::vector<Fragment>& Values() const { return values_; }

 private:
  std::string Sources(const Source& source);
  std::string Join(const Source& source);
  void Items(const Query& query, Translation& result);
  void Star(const SelectItem& item, Translation& result);
  void Item(const SelectItem& item, Translation& result);
  void NameDoubles(Translation& result) const;
  void Groups(const Query& query, Translation& result);
  void Order(const Query& query, Translation& result);
  const Expr* Aliased(const Query& query, const Expr& expr) const;
  void CheckColumns(std::size_t place) const;

  Scope scope_;
  const Spelling& spelled_;
  Emitter emitter_;
  std::string_view key_;
  std::vector<Fragment> values_;
  std::vector<bool> named_;  // by AS, so that the name stays
  bool totals_ = false;
};

}  // namespace store::dialect
