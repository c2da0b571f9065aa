// Definition files: from XML to a checked ReportDefinition.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/print/definition/ReportDefinition.h"
#include "platform/store/Schema.h"

namespace print {

/// Texts that stand for those of named formulas in the file; a run sets titles this way.
using FormulaTexts = std::map<std::string, std::string>;

/// Reads and checks a definition file. `replaced` formulas take the place of the file's own; a name that the
/// file does not define is a fault. With a data file, tables and fields are held against it and have its
/// types; without one, any field that a table of the definition could have is taken, its type is Null, and
/// types are checked at evaluation. `extraFields` ("{Table.Field}", from a selection or a sort) are added to
/// the fields. Throws PrintError with the first fault as shown.
std::shared_ptr<const ReportDefinition> ReadDefinition(const std::string& path,
                                                       const std::string& dataFile = "",
                                                       const FormulaTexts& replaced = {},
                                                       const std::vector<std::string>& extraFields = {});

/// The same with the tables of a schema, which may be made without a file (from a catalogue); null is none.
std::shared_ptr<const ReportDefinition> ReadDefinition(const std::string& path, const store::Schema* schema,
                                                       const FormulaTexts& replaced = {},
                                                       const std::vector<std::string>& extraFields = {});

/// All faults of a definition file, in the order of the file. Throws PrintError only where a file is not
/// there or cannot be read.
std::vector<DefinitionFault> CheckDefinition(const std::string& path, const std::string& dataFile = "");
std::vector<DefinitionFault> CheckDefinition(const std::string& path, const store::Schema* schema);

}  // namespace print
