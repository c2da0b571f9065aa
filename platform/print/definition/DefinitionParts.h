// What several definitions share.
#pragma once

#include <string>

#include "platform/print/definition/ElementReader.h"
#include "platform/print/definition/XmlTree.h"

namespace print {

/// Puts in the place of each <use file="house.rpt"/> what stands in the <part> of that file, which lies
/// beside the definition: styles, formulas, bands, and the tables of its <data>. Where the definition has a
/// formula, style or band of that name itself, its own stands. Faults of the part are reported at the <use>.
void UseParts(XmlElement& root, const std::string& path, Faults& faults);

}  // namespace print
