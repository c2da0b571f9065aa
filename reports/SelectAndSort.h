// From a stored definition to the selection formula and the sort list of a run.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "data/GenericADO.h"

namespace dw {

/// One condition of a stored definition, a row of `Selection Criteria`. A Null reads as an empty text.
struct SelectionLine {
  std::string table = {};  ///< empty: the primary table
  std::string field = {};
  std::string comparison = {};
  std::string value = {};  ///< as the formula takes it
  std::string connector = {};
  std::string open = {};   ///< brackets before the condition
  std::string close = {};  ///< brackets behind it
  bool askAtRuntime = false;
  std::string prompt = {};  ///< `Runtime Value Prompt`
  std::string label = {};   ///< `Table Field`
};

/// One row of `Sort Criteria`.
struct SortLine {
  std::string table;  ///< empty: the primary table
  std::string field;
  bool descending = false;
};

/// What a stored definition asks for, its lines in the order in which the file has them.
struct Definition {
  std::vector<SelectionLine> selection;
  std::vector<SortLine> sort;
};

/// Reads the lines of a definition. Nothing if a file or table cannot be opened, which has been reported.
std::optional<Definition> ReadLines(std::int32_t queryID, const std::string& primaryTable);
/// The selection formula, as the engine takes it: with blanks behind each line. Empty without a line.
std::string SelectionFormula(const std::vector<SelectionLine>& lines, const std::string& primaryTable);
/// The sort list: "{Table.Field} ASCENDING, {Table.Field} DESCENDING". Empty without a line.
std::string SortList(const std::vector<SortLine>& lines, const std::string& primaryTable);

/// Asks for the value of a line whose value is not stored, and returns it as a literal. A canceled question
/// gives an empty value.
std::string GetRuntimeValue(const SelectionLine& line, const std::string& primaryTable,
                            const AdoConnectionPtr& connection);

/// Sets RptQueryID, RptSelection and RptSort from a stored definition, with the values that its questions
/// get. `reportID` is the primary table of the report. False if the definition cannot be read, which has been
/// reported: RptSelection and RptSort are empty then.
bool UseDefinition(std::int32_t queryID, const std::string& reportID);

/// Deletes the definition after its run, unless it is kept; its lines stay in their tables.
void RemoveTemporaryDefinition(std::int32_t queryID);
/// The stored description; nothing if the definition does not exist or has none.
std::optional<std::string> DescriptionOf(std::int32_t queryID);

}  // namespace dw
