// What a launch of a report hands to ReportForm. Each launch overwrites all of it.
#pragma once

#include <cstdint>
#include <string>

namespace dw {

inline std::string RptTitle;         ///< the report's name: form caption, first title line, window title
inline std::string RptFile;          ///< full path of the definition file
inline std::string RptPrimaryTable;  ///< a table's name, or a comma list of names in brackets
/// A record selection formula. If it is not empty at the start, the user may not define a selection.
inline std::string RptSelection;
/// "[Field],[Field]" of the primary table, or "{Table.Field} ASCENDING, …" from a stored definition.
inline std::string RptSort;
inline std::string RptExtra;  ///< always empty
/// `ID` of the stored definition that the user has chosen; 0 for none.
inline std::int32_t RptQueryID = 0;

}  // namespace dw
