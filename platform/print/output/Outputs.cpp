#include "platform/print/output/Outputs.h"

#include <array>
#include <filesystem>
#include <utility>

#include "platform/print/PrintError.h"
#include "platform/print/output/OutputFile.h"
#include "platform/print/output/Writers.h"
#include "platform/runtime/Letters.h"

namespace print {

std::optional<OutputFormat> FormatOfEnding(const std::string& path) {
  static constexpr std::array<std::pair<const char*, OutputFormat>, 7> kEndings{
      {{".pdf", OutputFormat::Pdf},
       {".rtf", OutputFormat::Rtf},
       {".xlsx", OutputFormat::Spreadsheet},
       {".csv", OutputFormat::Csv},
       {".html", OutputFormat::Html},
       {".htm", OutputFormat::Html},
       {".txt", OutputFormat::Text}}};
  const std::string ending = std::filesystem::path(path).extension().string();
  for (const auto& [known, format] : kEndings) {
    if (rt::EqualNoCase(ending, known)) return format;
  }
  return std::nullopt;
}

bool WriteOutput(const PageStore& pages, OutputFormat format, const std::string& path, const PageRange& range,
                 const OutputProgress& progress) {
  OutputFile file(path);
  const auto write = [&] {
    switch (format) {
      case OutputFormat::Pdf:
        return WritePdf(pages, range, progress, file);
      case OutputFormat::Rtf:
        return WriteRtf(pages, progress, file);
      case OutputFormat::Spreadsheet:
        return WriteSpreadsheet(pages, progress, file);
      case OutputFormat::Csv:
        return WriteCsv(pages, progress, path != "-", file);
      case OutputFormat::Html:
        return WriteHtml(pages, progress, file);
      case OutputFormat::Text:
        return WriteText(pages, range, progress, file);
    }
    throw PrintError("There is no such output format.");
  };
  if (!write()) return false;
  file.Commit();
  return true;
}

}  // namespace print
