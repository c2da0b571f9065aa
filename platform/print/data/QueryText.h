// The statement that reads the rows of a report.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/print/data/Pushdown.h"
#include "platform/print/definition/ReportDefinition.h"
#include "platform/store/Schema.h"

namespace print {

/// The tables and columns of one reading. Fields are those of the definition, and behind them those that only
/// a selection, a sort or a key needs.
class QuerySource {
 public:
  /// Holds tables and fields against the file. Throws PrintError, which names what the file lacks.
  QuerySource(const ReportDefinition& report, const store::Schema& schema, const std::string& dataFile);

  /// The place of "Table.Field"; a new place for a field that is in the file and not yet among the fields.
  std::optional<int> PlaceOf(std::string_view name);
  /// The same for the field of another table that a join compares with.
  std::optional<int> PlaceOfJoin(const JoinDefinition& join);
  const std::vector<FieldDefinition>& Fields() const { return fields_; }
  QueryColumn ColumnOf(int field) const;
  std::string ColumnName(int table, const std::string& column) const;
  store::ColumnType TypeOf(int table, const std::string& column) const;

  /// A table that is held in memory, or no longer: its fields are no columns of the query.
  void Hold(int table, bool held) { held_[static_cast<std::size_t>(table)] = held; }
  bool IsHeld(int table) const { return held_[static_cast<std::size_t>(table)]; }
  /// The fields that are columns of the query, in their order there.
  std::vector<int> QueriedFields() const;
  /// "[A].[x], [B].[y]": the columns of QueriedFields.
  std::string ColumnList() const;
  /// Tables and left joins, without the tables that are held.
  std::string From() const;
  /// One table alone, and what joins it.
  std::string OneTable(int table) const;
  enum class Joins { All, ToConstants };
  std::string JoinCondition(int table, Joins which = Joins::All) const;
  /// A field of the file's own for messages: "Vehicles.Model Year".
  std::string ShownName(int field) const;
  const TableDefinition& Table(int table) const { return report_.tables[static_cast<std::size_t>(table)]; }

 private:
  std::optional<int> PlaceOf(int table, const std::string& column);
  const store::ColumnInfo* Find(int table, const std::string& column) const;

  const ReportDefinition& report_;
  const store::Schema& schema_;
  std::vector<FieldDefinition> fields_;
  std::vector<store::ColumnType> types_;
  std::vector<bool> held_;  ///< by table
};

}  // namespace print
