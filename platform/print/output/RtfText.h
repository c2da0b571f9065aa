// Characters and their styles in RTF.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/print/Units.h"

namespace print {

/// Lengths in RTF: twentieths of a point.
inline int Twips(Length length) { return static_cast<int>((length + (length < 0 ? -2 : 2)) / 5); }

/// The text with everything beyond plain letters escaped; line breaks become \line.
std::string RtfEscaped(std::string_view text);

/// The colors of a document in the order of their first use; 0 is the reader's own black.
class RtfColors {
 public:
  void Add(const Color& color);
  int PlaceOf(const Color& color) const;
  /// The group of the document's head.
  std::string Table() const;

 private:
  std::vector<Color> colors_;
};

/// Writes texts with their styles; a style is written only where it changes.
class RtfRun {
 public:
  explicit RtfRun(const RtfColors& colors) : colors_(colors) {}
  /// The text, already escaped, and before it what differs from the style of the text before.
  std::string Text(const TextStyle& style, const std::string& escaped);
  /// The next text is the first of its part of the document.
  void Restart() { begun_ = false; }

 private:
  const RtfColors& colors_;
  bool begun_ = false;
  TextStyle style_;
};

}  // namespace print
