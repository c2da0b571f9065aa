#include "shell/Help.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <set>

#include "platform/runtime/Letters.h"
#include "platform/system/Machine.h"
#include "shell/HelpPage.h"

namespace dw {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kExcerptBefore = 40;
constexpr std::size_t kExcerptBehind = 110;
constexpr std::size_t kExcerptLength = kExcerptBefore + kExcerptBehind;
constexpr std::size_t kMostCounted = 10;

// The worth of a word, by where in the page it is found.
constexpr std::size_t kTitleWorth = 40;
constexpr std::size_t kKeywordWorth = 20;
constexpr std::size_t kPhraseWorth = 50;

constexpr std::string_view kBlanks = " \t\r\n";
/// The characters that are removed from both ends of a word: blanks and punctuation.
constexpr std::string_view kSigns = " \t\r\n\"'.,;:!?()[]&";

std::string directory;
/// The pages that were read; empty until the first call.
std::optional<std::vector<HelpPage>> pagesRead;

std::string ReadFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

const std::vector<HelpPage>& Pages() {
  if (pagesRead) return *pagesRead;
  std::vector<HelpPage> pages;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(HelpDirectory(), error))
    if (entry.path().extension() == ".html")
      pages.push_back(ReadHelpPage(entry.path().filename().string(), ReadFile(entry.path())));
  std::sort(pages.begin(), pages.end(),
            [](const HelpPage& a, const HelpPage& b) { return a.title < b.title; });
  pagesRead = std::move(pages);
  return *pagesRead;
}

std::string Trimmed(const std::string& word) {
  const std::size_t first = word.find_first_not_of(kSigns);
  const std::size_t last = word.find_last_not_of(kSigns);
  return first == std::string::npos ? std::string() : word.substr(first, last - first + 1);
}

std::size_t Count(const std::string& text, const std::string& word) {
  std::size_t count = 0;
  for (std::size_t at = text.find(word); at != std::string::npos && count < kMostCounted;
       at = text.find(word, at + word.size()))
    ++count;
  return count;
}

/// The text as it was typed, in lower case, with single blanks and without punctuation at its ends.
std::string Phrase(std::string_view text) {
  std::string phrase;
  for (const char c : rt::FoldCase(text)) {
    const bool blank = kBlanks.find(c) != std::string_view::npos;
    if (!blank) phrase += c;
    if (blank && !phrase.empty() && phrase.back() != ' ') phrase += ' ';
  }
  return Trimmed(phrase);
}

/// A page in the form in which it is searched.
struct Searched {
  std::string title;
  std::string keywords;
  std::string text;
};

/// How well the page fits; empty when it lacks a word.
std::optional<std::size_t> Worth(const Searched& page, const std::vector<std::string>& words) {
  std::size_t worth = 0;
  for (const std::string& word : words) {
    std::size_t here = Count(page.text, word);
    if (page.title.find(word) != std::string::npos) here += kTitleWorth;
    if (page.keywords.find(word) != std::string::npos) here += kKeywordWorth;
    if (here == 0) return std::nullopt;
    worth += here;
  }
  return worth;
}

std::string Excerpt(const std::string& text, std::size_t hit) {
  std::size_t begin = hit > kExcerptBefore ? text.find(' ', hit - kExcerptBefore) : 0;
  begin = begin == std::string::npos || begin > hit ? hit : begin + (begin > 0 ? 1 : 0);
  std::size_t end = begin + kExcerptLength;
  if (end < text.size()) {
    const std::size_t blank = text.rfind(' ', end);
    end = blank == std::string::npos || blank <= hit ? end : blank;
  }
  end = std::min(end, text.size());
  return (begin > 0 ? "..." : "") + text.substr(begin, end - begin) + (end < text.size() ? "..." : "");
}

}  // namespace

void SetUpHelp() { UseHelpDirectory((fs::path(sys::ProgramDirectory()) / "help").string()); }

void UseHelpDirectory(const std::string& folder) {
  directory = folder;
  pagesRead.reset();
}

