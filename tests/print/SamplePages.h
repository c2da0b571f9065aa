// Pages as the layout would make them, for tests of what reads pages.
#pragma once

#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "platform/print/fonts/Fonts.h"
#include "platform/print/pages/PageStore.h"

namespace test {

constexpr print::Length kPt = print::kPoint;

/// A cell with the text in one line (or wrapped at the line breaks of the text) and the text as its value.
inline print::Cell TextCell(print::Length left, print::Length top, print::Length width,
                            const std::string& text, int column = -1,
                            print::Align align = print::Align::Left) {
  print::Cell cell;
  cell.lines = print::Wrap(cell.style, text, 1000000);
  cell.box = {left, top, width, static_cast<print::Length>(cell.lines.size()) * 1035};
  cell.align = align;
  cell.value = text;
  cell.column = column;
  return cell;
}

/// A random page: every kind of band, cell and value.
class RandomPages {
 public:
  explicit RandomPages(unsigned seed) : random_(seed) {}

  print::Page Next() {
    print::Page page;
    page.number = ++number_;
    page.width = Number(10000, 100000);
    page.height = Number(10000, 100000);
    page.bands.resize(static_cast<std::size_t>(Number(0, 30)));
    for (print::PlacedBand& band : page.bands) Fill(band);
    return page;
  }

  std::string Text() {
    static const std::vector<std::string> kPieces{"Truck",  " ",
                                                  "\"",     "&<>",
                                                  "{\\}",   "\u00fc\u00df\u00e9",
                                                  "\u8eca", "\u05e9\u05dc\u05d5\u05dd",
                                                  "'",      "%",
                                                  ",",      ";",
                                                  "\n",     "=1+1",
                                                  "-",      std::string(1, '\0')};
    std::string text;
    const int count = Number(0, 99) == 0 ? 4000 : Number(0, 6);
    for (int i = 0; i < count; ++i)
      text += kPieces[static_cast<std::size_t>(Number(0, static_cast<int>(kPieces.size()) - 1))];
    return text;
  }

  rt::Value Value() {
    switch (Number(0, 9)) {
      case 0:
        return {};
      case 1:
        return Number(0, 1) == 1;
      case 2:
        return static_cast<std::int16_t>(Number(-32768, 32767));
      case 3:
        return static_cast<std::int32_t>(random_());
      case 4:
        return static_cast<float>(Number(-1000, 1000)) / 7.0F;
      case 5:
        return Number(-1000000, 1000000) / 3.0;
      case 6:
        return rt::Currency::FromUnits(static_cast<std::int64_t>(random_()) * Number(-1000000, 1000000));
      case 7:
        return rt::DateTime(Number(100, 9999), Number(1, 12), Number(1, 28), Number(0, 23), 5, 9);
      case 8:
        return rt::Binary{0, 255, 7};
      default:
        return Text();
    }
  }

  int Number(int smallest, int largest) {
    return std::uniform_int_distribution<int>(smallest, largest)(random_);
  }

 private:
  print::Box Box() { return {Number(-500, 80000), Number(-500, 80000), Number(0, 80000), Number(0, 80000)}; }
  print::Color Color() {
    const auto part = [this] { return static_cast<std::uint8_t>(Number(0, 255)); };
    return {part(), part(), part()};
  }
  void Fill(print::PlacedBand& band) {
    band.kind = static_cast<print::BandKind>(Number(0, 6));
    band.group = Number(-1, 3);
    band.subreport = Number(0, 2);
    band.continued = Number(0, 1) == 1;
    band.box = Box();
    band.rules.resize(static_cast<std::size_t>(Number(0, 3)));
    for (print::Rule& rule : band.rules) {
      rule.box = Box();
      rule.color = Color();
    }
    band.cells.resize(static_cast<std::size_t>(Number(0, 8)));
    for (print::Cell& cell : band.cells) {
      cell.box = Box();
      cell.align = static_cast<print::Align>(Number(0, 2));
      cell.style = {static_cast<print::FontFace>(Number(0, 4)), Number(100, 3000), Color()};
      for (int line = Number(0, 3); line > 0; --line) cell.lines.push_back(Text());
      cell.value = Number(0, 3) == 0 && !cell.lines.empty() ? rt::Value(cell.lines.front()) : Value();
      cell.format = Number(0, 1) == 1 ? "money" : "";
      cell.column = Number(-1, 5);
      cell.slot = Number(-1, 2);
      cell.heading = Number(0, 1) == 1;
      cell.columnTotal = Number(0, 1) == 1;
    }
  }

  std::mt19937 random_;
  int number_ = 0;
};

}  // namespace test
