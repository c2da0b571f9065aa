// The tables of a report and their columns, for the lists of the select and sort editors.
#pragma once

#include <string>
#include <vector>

namespace dw {

/// The tables that a selection may use: those of `primaryTable` if it is a comma list, otherwise those of the
/// definition file. The engine must be open for the latter. Reports failures.
void GetCrystalTables(const std::string& reportFile, std::vector<std::string>& tables,
                      const std::string& primaryTable);

/// The columns of a table of the main data, in their order; reports a table that does not exist.
std::vector<std::string> LoadTableFields(const std::string& table);

}  // namespace dw
