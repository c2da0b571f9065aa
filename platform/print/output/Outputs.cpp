#include "platform/print/output/Outputs.h"

#include <array>
#include <cctype>
#include <filesystem>
#include <utility>

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
  std::string ending = std::filesystem::path(path).extension().string();
  for (char& letter : ending) letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
  for (const auto& [known, format] : kEndings) {
    if (ending == known) return format;
  }
  return std::nullopt;
}

}  // namespace print
