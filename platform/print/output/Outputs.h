// From finished pages to files.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/print/pages/PageStore.h"

namespace print {

enum class OutputFormat { Pdf, Rtf, Spreadsheet, Csv, Html, Text };

/// The format that a file's ending names (.pdf .rtf .xlsx .csv .html .htm .txt); nothing for others.
std::optional<OutputFormat> FormatOfEnding(const std::string& path);

/// Pages from `first` to `last`, from 1; `last` 0 means to the end.
struct PageRange {
  int first = 1;
  int last = 0;
};

/// Called after each page; false cancels, and nothing is left behind.
using OutputProgress = std::function<bool(int page, int pages)>;

/// Writes the finished pages to `path`: under a temporary name beside it, moved there when the file is whole,
/// so that an earlier file is kept until then and nothing is left by a failure. "-" writes to standard
/// output. Returns false if cancelled. Throws PrintError (disk full, no permission, a font that is missing).
bool WriteOutput(const PageStore& pages, OutputFormat format, const std::string& path, const PageRange& range,
                 const OutputProgress& progress);

}  // namespace print
