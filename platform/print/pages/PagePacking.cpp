#include "platform/print/pages/PagePacking.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

#include "platform/print/PrintError.h"

namespace print {
namespace {

// Most numbers are small, so numbers take one byte for each seven bits. Places are stored relative to the
// band or to the cell before. Styles and formats stand once at the end of the page's bytes.

class Packer {
 public:
  explicit Packer(std::string* bytes) : bytes_(*bytes) {}

  void Number(std::uint64_t number) {
    while (number >= 0x80) {
      bytes_.push_back(static_cast<char>(number | 0x80U));
      number >>= 7U;
    }
    bytes_.push_back(static_cast<char>(number));
  }
  void Signed(std::int64_t number) {
    Number((static_cast<std::uint64_t>(number) << 1U) ^ static_cast<std::uint64_t>(number >> 63));
  }
  void Byte(std::uint8_t byte) { bytes_.push_back(static_cast<char>(byte)); }
  void Text(std::string_view text) {
    Number(text.size());
    bytes_.append(text);
  }
  void Bits32(std::uint32_t bits) {
    for (unsigned shift = 0; shift < 32; shift += 8) Byte(static_cast<std::uint8_t>(bits >> shift));
  }
  void Bits64(std::uint64_t bits) {
    Bits32(static_cast<std::uint32_t>(bits));
    Bits32(static_cast<std::uint32_t>(bits >> 32U));
  }
  void BoxIn(const Box& box, Length left, Length top) {
    Signed(std::int64_t{box.left} - left);
    Signed(std::int64_t{box.top} - top);
    Signed(box.width);
    Signed(box.height);
  }
  void ColorOf(const Color& color) {
    Byte(color.red);
    Byte(color.green);
    Byte(color.blue);
  }
  void Value(const rt::Value& value);

 private:
  std::string& bytes_;
};

class Unpacker {
 public:
  explicit Unpacker(std::string_view bytes) : bytes_(bytes) {}

  std::uint64_t Number() {
    std::uint64_t number = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
      const std::uint8_t byte = Byte();
      number |= std::uint64_t{byte & 0x7FU} << shift;
      if (byte < 0x80) return number;
    }
    throw PrintError("A stored page is damaged.");
  }
  std::int64_t Signed() {
    const std::uint64_t number = Number();
    return static_cast<std::int64_t>(number >> 1U) ^ -static_cast<std::int64_t>(number & 1U);
  }
  int Int() { return static_cast<int>(Signed()); }
  /// A number of things that take at least one byte each.
  std::size_t Count() {
    const std::uint64_t count = Number();
    if (count > bytes_.size() - place_) throw PrintError("A stored page is damaged.");
    return count;
  }
  std::uint8_t Byte() {
    if (place_ >= bytes_.size()) throw PrintError("A stored page is damaged.");
    return static_cast<std::uint8_t>(bytes_[place_++]);
  }
  std::string_view Text() {
    const std::size_t length = Count();
    const std::string_view text = bytes_.substr(place_, length);
    place_ += length;
    return text;
  }
  std::uint32_t Bits32() {
    std::uint32_t bits = 0;
    for (unsigned shift = 0; shift < 32; shift += 8) bits |= std::uint32_t{Byte()} << shift;
    return bits;
  }
  std::uint64_t Bits64() {
    const std::uint64_t low = Bits32();
    return low | (std::uint64_t{Bits32()} << 32U);
  }
  Box BoxIn(Length left, Length top) {
    Box box;
    box.left = static_cast<Length>(Signed() + left);
    box.top = static_cast<Length>(Signed() + top);
    box.width = Int();
    box.height = Int();
    return box;
  }
  Color ColorOf() {
    Color color;
    color.red = Byte();
    color.green = Byte();
    color.blue = Byte();
    return color;
  }
  rt::Value Value();
  std::size_t Place() const { return place_; }
  void GoTo(std::size_t place) {
    if (place > bytes_.size()) throw PrintError("A stored page is damaged.");
    place_ = place;
  }

