// One function for each format. Each returns false if `progress` cancelled, and leaves the end of the file to
// the caller.
#pragma once

#include "platform/print/output/OutputFile.h"
#include "platform/print/output/Outputs.h"

namespace print {

/// A document of the pages in the span: subset fonts, text that can be searched, the tree of groups.
bool WritePdf(const PageStore& pages, const PageRange& range, const OutputProgress& progress,
              OutputFile& file);
/// The pages on a grid of characters, a form feed between them. What is aligned on the pages is aligned in
/// the text, over all pages of the range; the grid is as narrow as the texts allow.
bool WriteText(const PageStore& pages, const PageRange& range, const OutputProgress& progress,
               OutputFile& file);
/// The rows of the report with the keys of their groups; the innermost groups' sums if the rows are hidden.
/// `marked`: the file begins with a byte order mark if it holds more than ASCII, without which spreadsheet
/// programs misread it.
bool WriteCsv(const PageStore& pages, const OutputProgress& progress, bool marked, OutputFile& file);
/// One page with one table, in itself complete.
bool WriteHtml(const PageStore& pages, const OutputProgress& progress, OutputFile& file);
/// A document that flows: rows are paragraphs with tab stops.
bool WriteRtf(const PageStore& pages, const OutputProgress& progress, OutputFile& file);
/// A workbook with real numbers and dates, groups as outline levels, totals as formulas.
bool WriteSpreadsheet(const PageStore& pages, const OutputProgress& progress, OutputFile& file);

}  // namespace print
