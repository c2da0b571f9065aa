#include "platform/print/fonts/FontTable.h"

#include <hb.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "platform/print/PrintError.h"
#include "platform/print/fonts/Fonts.h"
#include "platform/runtime/Letters.h"

namespace print {
namespace {

template <class Object, void (*Destroy)(Object*)>
struct Destroyer {
  void operator()(Object* object) const { Destroy(object); }
};
using Blob = std::unique_ptr<hb_blob_t, Destroyer<hb_blob_t, hb_blob_destroy>>;
using Face = std::unique_ptr<hb_face_t, Destroyer<hb_face_t, hb_face_destroy>>;
using Font = std::unique_ptr<hb_font_t, Destroyer<hb_font_t, hb_font_destroy>>;
using Set = std::unique_ptr<hb_set_t, Destroyer<hb_set_t, hb_set_destroy>>;

/// Where distributions put the package's files. DROVEWRIGHT_FONTS comes first, for installations without it.
std::vector<std::string> FontDirectories() {
  std::vector<std::string> directories;
  if (const char* own = std::getenv("DROVEWRIGHT_FONTS"); own != nullptr && *own != '\0')
    directories.emplace_back(own);
  for (const char* known : {"/usr/share/fonts/truetype/liberation2", "/usr/share/fonts/truetype/liberation",
                            "/usr/share/fonts/liberation", "/usr/share/fonts/liberation-sans",
                            "/usr/share/fonts/liberation-mono", "/usr/local/share/fonts/liberation"})
    directories.emplace_back(known);
  return directories;
}

const char* FileName(FontFace face) {
  switch (face) {
    case FontFace::Sans:
      return "LiberationSans-Regular.ttf";
    case FontFace::SansBold:
      return "LiberationSans-Bold.ttf";
    case FontFace::SansItalic:
      return "LiberationSans-Italic.ttf";
    case FontFace::SansBoldItalic:
      return "LiberationSans-BoldItalic.ttf";
    case FontFace::Mono:
      return "LiberationMono-Regular.ttf";
  }
  throw PrintError("There is no such font face.");
}

template <FontFace face>
const std::string& FileOf() {
  static const std::string path = [] {
    const std::string name = FileName(face);
    std::string found = FindFont(FontDirectories(), name);
    if (found.empty())
      throw PrintError("The font '" + name + "' is missing. Install the package fonts-liberation2.");
    return found;
  }();
  return path;
}

template <FontFace face>
const FontTable& ReadOnce() {
  static const FontTable table(FileOf<face>());
  return table;
}

}  // namespace

bool FontTable::IsInvisible(std::uint32_t code) {
  if (code < 0x20) return code != '\t';
  return (code >= 0x7F && code < 0xA0) || (code >= 0x200B && code <= 0x200F) ||
         (code >= 0x2028 && code <= 0x202E) || (code >= 0x2060 && code <= 0x206F) || code == 0xFEFF ||
         (code >= 0xFE00 && code <= 0xFE0F);
}

FontTable::FontTable(const std::string& path) : path_(path) {
  const Blob blob(hb_blob_create_from_file(path.c_str()));
  const Face face(hb_face_create(blob.get(), 0));
  if (hb_face_get_glyph_count(face.get()) == 0)
    throw PrintError("The font file '" + path + "' cannot be read. Install the package fonts-liberation2.");
  const Font font(hb_font_create(face.get()));
  unitsPerEm_ = static_cast<int>(hb_face_get_upem(face.get()));
  hb_font_set_scale(font.get(), unitsPerEm_, unitsPerEm_);
  hb_font_extents_t extents{};
  hb_font_get_h_extents(font.get(), &extents);
  ascent_ = extents.ascender;
  descent_ = -extents.descender;
  lineGap_ = extents.line_gap;

  const auto glyphOf = [&](hb_codepoint_t code) {
    hb_codepoint_t index = 0;
    Glyph glyph;
    if (!hb_font_get_nominal_glyph(font.get(), code, &index)) return glyph;
    glyph.index = static_cast<std::uint16_t>(index);
    glyph.advance = static_cast<std::uint16_t>(std::max(0, hb_font_get_glyph_h_advance(font.get(), index)));
    return glyph;
  };
  const Glyph unknown = glyphOf('?');
  for (std::uint32_t code = 0; code < ascii_.size(); ++code) {
    if (IsInvisible(code)) continue;
    const Glyph glyph = glyphOf(code == '\t' ? ' ' : code);
    ascii_[code] = glyph.index == 0 ? unknown : glyph;
  }
  const Set characters(hb_set_create());
  hb_face_collect_unicodes(face.get(), characters.get());
  for (hb_codepoint_t code = HB_SET_VALUE_INVALID; hb_set_next(characters.get(), &code);) {
    if (code < ascii_.size() || code > 0xFFFF) continue;
    const std::size_t place = code / kBlock;
    if (blocks_.size() <= place) blocks_.resize(place + 1);
    if (blocks_[place] == nullptr) {
      blocks_[place] = std::make_unique<Block>();
      for (std::size_t i = 0; i < kBlock; ++i)
        if (!IsInvisible(static_cast<std::uint32_t>(place * kBlock + i))) (*blocks_[place])[i] = unknown;
    }
    if (const Glyph glyph = glyphOf(code); glyph.index != 0 && !IsInvisible(code))
      (*blocks_[place])[code % kBlock] = glyph;
  }
}

std::int64_t FontTable::Advance(std::string_view text) const {
  std::int64_t sum = 0;
  for (std::size_t i = 0; i < text.size();) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte < 128) {
      sum += ascii_[byte].advance;
      ++i;
      continue;
    }
    const rt::Character character = rt::FirstCharacter(text.substr(i));
    sum += (character.valid ? GlyphOf(character.code) : ascii_['?']).advance;
    i += character.bytes;
  }
  return sum;
}

const FontTable& TableOf(FontFace face) {
  switch (face) {
    case FontFace::Sans:
      return ReadOnce<FontFace::Sans>();
    case FontFace::SansBold:
      return ReadOnce<FontFace::SansBold>();
    case FontFace::SansItalic:
      return ReadOnce<FontFace::SansItalic>();
    case FontFace::SansBoldItalic:
      return ReadOnce<FontFace::SansBoldItalic>();
    case FontFace::Mono:
      return ReadOnce<FontFace::Mono>();
  }
  throw PrintError("There is no such font face.");
}

const std::string& FontFile(FontFace face) {
  switch (face) {
    case FontFace::Sans:
      return FileOf<FontFace::Sans>();
    case FontFace::SansBold:
      return FileOf<FontFace::SansBold>();
    case FontFace::SansItalic:
      return FileOf<FontFace::SansItalic>();
    case FontFace::SansBoldItalic:
      return FileOf<FontFace::SansBoldItalic>();
    case FontFace::Mono:
      return FileOf<FontFace::Mono>();
  }
  throw PrintError("There is no such font face.");
}

std::string FindFont(const std::vector<std::string>& directories, const std::string& name) {
  for (const std::string& directory : directories) {
    std::string path = directory + "/" + name;
    if (access(path.c_str(), R_OK) == 0) return path;
  }
  return {};
}

}  // namespace print
