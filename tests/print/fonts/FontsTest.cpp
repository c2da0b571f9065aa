#include "platform/print/fonts/Fonts.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <thread>

#include "platform/print/PrintError.h"
#include "platform/print/fonts/FontTable.h"
#include "platform/runtime/Letters.h"
#include "support/TempDirectory.h"

namespace print {
namespace {

using Lines = std::vector<std::string>;

constexpr TextStyle kTen{FontFace::Sans, 10 * kPoint, {}};

TEST(Fonts, WidthsAreThoseOfTheFontFile) {
  // 1139, 1366 and 569 of 2048 units.
  EXPECT_EQ(TextWidth(kTen, "0"), 556);
  EXPECT_EQ(TextWidth(kTen, "A"), 667);
  EXPECT_EQ(TextWidth(kTen, " "), 278);
  EXPECT_EQ(TextWidth({FontFace::Mono, 10 * kPoint, {}}, "iW\u00e9"), 1800);
  EXPECT_EQ(TextWidth(kTen, ""), 0);
  // Rounded once, not for each glyph; no kerning.
  EXPECT_EQ(TextWidth(kTen, "0000000000"), 5562);
  EXPECT_EQ(TextWidth(kTen, "AVAVAVAVAV"), 6670);
}

TEST(Fonts, DigitsAreOfOneWidthInEveryCut) {
  for (int face = 0; face < kFontFaces; ++face) {
    const TextStyle style{static_cast<FontFace>(face), 9 * kPoint, {}};
    for (const char* digit : {"1", "2", "3", "4", "5", "6", "7", "8", "9"})
      EXPECT_EQ(TextWidth(style, digit), TextWidth(style, "0")) << FontFile(style.face) << " " << digit;
  }
}

TEST(Fonts, CharactersThatTheFontLacksAreQuestionMarks) {
  EXPECT_EQ(TextWidth(kTen, "\u8eca\u4e21"), TextWidth(kTen, "??"));
  EXPECT_EQ(TextWidth(kTen, "\U0001F69A"), TextWidth(kTen, "?"));
  EXPECT_EQ(TextWidth(kTen, "\xff\xfe"), TextWidth(kTen, "??"));
  EXPECT_EQ(TextWidth(kTen, "a\xe2\x82"), TextWidth(kTen, "a??"));
  EXPECT_NE(TextWidth(kTen, "\u00dc"), TextWidth(kTen, "?"));
  // Marks without a picture take no room; a tab takes a blank's.
  EXPECT_EQ(TextWidth(kTen, "a\u200f\ufeff\x01"), TextWidth(kTen, "a"));
  EXPECT_EQ(TextWidth(kTen, "a\tb"), TextWidth(kTen, "a b"));
}

TEST(Fonts, LinesAreHigherThanTheirAscent) {
  for (int face = 0; face < kFontFaces; ++face) {
    const TextStyle style{static_cast<FontFace>(face), 10 * kPoint, {}};
    EXPECT_GT(Ascent(style), 800);
    EXPECT_GT(LineHeight(style), Ascent(style) + 200);
    EXPECT_LT(LineHeight(style), 1200);
  }
}

TEST(Fonts, TheFirstDirectoryThatHasTheFileCounts) {
  const test::TempDirectory directory;
  std::ofstream(directory.Path("a.ttf")) << "no font";
  EXPECT_EQ(FindFont({"/nowhere", directory.Path()}, "a.ttf"), directory.Path() + "/a.ttf");
  EXPECT_EQ(FindFont({"/nowhere", directory.Path()}, "b.ttf"), "");
  EXPECT_THROW(FontTable(directory.Path("a.ttf")), PrintError);
}

TEST(Fonts, AreReadOnceByManyThreads) {
  std::vector<std::thread> threads;
  std::vector<const FontTable*> tables(8);
  for (auto& table : tables) threads.emplace_back([&table] { table = &TableOf(FontFace::SansBoldItalic); });
  for (std::thread& thread : threads) thread.join();
  for (const FontTable* table : tables) EXPECT_EQ(table, tables.front());
}

TEST(Wrap, BreaksAtBlanksAndAfterHyphens) {
  EXPECT_EQ(Wrap(kTen, "", 1000), Lines{""});
  EXPECT_EQ(Wrap(kTen, "one two", TextWidth(kTen, "one two")), Lines{"one two"});
  EXPECT_EQ(Wrap(kTen, "one two", TextWidth(kTen, "one two") - 1), (Lines{"one", "two"}));
  EXPECT_EQ(Wrap(kTen, "one   two  ", TextWidth(kTen, "one t")), (Lines{"one", "two"}));
  EXPECT_EQ(Wrap(kTen, "well-made", TextWidth(kTen, "well-ma")), (Lines{"well-", "made"}));
  // A minus belongs to its number.
  EXPECT_EQ(Wrap(kTen, "by -100", TextWidth(kTen, "by -10")), (Lines{"by", "-100"}));
  // A blank that does not fit does not begin the next line.
  EXPECT_EQ(Wrap(kTen, "one two", TextWidth(kTen, "one")), (Lines{"one", "two"}));
  // An indent is kept where a letter fits behind it; blanks that are no break places stay.
  EXPECT_EQ(Wrap(kTen, "  one", 5000), Lines{"  one"});
  EXPECT_EQ(Wrap(kTen, "  one", 300), (Lines{"o", "n", "e"}));
  EXPECT_EQ(Wrap(kTen, "10\u00a0mm x", TextWidth(kTen, "10\u00a0m")), (Lines{"10\u00a0m", "m x"}));
}

TEST(Wrap, KeepsTheLineBreaksOfTheText) {
  EXPECT_EQ(Wrap(kTen, "a\nb\r\nc\rd", 5000), (Lines{"a", "b", "c", "d"}));
  EXPECT_EQ(Wrap(kTen, "a\n\nb\n", 5000), (Lines{"a", "", "b", ""}));
}

TEST(Wrap, CutsAWordThatIsTooWideAlone) {
  const Length three = TextWidth(kTen, "000");
  EXPECT_EQ(Wrap(kTen, "00000000", three), (Lines{"000", "000", "00"}));
  EXPECT_EQ(Wrap(kTen, "1 00000000", three), (Lines{"1", "000", "000", "00"}));
  // Never inside a character; always at least one character a line.
  EXPECT_EQ(Wrap(kTen, "\u00e9\u00e9\u8eca", 1), (Lines{"\u00e9", "\u00e9", "\u8eca"}));
  EXPECT_EQ(Wrap(kTen, "ab", -5), (Lines{"a", "b"}));
  EXPECT_EQ(Wrap(kTen, "ab", 0), (Lines{"a", "b"}));
}

TEST(Wrap, LosesNothingOfRandomTextsAndKeepsToTheWidth) {
  std::mt19937 random(7);
  const Lines pieces{"a", "Wagon", " ", "  ", "-", "\u00fc", "\u8eca", "12,345.67", "\n", "\xff", "(", "x-y"};
  for (int round = 0; round < 2000; ++round) {
    std::string text;
    const auto count = random() % 60;
    for (unsigned i = 0; i < count; ++i) text += pieces[random() % pieces.size()];
    const auto width = static_cast<Length>(random() % 8000);
    const Lines lines = Wrap(kTen, text, width);
    ASSERT_FALSE(lines.empty());
    std::string joined;
    for (const std::string& line : lines) {
      joined += line;
      const bool fits = TextWidth(kTen, line) <= width;
      const bool single = rt::Length(line) == 1;
      ASSERT_TRUE(fits || single) << "'" << line << "' in " << width;
    }
    const auto withoutBlanks = [](std::string letters) {
      std::erase_if(letters, [](char c) { return c == ' ' || c == '\n'; });
      return letters;
    };
    ASSERT_EQ(withoutBlanks(joined), withoutBlanks(text));
  }
}

TEST(Shorten, EndsWithAnEllipsisThatFits) {
  EXPECT_EQ(Shorten(kTen, "Trucks", TextWidth(kTen, "Trucks")), "Trucks");
  EXPECT_EQ(Shorten(kTen, "Wagons", TextWidth(kTen, "Wag\u2026")), "Wag\u2026");
  EXPECT_EQ(Shorten(kTen, "Big Truck", TextWidth(kTen, "Big \u2026")), "Big\u2026");
  EXPECT_EQ(Shorten(kTen, "Trucks", TextWidth(kTen, "\u2026")), "\u2026");
  EXPECT_EQ(Shorten(kTen, "Trucks", 3), "");
  EXPECT_EQ(Shorten(kTen, "\u00fc\u00fc\u00fc\u00fc", TextWidth(kTen, "\u00fc\u2026")), "\u00fc\u2026");
  EXPECT_EQ(Shorten(kTen, "one\r\ntwo\nthree", 90000), "one two three");
  const std::string long4000(4000, 'm');
  EXPECT_LE(TextWidth(kTen, Shorten(kTen, long4000, 12345)), 12345);
}

}  // namespace
}  // namespace print