 private:
  std::string_view bytes_;
  std::size_t place_ = 0;
};

void Packer::Value(const rt::Value& value) {
  Byte(static_cast<std::uint8_t>(value.Type()));
  switch (value.Type()) {
    case rt::ValueType::Null:
      return;
    case rt::ValueType::Boolean:
      return Byte(std::get<bool>(value.Data()) ? 1 : 0);
    case rt::ValueType::Integer:
      return Signed(std::get<std::int16_t>(value.Data()));
    case rt::ValueType::Long:
      return Signed(std::get<std::int32_t>(value.Data()));
    case rt::ValueType::Single:
      return Bits32(std::bit_cast<std::uint32_t>(std::get<float>(value.Data())));
    case rt::ValueType::Double:
      return Bits64(std::bit_cast<std::uint64_t>(std::get<double>(value.Data())));
    case rt::ValueType::Currency:
      return Signed(std::get<rt::Currency>(value.Data()).Units());
    case rt::ValueType::Date:
      return Signed(std::get<rt::DateTime>(value.Data()).Time().time_since_epoch().count());
    case rt::ValueType::Text:
      return Text(std::get<std::string>(value.Data()));
    case rt::ValueType::Binary: {
      const auto& content = std::get<rt::Binary>(value.Data());
      Number(content.size());
      for (const std::uint8_t byte : content) Byte(byte);
      return;
    }
  }
}

rt::Value Unpacker::Value() {
  switch (static_cast<rt::ValueType>(Byte())) {
    case rt::ValueType::Null:
      return {};
    case rt::ValueType::Boolean:
      return Byte() != 0;
    case rt::ValueType::Integer:
      return static_cast<std::int16_t>(Signed());
    case rt::ValueType::Long:
      return static_cast<std::int32_t>(Signed());
    case rt::ValueType::Single:
      return std::bit_cast<float>(Bits32());
    case rt::ValueType::Double:
      return std::bit_cast<double>(Bits64());
    case rt::ValueType::Currency:
      return rt::Currency::FromUnits(Signed());
    case rt::ValueType::Date:
      return rt::DateTime(std::chrono::local_seconds(std::chrono::seconds(Signed())));
    case rt::ValueType::Text:
      return rt::Value(Text());
    case rt::ValueType::Binary: {
      const std::string_view content = Text();
      return rt::Binary(content.begin(), content.end());
    }
  }
  throw PrintError("A stored page is damaged.");
}

/// The place of an item in a short list, added if it is new.
template <class Item>
std::size_t PlaceOf(const Item& item, std::vector<Item>& known) {
  const auto found = std::find(known.begin(), known.end(), item);
  if (found != known.end()) return static_cast<std::size_t>(found - known.begin());
  known.push_back(item);
  return known.size() - 1;
}

template <class Item>
const Item& ItemAt(const std::vector<Item>& known, std::uint64_t place) {
  if (place >= known.size()) throw PrintError("A stored page is damaged.");
  return known[place];
}

constexpr unsigned kAlignBits = 0x03;
constexpr unsigned kHeading = 0x04;
constexpr unsigned kColumnTotal = 0x08;
constexpr unsigned kHasValue = 0x10;
constexpr unsigned kHasSlot = 0x20;
/// The value is a text and equal to the only line.
constexpr unsigned kLineIsValue = 0x40;

struct Known {
  std::vector<TextStyle> styles;
  std::vector<std::string> formats;
};

void PackCell(const Cell& cell, const Box& before, Known& known, Packer& out) {
  const bool lineIsValue = cell.lines.size() == 1 && cell.value.Type() == rt::ValueType::Text &&
                           std::get<std::string>(cell.value.Data()) == cell.lines.front();
  auto flags = static_cast<unsigned>(cell.align) & kAlignBits;
  if (cell.heading) flags |= kHeading;
  if (cell.columnTotal) flags |= kColumnTotal;
  if (!cell.value.IsNull() && !lineIsValue) flags |= kHasValue;
  if (cell.slot >= 0) flags |= kHasSlot;
  if (lineIsValue) flags |= kLineIsValue;
  out.Byte(static_cast<std::uint8_t>(flags));
  out.BoxIn(cell.box, before.left, before.top);
  out.Number(PlaceOf(cell.style, known.styles));
  out.Number(PlaceOf(cell.format, known.formats));
  out.Signed(cell.column);
  if (cell.slot >= 0) out.Signed(cell.slot);
  out.Number(cell.lines.size());
  for (const std::string& line : cell.lines) out.Text(line);
  if ((flags & kHasValue) != 0) out.Value(cell.value);
}

Cell UnpackCell(const Box& before, const Known& known, Unpacker& in) {
  Cell cell;
  const unsigned flags = in.Byte();
  cell.align = static_cast<Align>(flags & kAlignBits);
  cell.heading = (flags & kHeading) != 0;
  cell.columnTotal = (flags & kColumnTotal) != 0;
  cell.box = in.BoxIn(before.left, before.top);
  cell.style = ItemAt(known.styles, in.Number());
  cell.format = ItemAt(known.formats, in.Number());
  cell.column = in.Int();
  if ((flags & kHasSlot) != 0) cell.slot = in.Int();
  const std::size_t lines = in.Count();
  cell.lines.reserve(lines);
  for (std::size_t i = 0; i < lines; ++i) cell.lines.emplace_back(in.Text());
  if ((flags & kHasValue) != 0) cell.value = in.Value();
  if ((flags & kLineIsValue) != 0) cell.value = rt::Value(cell.lines.front());
  return cell;
}

void PackBand(const PlacedBand& band, Length top, Known& known, Packer& out) {
  out.Byte(static_cast<std::uint8_t>(band.kind));
  out.Byte(band.continued ? 1 : 0);
  out.Signed(band.group);
  out.Signed(band.subreport);
  out.BoxIn(band.box, 0, top);
  out.Number(band.rules.size());
  for (const Rule& rule : band.rules) {
    out.BoxIn(rule.box, band.box.left, band.box.top);
    out.ColorOf(rule.color);
  }
  out.Number(band.cells.size());
  Box before = band.box;
  for (const Cell& cell : band.cells) {
    PackCell(cell, before, known, out);
    before = cell.box;
  }
}

PlacedBand UnpackBand(Length top, const Known& known, Unpacker& in) {
  PlacedBand band;
  band.kind = static_cast<BandKind>(in.Byte());
  band.continued = in.Byte() != 0;
  band.group = in.Int();
  band.subreport = in.Int();
  band.box = in.BoxIn(0, top);
  const std::size_t rules = in.Count();
  band.rules.reserve(rules);
  for (std::size_t i = 0; i < rules; ++i) {
    Rule rule;
    rule.box = in.BoxIn(band.box.left, band.box.top);
    rule.color = in.ColorOf();
    band.rules.push_back(rule);
  }
  const std::size_t cells = in.Count();
  band.cells.reserve(cells);
  Box before = band.box;
  for (std::size_t i = 0; i < cells; ++i) {
    band.cells.push_back(UnpackCell(before, known, in));
    before = band.cells.back().box;
  }
  return band;
}

}  // namespace

