#include "platform/print/output/PdfFonts.h"

#include <hb-subset.h>

#include <algorithm>
#include <cstdio>

#include "platform/print/PrintError.h"
#include "platform/print/fonts/VisualOrder.h"
#include "platform/runtime/Letters.h"

namespace print {
namespace {

template <class Object, void (*Destroy)(Object*)>
struct Destroyer {
  void operator()(Object* object) const { Destroy(object); }
};
using Blob = std::unique_ptr<hb_blob_t, Destroyer<hb_blob_t, hb_blob_destroy>>;
using Face = std::unique_ptr<hb_face_t, Destroyer<hb_face_t, hb_face_destroy>>;
using Input = std::unique_ptr<hb_subset_input_t, Destroyer<hb_subset_input_t, hb_subset_input_destroy>>;
using Plan = std::unique_ptr<hb_subset_plan_t, Destroyer<hb_subset_plan_t, hb_subset_plan_destroy>>;

const char* NameOf(FontFace face) {
  switch (face) {
    case FontFace::Sans:
      return "LiberationSans";
    case FontFace::SansBold:
      return "LiberationSans-Bold";
    case FontFace::SansItalic:
      return "LiberationSans-Italic";
    case FontFace::SansBoldItalic:
      return "LiberationSans-BoldItalic";
    case FontFace::Mono:
      return "LiberationMono";
  }
  return "";
}

bool IsItalic(FontFace face) { return face == FontFace::SansItalic || face == FontFace::SansBoldItalic; }
bool IsBold(FontFace face) { return face == FontFace::SansBold || face == FontFace::SansBoldItalic; }

std::string_view Bytes(hb_blob_t* blob) {
  unsigned length = 0;
  const char* bytes = hb_blob_get_data(blob, &length);
  return {bytes, length};
}

/// Units of the font in thousandths of its size, with up to three decimals.
std::string Thousandths(const FontTable& font, int units) {
  const std::int64_t em = font.UnitsPerEm();
  const std::int64_t thousandths = (std::int64_t{units} * 1000000 + em / 2) / em;
  std::string text = std::to_string(thousandths / 1000);
  if (const auto rest = static_cast<int>(thousandths % 1000); rest != 0) {
    std::array<char, 8> digits{};
    std::snprintf(digits.data(), digits.size(), ".%03d", rest);
    text += digits.data();
    while (text.back() == '0') text.pop_back();
  }
  return text;
}

/// The part of the font that draws the glyphs, and for each of them its number there.
struct Subset {
  Blob file;
  std::vector<std::uint16_t> numbers;
};

Subset SubsetOf(hb_face_t* face, const std::vector<std::uint16_t>& glyphs, const std::string& path) {
  const Input input(hb_subset_input_create_or_fail());
  if (input == nullptr) throw std::bad_alloc();
  hb_set_t* wanted = hb_subset_input_glyph_set(input.get());
  for (const std::uint16_t glyph : glyphs) hb_set_add(wanted, glyph);
  // The document says itself which character is which glyph, and readers of documents ignore hints.
  hb_subset_input_set_flags(input.get(), HB_SUBSET_FLAGS_NO_HINTING);
  hb_set_t* dropped = hb_subset_input_set(input.get(), HB_SUBSET_SETS_DROP_TABLE_TAG);
  for (const hb_tag_t tag :
       {HB_TAG('c', 'm', 'a', 'p'), HB_TAG('n', 'a', 'm', 'e'), HB_TAG('p', 'o', 's', 't'),
        HB_TAG('O', 'S', '/', '2'), HB_TAG('G', 'D', 'E', 'F'), HB_TAG('G', 'P', 'O', 'S'),
        HB_TAG('G', 'S', 'U', 'B'), HB_TAG('g', 'a', 's', 'p'), HB_TAG('k', 'e', 'r', 'n')})
    hb_set_add(dropped, tag);
  const auto failed = [&] { return PrintError("The font file '" + path + "' cannot be taken apart."); };
  const Plan plan(hb_subset_plan_create_or_fail(face, input.get()));
  if (plan == nullptr) throw failed();
  const Face part(hb_subset_plan_execute_or_fail(plan.get()));
  if (part == nullptr) throw failed();
  Subset subset;
  subset.file.reset(hb_face_reference_blob(part.get()));
  const hb_map_t* numbers = hb_subset_plan_old_to_new_glyph_mapping(plan.get());
  for (const std::uint16_t glyph : glyphs)
    subset.numbers.push_back(static_cast<std::uint16_t>(hb_map_get(numbers, glyph)));
  return subset;
}

/// Six letters that differ between subsets of different characters, as the format demands.
std::string SubsetTag(const std::vector<std::uint16_t>& glyphs) {
  std::uint64_t hash = 14695981039346656037U;
  for (const std::uint16_t glyph : glyphs) hash = (hash ^ glyph) * 1099511628211U;
  std::string tag;
  for (int i = 0; i < 6; ++i, hash /= 26) tag.push_back(static_cast<char>('A' + hash % 26));
  return tag;
}

void AppendByte(std::string& out, unsigned byte) {
  const char c = static_cast<char>(byte);
  if (c == '(' || c == ')' || c == '\\') out.push_back('\\');
  if (c == '\r')
    out += "\\r";
  else
    out.push_back(c);
}

}  // namespace

PdfFont::PdfFont(FontFace face, int number) : face_(face), number_(number), table_(TableOf(face)) {}

std::uint16_t PdfFont::CharacterNumber(std::uint32_t code) {
  std::uint16_t& number = code < ascii_.size() ? ascii_[code] : others_[code];
  if (number == 0) {
    if (used_.size() == 0xFFFF) return CharacterNumber('?');
    used_.push_back({code, table_.GlyphOf(code)});
    number = static_cast<std::uint16_t>(used_.size());
  }
  return number;
}

void PdfFont::AppendString(std::string& out, std::string_view line) {
  std::string visual;
  if (MayRunLeft(line)) {
    visual = VisualOrder(line);
    line = visual;
  }
  out.push_back('(');
  for (std::size_t i = 0; i < line.size();) {
    std::uint32_t code = static_cast<unsigned char>(line[i]);
    std::size_t bytes = 1;
    if (code >= 128) {
      const rt::Character character = rt::FirstCharacter(line.substr(i));
      code = character.valid ? character.code : '?';
      bytes = character.bytes;
    }
    i += bytes;
    if (code == '\t') code = ' ';
    const bool plain = code >= 0x20 && code < 0x7F;
    if (!plain && FontTable::IsInvisible(code)) continue;
    const std::uint16_t number = CharacterNumber(code);
    AppendByte(out, number >> 8U);
    AppendByte(out, number & 0xFFU);
  }
  out.push_back(')');
}

std::string PdfFont::Widths() const {
  std::string widths = "[1[";
  for (const Used& used : used_) {
    widths += Thousandths(table_, used.glyph.advance);
    widths.push_back(' ');
  }
  widths.back() = ']';
  return widths + "]";
}

std::string PdfFont::ToUnicode() const {
  std::string map =
      "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n"
      "/CIDSystemInfo <</Registry (Adobe) /Ordering (UCS) /Supplement 0>> def\n"
      "/CMapName /Characters def\n/CMapType 2 def\n"
      "1 begincodespacerange\n<0000> <FFFF>\nendcodespacerange\n";
  static constexpr std::size_t kBlock = 100;  // the most that one section may have
  std::array<char, 40> line{};
  for (std::size_t begin = 0; begin < used_.size(); begin += kBlock) {
    const std::size_t end = std::min(used_.size(), begin + kBlock);
    map += std::to_string(end - begin) + " beginbfchar\n";
    for (std::size_t i = begin; i < end; ++i) {
      const std::uint32_t code = used_[i].code;
      if (code >= 0x10000) {
        std::snprintf(line.data(), line.size(), "<%04zX> <%04X%04X>\n", i + 1,
                      0xD800 + ((code - 0x10000) >> 10U), 0xDC00 + ((code - 0x10000) & 0x3FFU));
      } else {
        std::snprintf(line.data(), line.size(), "<%04zX> <%04X>\n", i + 1, code);
      }
      map += line.data();
    }
    map += "endbfchar\n";
  }
  return map + "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n";
}

void PdfFont::Write(PdfFile& file) const {
  const Blob blob(hb_blob_create_from_file(table_.Path().c_str()));
  const Face face(hb_face_create(blob.get(), 0));
  std::vector<std::uint16_t> glyphs;
  for (const Used& used : used_) glyphs.push_back(used.glyph.index);
  const Subset subset = SubsetOf(face.get(), glyphs, table_.Path());
  const std::string name = SubsetTag(glyphs) + "+" + NameOf(face_);

  std::string map(2, '\0');  // for each character number the glyph of the subset, high byte first
  for (const std::uint16_t glyph : subset.numbers) {
    map.push_back(static_cast<char>(glyph >> 8U));
    map.push_back(static_cast<char>(glyph & 0xFFU));
  }
  // The corners of the box around all glyphs, from the font's head.
  const Blob head(hb_face_reference_table(face.get(), HB_TAG('h', 'e', 'a', 'd')));
  std::string box;
  for (std::size_t at = 36; at < 44; at += 2) {
    const std::string_view bytes = Bytes(head.get()).substr(at, 2);
    const auto corner = static_cast<std::int16_t>(static_cast<unsigned char>(bytes[0]) << 8U |
                                                  static_cast<unsigned char>(bytes[1]));
    box += std::to_string(corner * 1000 / table_.UnitsPerEm()) + " ";
  }
  box.pop_back();

  const int part = file.Reserve();
  const int descriptor = file.Reserve();
  const int descendant = file.Reserve();
  const int glyphMap = file.Reserve();
  const int toUnicode = file.Reserve();
  const std::string_view fontFile = Bytes(subset.file.get());
  file.Stream(part, "/Length1 " + std::to_string(fontFile.size()), fontFile);
  file.Stream(glyphMap, "", map);
  file.Stream(toUnicode, "", ToUnicode());
  const int flags = 4 + (face_ == FontFace::Mono ? 1 : 0) + (IsItalic(face_) ? 64 : 0);
  file.Object(descriptor, "<</Type/FontDescriptor/FontName/" + name + "/Flags " + std::to_string(flags) +
                              "/FontBBox[" + box + "]/ItalicAngle " + (IsItalic(face_) ? "-12" : "0") +
                              "/Ascent " + Thousandths(table_, table_.Ascent()) + "/Descent -" +
                              Thousandths(table_, table_.Descent()) + "/CapHeight 729/StemV " +
                              (IsBold(face_) ? "140" : "80") + "/FontFile2 " + PdfReference(part) + ">>");
  file.Object(descendant, "<</Type/Font/Subtype/CIDFontType2/BaseFont/" + name +
                              "/CIDSystemInfo<</Registry(Adobe)/Ordering(Identity)/Supplement 0>>"
                              "/FontDescriptor " +
                              PdfReference(descriptor) + "/W" + Widths() + "/CIDToGIDMap " +
                              PdfReference(glyphMap) + ">>");
  file.Object(number_, "<</Type/Font/Subtype/Type0/BaseFont/" + name +
                           "/Encoding/Identity-H/DescendantFonts[" + PdfReference(descendant) +
                           "]/ToUnicode " + PdfReference(toUnicode) + ">>");
}

PdfFont& PdfFonts::Of(FontFace face) {
  auto& font = fonts_.at(static_cast<std::size_t>(face));
  if (font == nullptr) font = std::make_unique<PdfFont>(face, file_.Reserve());
  return *font;
}

std::string PdfFonts::Resources() const {
  std::string entries;
  for (std::size_t i = 0; i < fonts_.size(); ++i)
    if (fonts_[i] != nullptr) entries += "/F" + std::to_string(i) + " " + PdfReference(fonts_[i]->Number());
  return entries;
}

void PdfFonts::Write() {
  for (const auto& font : fonts_)
    if (font != nullptr) font->Write(file_);
}

}  // namespace print
