// One help page taken apart: its head, its text without tags, its links.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace dw {

struct HelpPage {
  std::string file;  ///< "frmDivisionList.html"
  std::string title;
  std::string keywords;
  std::vector<std::string> windows;
  std::string text;  ///< what a reader sees, blanks and line ends as single blanks
};

/// Reads the page from its HTML.
HelpPage ReadHelpPage(const std::string& file, std::string_view html);

/// HTML without its tags, with its entities as characters, and runs of blanks as single ones.
std::string PlainHelpText(std::string_view html);
/// The text between the first `<tag ...>` at or after `position` and its `</tag>`; moves the position behind
/// it. If there is none, returns an empty text and moves the position to the end.
std::string_view NextElement(std::string_view html, std::string_view tag, std::size_t& position);
/// The value of an attribute in the text of a tag; empty if it has none.
std::string Attribute(std::string_view tag, std::string_view name);

}  // namespace dw
