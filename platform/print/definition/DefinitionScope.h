// What names mean in one definition: tables, fields, named formulas, groups.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/print/definition/ElementReader.h"
#include "platform/print/definition/ReportDefinition.h"
#include "platform/store/Schema.h"

namespace print {

/// The type of values of a column.
rt::ValueType TypeOfColumn(store::ColumnType type);

/// The table of the report that answers to this name: an alias first, then a table's own name; without regard
/// to case. -1 if there is none.
int FindTable(const std::vector<TableDefinition>& tables, std::string_view name);

/// A named formula, read when it is first asked for, so that formulas may stand in any order.
struct NamedText {
  std::string name;
  std::string text;
  const SourcedText* source = nullptr;  ///< null for a text that a run put in
  Place place;                          ///< of the element
};

class DefinitionScope : public FormulaScope {
 public:
  /// Without a schema, any column of a table of the report is taken.
  DefinitionScope(ReportDefinition& report, const store::Schema* schema, Faults& faults)
      : report_(report), schema_(schema), faults_(faults) {}

  /// The group keys as the file writes them, from the outermost inwards.
  void SetGroups(std::vector<std::string> keys) { groups_ = std::move(keys); }
  void Define(NamedText text) { named_.push_back({std::move(text), {}, State::Unread}); }
  /// Whether a formula of this name is there already.
  bool Knows(std::string_view name) const;
  /// Reads all named formulas into the report.
  void ReadAll();

  std::optional<int> FieldPlace(std::string_view name) const override;
  rt::ValueType FieldType(int place) const override;
  std::shared_ptr<const FormulaNode> NamedFormula(std::string_view name) const override;
  std::optional<int> GroupOf(std::string_view key) const override;

 private:
  enum class State { Unread, Reading, Read, Faulty };
  struct Named {
    NamedText text;
    Formula formula;
    State state;
  };
  void Read(Named& named) const;

  ReportDefinition& report_;
  const store::Schema* schema_;
  Faults& faults_;
  std::vector<std::string> groups_;
  // Reading a formula reads those that it uses.
  mutable std::vector<Named> named_;
  mutable std::vector<std::string> chain_;
};

}  // namespace print
