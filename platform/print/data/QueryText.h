// The statement that reads the rows of a report.
#pragma once

#include <functional>
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
  const std::vector<FieldDefinition>& Fields() const { return fields_; }
  QueryColumn ColumnOf(int field) const;
  /// "[A].[x], [B].[y]".
  std::string ColumnList() const;
  /// Tables and left joins.
  std::string From() const;
  /// One table alone, and what joins it.
  std::string OneTable(int table) const;
  std::string JoinCondition(int table) const;
  /// A field of the file's own for messages: "Vehicles.Model Year".
  std::string ShownName(int field) const;
  const TableDefinition& Table(int table) const { return report_.tables[static_cast<std::size_t>(table)]; }

 private:
  std::string ColumnName(int table, const std::string& column) const;
  const store::ColumnInfo* Find(int table, const std::string& column) const;

  const ReportDefinition& report_;
  const store::Schema& schema_;
  std::vector<FieldDefinition> fields_;
  std::vector<store::ColumnType> types_;
};

}  // namespace print