void PackPage(const Page& page, std::string* bytes) {
  bytes->assign(8, '\0');  // the place of the styles, known at the end
  Packer out(bytes);
  Known known;
  out.Signed(page.number);
  out.Signed(page.width);
  out.Signed(page.height);
  out.Number(page.bands.size());
  Length top = 0;
  for (const PlacedBand& band : page.bands) {
    PackBand(band, top, known, out);
    top = band.box.top + band.box.height;
  }
  const std::uint64_t stylesAt = bytes->size();
  for (std::size_t i = 0; i < 8; ++i) (*bytes)[i] = static_cast<char>(stylesAt >> (8 * i));
  out.Number(known.styles.size());
  for (const TextStyle& style : known.styles) {
    out.Byte(static_cast<std::uint8_t>(style.face));
    out.Signed(style.size);
    out.ColorOf(style.color);
  }
  out.Number(known.formats.size());
  for (const std::string& format : known.formats) out.Text(format);
}

Page UnpackPage(std::string_view bytes) {
  Unpacker in(bytes);
  const std::uint64_t stylesAt = in.Bits64();
  const std::size_t pageAt = in.Place();
  Known known;
  in.GoTo(stylesAt);
  known.styles.resize(in.Count());
  for (TextStyle& style : known.styles) {
    style.face = static_cast<FontFace>(in.Byte());
    style.size = in.Int();
    style.color = in.ColorOf();
  }
  known.formats.resize(in.Count());
  for (std::string& format : known.formats) format = in.Text();

  in.GoTo(pageAt);
  Page page;
  page.number = in.Int();
  page.width = in.Int();
  page.height = in.Int();
  const std::size_t bands = in.Count();
  page.bands.reserve(bands);
  Length top = 0;
  for (std::size_t i = 0; i < bands; ++i) {
    page.bands.push_back(UnpackBand(top, known, in));
    top = page.bands.back().box.top + page.bands.back().box.height;
  }
  return page;
}

std::string PackSlot(const SlotValue& value) {
  std::string bytes;
  Packer out(&bytes);
  out.Text(value.text);
  out.Value(value.value);
  return bytes;
}

SlotValue UnpackSlot(std::string_view bytes) {
  Unpacker in(bytes);
  SlotValue value;
  value.text = in.Text();
  value.value = in.Value();
  return value;
}

}  // namespace print
