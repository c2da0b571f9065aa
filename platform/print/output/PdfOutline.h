// The tree of groups beside the pages of a PDF document.
#pragma once

#include <vector>

#include "platform/print/output/PdfFile.h"
#include "platform/print/pages/Page.h"

namespace print {

struct PdfPagePlace {
  int object = 0;
  Length height = 0;
};

/// Writes the entries that lead to the pages, whose first one has the number `firstPage`, and those above
/// them in the tree. Returns the object of the tree; 0 if it has no entry.
int WritePdfOutline(PdfFile& file, const std::vector<OutlineEntry>& entries, int firstPage,
                    const std::vector<PdfPagePlace>& pages);

}  // namespace print
