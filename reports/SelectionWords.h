// A selection in plain words.
#pragma once

#include <string>
#include <vector>

#include "reports/SelectAndSort.h"

namespace dw {

/// What a selection asks for: "Class ID is TRK and Purchase Date is on or after 1/1/1999". Says that all
/// records are asked for where there is no line, and names the table of a field of another table than
/// `primaryTable`. A value that is asked for at the run stands as its question.
std::string SelectionInWords(const std::vector<SelectionLine>& lines, const std::string& primaryTable);

/// The same for the order: "Sorted by Class ID, then by Asset ID (descending)". Empty without a line.
std::string SortInWords(const std::vector<SortLine>& lines, const std::string& primaryTable);

/// The lines with a value of the field's type in place of each one that is asked for at the run, to find out
/// whether the engine would take the selection.
std::vector<SelectionLine> WithSampleValues(std::vector<SelectionLine> lines,
                                            const std::string& primaryTable);

}  // namespace dw
