// From a definition, a selection and a sort to the rows.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/print/data/Rows.h"
#include "platform/print/definition/ReportDefinition.h"

namespace print {

/// One sort field of a run. It may name any field of the definition's tables, also one that no band shows.
struct SortField {
  std::string name;  ///< "{Table.Field}"
  bool descending = false;
};

/// What a run asks of the data besides what its definition says.
struct RunRequest {
  std::string dataFile;
  std::string selection;        ///< a formula; empty: all rows
  std::vector<SortField> sort;  ///< empty: the definition's order
};

/// Called now and then while rows are read; false cancels.
using ReadProgress = std::function<bool(std::int64_t rows)>;

/// Reads all rows of the report, at one moment of the data: what of the selection the engine can say goes
/// into the query with bound values, the rest is tested row by row. Tables are joined so that a row of the
/// primary table is never lost. The file is open for the duration of the call only. A row that a formula
/// cannot test is left out and reported in `warnings`.
///
/// While rows are read from the file itself nobody can commit: for 20 ms. What takes longer begins again on a
/// copy of the file; see store::ReadFromCopy for how long others wait then. `progress` counts from 0 again.
/// Throws PrintError, which names the file, table, field or place in the selection. Nothing is returned if
/// the progress was answered with false.
std::unique_ptr<ReportRows> ReadReportRows(const ReportDefinition& report, const RunRequest& request,
                                           const ReadProgress& progress, std::vector<std::string>* warnings);

/// Whether the engine would take this selection for the definition; the fault's text, or nothing.
std::string SelectionFault(const ReportDefinition& report, const std::string& dataFile,
                           const std::string& selection);

}  // namespace print
