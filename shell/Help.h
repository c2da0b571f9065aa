// The help pages beside the program: which page belongs to which window, the table of contents, the search.
//
// A page is a small HTML file. It says in its head which windows it explains and under which further words it
// is to be found:
//     <meta name="windows" content="frmDivisionList frmDivisionMaint">
//     <meta name="keywords" content="department branch">
// A page that explains several windows has an anchor of the window's name where each begins.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace dw {

/// Looks for the pages in the folder "help" of the program's directory from now on, and forgets what was read
/// of them. The pages themselves are read when they are first asked for.
void SetUpHelp();
/// The same with another folder.
void UseHelpDirectory(const std::string& directory);
/// The folder of the pages, without a separator at its end.
std::string HelpDirectory();
/// Whether the pages are there: without the page of contents there is no help.
bool HelpAvailable();

inline constexpr const char* kHelpContentsPage = "contents.html";

/// The page of a window, by the window's name, with an anchor where the page explains several:
/// "frmDivisionList.html#frmDivisionMaint". Empty for a window that no page knows.
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
  std::string excerpt;  ///< plain text around the first place where a word stands
};

/// The pages that hold all the words, in any case of letters, the best first: words in titles count most,
/// and pages that hold the text as it was typed come before those that hold its words only.
std::vector<HelpHit> SearchHelp(std::string_view words);
/// What SearchHelp makes of a text: its words in lower case, without signs around them.
std::vector<std::string> HelpSearchWords(std::string_view text);
/// Where in the text the most of the words stand close together; the first such place, 0 where none stands.
std::size_t BestHelpPlace(std::string_view text, const std::vector<std::string>& words);

}  // namespace dw
