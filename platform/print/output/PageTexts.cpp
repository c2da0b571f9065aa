#include "platform/print/output/PageTexts.h"

#include <algorithm>

#include "platform/print/PrintError.h"
#include "platform/runtime/Letters.h"

namespace print {
namespace {

std::string Cleaned(std::string_view text, bool keepLines) {
  std::string clean;
  clean.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte >= 0x20 && byte < 0x7F) {
      clean.push_back(text[i++]);
      continue;
    }
    if (byte < 0x80) {
      const bool pair = byte == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
      if ((byte == '\n' || byte == '\r') && !pair) clean.push_back(keepLines ? '\n' : ' ');
      if (byte == '\t') clean.push_back(' ');
      ++i;
      continue;
    }
    const rt::Character character = rt::FirstCharacter(text.substr(i));
    // Neither the second set of control characters nor the two codes that XML refuses.
    const bool drawn = character.valid && character.code >= 0xA0 && (character.code & 0xFFFEU) != 0xFFFEU;
    if (drawn)
      clean.append(text.substr(i, character.bytes));
    else
      clean.push_back('?');
    i += character.bytes;
  }
  return clean;
}

}  // namespace

std::string Clean(std::string_view text) { return Cleaned(text, false); }
std::string CleanLines(std::string_view text) { return Cleaned(text, true); }

const std::vector<std::string>& PageTexts::Lines(const Cell& cell) {
  if (cell.slot < 0) return cell.lines;
  late_.clear();
  if (const auto slot = pages_.Slot(cell.slot); slot && !slot->text.empty()) late_.push_back(slot->text);
  return late_;
}

std::string PageTexts::Joined(const Cell& cell) {
  std::string joined;
  for (const std::string& line : Lines(cell)) {
    if (!joined.empty() && !line.empty()) joined += ' ';
    joined += line;
  }
  return Clean(joined);
}

rt::Value PageTexts::Value(const Cell& cell) {
  if (cell.slot < 0) return cell.value;
  const auto slot = pages_.Slot(cell.slot);
  return slot ? slot->value : rt::Value();
}

PageSpan SpanOf(const PageStore& pages, const PageRange& range) {
  const int count = pages.PageCount();
  if (count == 0) throw PrintError("The report has no pages.");
  PageSpan span;
  span.begin = std::max(1, range.first) - 1;
  span.end = range.last <= 0 ? count : std::min(range.last, count);
  if (span.begin >= span.end) {
    throw PrintError("The report has pages 1 to " + std::to_string(count) +
                     "; none of them is in the range " + std::to_string(range.first) + " to " +
                     (range.last <= 0 ? "the end" : std::to_string(range.last)) + ".");
  }
  return span;
}

bool ReadThrough(const PageStore& pages, const OutputProgress& progress,
                 const std::function<void(const Page& page, const PlacedBand& band)>& take) {
  const PageSpan span = SpanOf(pages, {});
  for (int i = span.begin; i < span.end; ++i) {
    const Page page = pages.Read(i);
    for (const PlacedBand& band : page.bands) {
      const bool repeated = band.kind == BandKind::PageHeader && i > span.begin;
      if (!repeated && !band.continued && band.kind != BandKind::PageFooter) take(page, band);
    }
    if (progress && !progress(i + 1, span.end)) return false;
  }
  return true;
}

}  // namespace print
