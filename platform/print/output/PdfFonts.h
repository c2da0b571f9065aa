// The fonts of a PDF file: only the characters that its pages use.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/print/fonts/FontTable.h"
#include "platform/print/output/PdfFile.h"

namespace print {

/// Numbers the characters of one font in the order of their first use. A character that the font lacks has a
/// number of its own too: it is drawn as '?', but found and copied as what it is.
class PdfFont {
 public:
  PdfFont(FontFace face, int number);

  /// Appends the line as a string of a page's content.
  void AppendString(std::string& out, std::string_view line);
  /// The object of the font.
  int Number() const { return number_; }
  const FontTable& Table() const { return table_; }
  /// Writes the font with the characters that were used.
  void Write(PdfFile& file) const;

 private:
  std::uint16_t CharacterNumber(std::uint32_t code);
  std::string Widths() const;
  std::string ToUnicode() const;

  struct Used {
    std::uint32_t code;
    Glyph glyph;
  };

  FontFace face_;
  int number_;
  const FontTable& table_;
  std::vector<Used> used_;                  ///< by number - 1; number 0 stays free
  std::array<std::uint16_t, 128> ascii_{};  ///< 0: not used yet
  std::unordered_map<std::uint32_t, std::uint16_t> others_;
};

/// The fonts of a document, each made at its first use.
class PdfFonts {
 public:
  explicit PdfFonts(PdfFile& file) : file_(file) {}
  PdfFont& Of(FontFace face);
  /// The entries of a resource dictionary: "/F0 7 0 R/F1 9 0 R".
  std::string Resources() const;
  void Write();

 private:
  PdfFile& file_;
  std::array<std::unique_ptr<PdfFont>, kFontFaces> fonts_;
};

}  // namespace print
