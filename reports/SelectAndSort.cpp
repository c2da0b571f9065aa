#include "reports/SelectAndSort.h"

#include "data/BrackenfelGlobals.h"
#include "data/FailureBox.h"
#include "data/GenericDAO.h"
#include "data/GenericTools.h"
#include "platform/screen/Screen.h"
#include "reports/DWGlobals.h"
#include "reports/Literals.h"

namespace dw {
namespace {

std::string TextOf(ado::Recordset& row, const char* column) {
  const rt::Value value = row.Get(column);
  return value.IsNull() ? std::string() : value.AsText();
}

/// A connection to the definitions, closed at the end of its life.
class Definitions {
 public:
  Definitions() { open_ = AdoOpenConnection(connection_, SandsConnect, false); }
  ~Definitions() { CloseObject(connection_); }
  Definitions(const Definitions&) = delete;
  Definitions& operator=(const Definitions&) = delete;
  const AdoConnectionPtr& Connection() const { return connection_; }

  /// Reads the rows of a query that belong to this definition. False after a failure, which has been
  /// reported.
  template <class Row>
  bool Each(const std::string& table, std::int32_t queryID, Row row) const {
    if (!open_) return false;
    AdoRecordsetPtr rows = AdoOpenRecordset(
        connection_, "SELECT * FROM [" + table + "] WHERE [Query ID] = " + std::to_string(queryID));
    if (!rows) return false;
    const bool read = Done([&] {
      for (; !rows->AtEnd() && rows->Get("Query ID").AsLong() == queryID; rows->MoveNext()) row(*rows);
    });
    CloseObject(rows);
    return read;
  }
  AdoRecordsetPtr Query(std::int32_t queryID, int lock) const {
    if (!open_) return nullptr;
    return AdoOpenRecordset(connection_,
                            "SELECT * FROM [Select and Sort Queries] WHERE [ID] = " + std::to_string(queryID),
                            ado::adOpenKeyset, lock);
  }

 private:
  AdoConnectionPtr connection_;
  bool open_ = false;
};

SelectionLine LineOf(ado::Recordset& row) {
  const rt::Value ask = row.Get("Get Value at Runtime");
  return {.table = TextOf(row, "Table Name"),
          .field = TextOf(row, "Field Name"),
          .comparison = TextOf(row, "Comparison Operator"),
          .value = TextOf(row, "Value"),
          .connector = TextOf(row, "Connector"),
          .open = TextOf(row, "Open Parentheses"),
          .close = TextOf(row, "Close Parentheses"),
          .askAtRuntime = !ask.IsNull() && ask.AsBoolean(),
          .prompt = TextOf(row, "Runtime Value Prompt"),
          .label = TextOf(row, "Table Field")};
}

std::string FieldName(const std::string& table, const std::string& field, const std::string& primaryTable) {
  return "{" + (table.empty() ? primaryTable : table) + "." + field + "}";
}

/// The lines of both tables. The questions of a run are asked while its lines are read, one after the other.
std::optional<Definition> Read(const Definitions& file, std::int32_t queryID, const std::string& primaryTable,
                               bool ask) {
  Definition definition;
  std::vector<SelectionLine>& lines = definition.selection;
  if (!file.Each("Selection Criteria", queryID, [&](ado::Recordset& row) {
        lines.push_back(LineOf(row));
        if (ask && lines.back().askAtRuntime)
          lines.back().value = GetRuntimeValue(lines.back(), primaryTable, file.Connection());
      }))
    return std::nullopt;
  if (!file.Each("Sort Criteria", queryID, [&](ado::Recordset& row) {
        definition.sort.push_back({TextOf(row, "Table Name"), TextOf(row, "Field Name"),
                                   TextOf(row, "Ascending or Descending") == "D"});
      }))
    return std::nullopt;
  return definition;
}

}  // namespace

std::optional<Definition> ReadLines(std::int32_t queryID, const std::string& primaryTable) {
  return Read(Definitions(), queryID, primaryTable, false);
}

std::string SelectionFormula(const std::vector<SelectionLine>& lines, const std::string& primaryTable) {
  std::string formula;
  for (const SelectionLine& line : lines)
    formula += line.open + FieldName(line.table, line.field, primaryTable) + " " + line.comparison + " " +
               line.value + line.close + " " + line.connector + " ";
  return formula;
}

std::string SortList(const std::vector<SortLine>& lines, const std::string& primaryTable) {
  std::string list;
  for (const SortLine& line : lines)
    list += (list.empty() ? "" : ", ") + FieldName(line.table, line.field, primaryTable) +
            (line.descending ? " DESCENDING" : " ASCENDING");
  return list;
}

std::string GetRuntimeValue(const SelectionLine& line, const std::string& primaryTable,
                            const AdoConnectionPtr& connection) {
  const std::string table = line.table.empty() ? primaryTable : line.table;
  const std::string title = RptTitle + " Parameters";
  std::string answer;
  if (!line.prompt.empty())
    answer = screen::InputBox(line.prompt);
  else if (AdoFieldExists(connection, table, line.field))
    answer = screen::InputBox("Enter " + line.label + ":", title);
  else
    answer = screen::InputBox("Enter Value:", title);
  return FormatLiteral(answer, AdoGetFieldType(DataConnect, table, line.field).value_or(0));
}

bool UseDefinition(std::int32_t queryID, const std::string& reportID) {
  RptQueryID = queryID;
  RptSelection.clear();
  RptSort.clear();
  const std::string primaryTable = StripBrackets(reportID);
  const auto definition = Read(Definitions(), queryID, primaryTable, true);
  if (!definition) return false;
  RptSelection = SelectionFormula(definition->selection, primaryTable);
  RptSort = SortList(definition->sort, primaryTable);
  return true;
}

void RemoveTemporaryDefinition(std::int32_t queryID) {
  const Definitions file;
  AdoRecordsetPtr query = file.Query(queryID, ado::adLockPessimistic);
  if (!query) return;
  if (!query->AtEnd()) {
    const rt::Value kept = query->Get("Permanent");
    if (kept.IsNull() || !kept.AsBoolean()) AdoDeleteRS(*query, false, false);
  }
  CloseObject(query);
}

std::optional<std::string> DescriptionOf(std::int32_t queryID) {
  const Definitions file;
  AdoRecordsetPtr query = file.Query(queryID, ado::adLockReadOnly);
  std::optional<std::string> description;
  if (query && !query->AtEnd())
    if (const rt::Value text = query->Get("Description"); !text.IsNull()) description = text.AsText();
  CloseObject(query);
  return description;
}

}  // namespace dw
