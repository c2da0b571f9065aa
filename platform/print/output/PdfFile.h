// The objects of a PDF file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/print/Units.h"
#include "platform/print/output/OutputFile.h"

struct libdeflate_compressor;

namespace print {

/// Writes numbered objects one after the other, then the table of their places.
class PdfFile {
 public:
  explicit PdfFile(OutputFile& file);
  ~PdfFile();
  PdfFile(const PdfFile&) = delete;
  PdfFile& operator=(const PdfFile&) = delete;

  /// A number for an object that is written later.
  int Reserve();
  void Object(int number, std::string_view body);
  /// A compressed stream. `entries` are further entries of its dictionary.
  void Stream(int number, std::string_view entries, std::string_view content);
  /// The table and the end. Every reserved object must have been written.
  void Finish(int catalog, int info);

 private:
  void Begin(int number);

  OutputFile& file_;
  std::vector<std::uint64_t> places_;  ///< by number; 0 is not used
  struct CompressorEnd {
    void operator()(libdeflate_compressor* compressor) const;
  };
  std::unique_ptr<libdeflate_compressor, CompressorEnd> compressor_;
  std::string packed_;
};

/// Appends a length in points, with as many decimals as it needs.
void AppendPoints(std::string& out, std::int64_t hundredths);
/// "12 0 R".
std::string PdfReference(int number);
/// A text as a string of the document (a title, an entry of the outline).
std::string PdfText(std::string_view text);

}  // namespace print
