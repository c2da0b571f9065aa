// The help pages beside the program: which page belongs to which window, the table of contents, the search.
//
// A page is a small HTML file. Its head says which windows it explains, and under which further words people
// can find it:
//     <meta name="windows" content="frmDivisionList frmDivisionMaint">
//     <meta name="keywords" content="department branch">
// A page that explains several windows has an anchor with each window's name where its part begins.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace dw {

/// From now on looks for the pages in the folder "help" of the program's directory, and forgets the pages
/// that were read. The pages are read when they are first needed.
void SetUpHelp();
/// The same with another folder.
void UseHelpDirectory(const std::string& directory);
/// The folder of the pages, without a separator at its end.
std::string HelpDirectory();
/// Whether the pages exist: without the page of contents there is no help.
bool HelpAvailable();

inline constexpr const char* kHelpContentsPage = "contents.html";

/// The page of a window, by the window's name, with an anchor if the page explains several:
/// "frmDivisionList.html#frmDivisionMaint". Empty for a window without a page.
std::string PageOf(std::string_view window);

struct HelpEntry {
  std::string title;
  std::string page;
};

struct HelpSection {
  std::string title;
  std::vector<HelpEntry> entries;
};

/// The table of contents, as the page of contents lists it: its headings and the links below each.
std::vector<HelpSection> HelpContents();

struct HelpHit {
  std::string title;
  std::string page;
  std::string excerpt;  ///< plain text around the first place where a word is found
};

/// The pages that have all the words, in any case of letters, the best first: words in titles count most, and
/// pages with the text as it was typed come before those that have only its words.
std::vector<HelpHit> SearchHelp(std::string_view words);
/// The words of a search text, in lower case, without punctuation around them.
std::vector<std::string> HelpSearchWords(std::string_view text);
/// Where in the text most of the words are close together; the first such place, 0 if there is none.
std::size_t BestHelpPlace(std::string_view text, const std::vector<std::string>& words);

}  // namespace dw