std::string HelpDirectory() {
  if (directory.empty()) SetUpHelp();
  return directory;
}

bool HelpAvailable() {
  std::error_code error;
  return fs::is_regular_file(fs::path(HelpDirectory()) / kHelpContentsPage, error);
}

std::string PageOf(std::string_view window) {
  for (const HelpPage& page : Pages()) {
    const auto known = std::find(page.windows.begin(), page.windows.end(), window);
    if (known == page.windows.end()) continue;
    return known == page.windows.begin() ? page.file : page.file + "#" + *known;
  }
  return {};
}

std::vector<HelpSection> HelpContents() {
  const std::string html = ReadFile(fs::path(HelpDirectory()) / kHelpContentsPage);
  std::vector<HelpSection> sections;
  for (std::size_t at = html.find("<h2"); at != std::string::npos;) {
    const std::size_t next = html.find("<h2", at + 1);
    const std::string_view part = std::string_view(html).substr(at, next - at);
    std::size_t position = 0;
    HelpSection section{PlainHelpText(NextElement(part, "h2", position)), {}};
    while (position < part.size()) {
      const std::size_t link = part.find("<a ", position);
      if (link == std::string_view::npos) break;
      position = link;
      const std::string page = Attribute(part.substr(link, part.find('>', link) - link), "href");
      section.entries.push_back({PlainHelpText(NextElement(part, "a", position)), page});
    }
    sections.push_back(std::move(section));
    at = next;
  }
  return sections;
}

std::vector<std::string> HelpSearchWords(std::string_view text) {
  std::vector<std::string> words;
  const std::string lower = rt::FoldCase(text);
  for (std::size_t at = 0; at < lower.size();) {
    const std::size_t end = std::min(lower.find_first_of(kBlanks, at), lower.size());
    std::string word = Trimmed(lower.substr(at, end - at));
    if (!word.empty()) words.push_back(std::move(word));
    at = end + 1;
  }
  return words;
}

std::size_t BestHelpPlace(std::string_view text, const std::vector<std::string>& words) {
  const std::string lower = rt::FoldCase(text);
  std::map<std::size_t, std::size_t> places;  // where a word is, and which one
  for (std::size_t word = 0; word < words.size(); ++word)
    for (std::size_t at = lower.find(words[word]); at != std::string::npos;
         at = lower.find(words[word], at + 1))
      places.emplace(at, word);
  std::size_t best = 0;
  std::size_t most = 0;
  for (auto first = places.begin(); first != places.end(); ++first) {
    std::set<std::size_t> close;
    for (auto next = first; next != places.end() && next->first < first->first + kExcerptBehind; ++next)
      close.insert(next->second);
    if (close.size() <= most) continue;
    most = close.size();
    best = first->first;
  }
  return best;
}

std::vector<HelpHit> SearchHelp(std::string_view text) {
  const std::vector<std::string> words = HelpSearchWords(text);
  if (words.empty()) return {};
  const std::string phrase = Phrase(text);

  struct Found {
    std::size_t worth;
    HelpHit hit;
  };
  std::vector<Found> found;
  for (const HelpPage& page : Pages()) {
    // The page of contents has the titles of all other pages and no text of its own.
    if (page.file == kHelpContentsPage) continue;
    const Searched lower{rt::FoldCase(page.title), rt::FoldCase(page.keywords), rt::FoldCase(page.text)};
    std::optional<std::size_t> worth = Worth(lower, words);
    if (!worth) continue;
    if (words.size() > 1 && lower.text.find(phrase) != std::string::npos) *worth += kPhraseWorth;
    found.push_back({*worth, {page.title, page.file, Excerpt(page.text, BestHelpPlace(lower.text, words))}});
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const Found& a, const Found& b) { return a.worth > b.worth; });
  std::vector<HelpHit> hits;
  hits.reserve(found.size());
  for (Found& one : found) hits.push_back(std::move(one.hit));
  return hits;
}

}  // namespace dw
