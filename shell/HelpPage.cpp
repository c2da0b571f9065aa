#include "shell/HelpPage.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <utility>

namespace dw {
namespace {

constexpr bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

struct Entity {
  std::string_view name;
  std::string_view text;
};
constexpr std::array<Entity, 8> kEntities{{{"&amp;", "&"},
                                           {"&lt;", "<"},
                                           {"&gt;", ">"},
                                           {"&quot;", "\""},
                                           {"&apos;", "'"},
                                           {"&#39;", "'"},
                                           {"&nbsp;", " "},
                                           {"&ndash;", "-"}}};

/// Collects text; a run of blanks becomes one, and none is kept at either end.
class TextMaker {
 public:
  void Add(char c) {
    if (IsBlank(c)) {
      blank_ = !text_.empty();
      return;
    }
    if (std::exchange(blank_, false)) text_ += ' ';
    text_ += c;
  }
  void Add(std::string_view text) {
    for (const char c : text) Add(c);
  }
  std::string Take() { return std::move(text_); }

 private:
  std::string text_;
  bool blank_ = false;
};

/// Tags within a line of text; all others end a word.
bool IsInline(std::string_view tag) {
  static constexpr std::array<std::string_view, 7> kInline{"b", "i", "em", "strong", "a", "code", "span"};
  if (tag.starts_with("/")) tag.remove_prefix(1);
  tag = tag.substr(0, tag.find_first_of(" \t\r\n/"));
  return std::find(kInline.begin(), kInline.end(), tag) != kInline.end();
}

}  // namespace

std::string PlainHelpText(std::string_view html) {
  TextMaker text;
  for (std::size_t i = 0; i < html.size();) {
    if (html.substr(i).starts_with("<!--")) {
      const std::size_t end = html.find("-->", i);
      i = end == std::string_view::npos ? html.size() : end + 3;
    } else if (html[i] == '<') {
      const std::size_t end = std::min(html.find('>', i), html.size());
      if (!IsInline(html.substr(i + 1, end - i - 1))) text.Add(' ');
      i = end + 1;
    } else if (html[i] == '&') {
      const auto* known = std::find_if(kEntities.begin(), kEntities.end(), [&](const Entity& entity) {
        return html.substr(i).starts_with(entity.name);
      });
      text.Add(known == kEntities.end() ? html.substr(i, 1) : known->text);
      i += known == kEntities.end() ? 1 : known->name.size();
    } else {
      text.Add(html[i++]);
    }
  }
  return text.Take();
}

std::string_view NextElement(std::string_view html, std::string_view tag, std::size_t& position) {
  const std::string open = "<" + std::string(tag);
  const std::string close = "</" + std::string(tag) + ">";
  for (std::size_t at = html.find(open, position); at != std::string_view::npos;
       at = html.find(open, at + 1)) {
    const std::size_t behind = at + open.size();
    if (behind >= html.size() || (html[behind] != '>' && !IsBlank(html[behind]))) continue;
    const std::size_t begin = html.find('>', behind);
    const std::size_t end = html.find(close, behind);
    if (begin == std::string_view::npos || end == std::string_view::npos) break;
    position = end + close.size();
    return html.substr(begin + 1, end - begin - 1);
  }
  position = html.size();
  return {};
}

std::string Attribute(std::string_view tag, std::string_view name) {
  const std::string start = " " + std::string(name) + "=\"";
  const std::size_t at = tag.find(start);
  if (at == std::string_view::npos) return {};
  const std::size_t begin = at + start.size();
  const std::size_t end = std::min(tag.find('"', begin), tag.size());
  return std::string(tag.substr(begin, end - begin));
}

HelpPage ReadHelpPage(const std::string& file, std::string_view html) {
  HelpPage page;
  page.file = file;
  std::size_t position = 0;
  const std::string_view head = NextElement(html, "head", position);
  std::size_t inHead = 0;
  page.title = PlainHelpText(NextElement(head, "title", inHead));
  for (std::size_t at = head.find("<meta"); at != std::string_view::npos; at = head.find("<meta", at + 1)) {
    const std::string_view tag = head.substr(at, head.find('>', at) - at);
    const std::string name = Attribute(tag, "name");
    const std::string content = Attribute(tag, "content");
    if (name == "keywords") page.keywords = content;
    if (name != "windows") continue;
    std::istringstream windows(content);
    for (std::string window; windows >> window;) page.windows.push_back(window);
  }
  page.text = PlainHelpText(NextElement(html, "body", position));
  return page;
}

}  // namespace dw
