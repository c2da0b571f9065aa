// The advances and glyphs of one font, read from its file once.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/print/Units.h"

namespace print {

/// The number of members of FontFace.
constexpr int kFontFaces = 5;

/// A glyph of the font file and its advance in units of the font.
struct Glyph {
  std::uint16_t index = 0;
  std::uint16_t advance = 0;
};

/// One font of the shipped families. Immutable once read, so all threads share it.
class FontTable {
 public:
  /// Reads a font file. Throws PrintError if it is not a font.
  explicit FontTable(const std::string& path);

  /// The glyph that a character is drawn with: that of '?' if the font lacks the character. Line breaks,
  /// direction marks and other characters without a picture have no advance and are not to be drawn; see
  /// IsInvisible. A tab counts as a blank.
  Glyph GlyphOf(std::uint32_t code) const {
    if (code < 128) return ascii_[code];
    const std::size_t block = code / kBlock;
    if (block < blocks_.size() && blocks_[block] != nullptr) return (*blocks_[block])[code % kBlock];
    return IsInvisible(code) ? Glyph{} : ascii_['?'];
  }
  /// Whether nothing is drawn for the character.
  static bool IsInvisible(std::uint32_t code);

  /// The sum of the advances of a text.
  std::int64_t Advance(std::string_view text) const;

  int UnitsPerEm() const { return unitsPerEm_; }
  /// Distances from the baseline in units of the font, as the font recommends them for lines; both positive.
  int Ascent() const { return ascent_; }
  int Descent() const { return descent_; }
  /// The recommended empty space between two lines.
  int LineGap() const { return lineGap_; }
  const std::string& Path() const { return path_; }

 private:
  static constexpr std::size_t kBlock = 256;
  using Block = std::array<Glyph, kBlock>;

  std::string path_;
  int unitsPerEm_ = 1;
  int ascent_ = 0;
  int descent_ = 0;
  int lineGap_ = 0;
  std::array<Glyph, 128> ascii_{};
  std::vector<std::unique_ptr<Block>> blocks_;  ///< by code / kBlock; null where the font has nothing
};

/// The table of a shipped font, read at the first use. Throws PrintError if the file is missing.
const FontTable& TableOf(FontFace face);

/// Units of the font at a size, rounded to the nearest hundredth of a point.
inline Length Scaled(const FontTable& font, std::int64_t units, Length size) {
  const std::int64_t em = font.UnitsPerEm();
  return static_cast<Length>((units * size + em / 2) / em);
}

/// The first of the directories that has the file; empty if none has it.
std::string FindFont(const std::vector<std::string>& directories, const std::string& name);

}  // namespace print
