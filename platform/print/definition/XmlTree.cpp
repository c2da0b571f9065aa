#include "platform/print/definition/XmlTree.h"

#include <expat.h>

#include <algorithm>
#include <memory>
#include <optional>

#include "platform/runtime/Letters.h"

namespace print {
namespace {

constexpr std::size_t kMostDepth = 20;

/// Turns bytes of the file into places. Asked mostly for places that follow each other.
class Places {
 public:
  explicit Places(std::string_view content) : content_(content) {}

  Place Of(std::size_t byte) {
    byte = std::min(byte, content_.size());
    if (byte < at_) {
      at_ = 0;
      place_ = Place{};
    }
    for (; at_ < byte; ++at_) {
      if (content_[at_] == '\n') {
        ++place_.line;
        place_.column = 1;
      } else if (at_ + 1 >= content_.size() || !rt::IsContinuation(content_[at_ + 1])) {
        ++place_.column;
      }
    }
    return place_;
  }

 private:
  std::string_view content_;
  std::size_t at_ = 0;
  Place place_;
};

/// Builds the tree from what the parser reports.
class TreeBuilder {
 public:
  explicit TreeBuilder(std::string_view content)
      : content_(content), places_(content), parser_(XML_ParserCreate("UTF-8"), XML_ParserFree) {
    if (!parser_) throw std::bad_alloc();
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(
        parser_.get(),
        [](void* self, const XML_Char* name, const XML_Char** attributes) {
          static_cast<TreeBuilder*>(self)->Start(name, attributes);
        },
        [](void* self, const XML_Char*) { static_cast<TreeBuilder*>(self)->End(); });
    XML_SetCharacterDataHandler(parser_.get(), [](void* self, const XML_Char* text, int length) {
      static_cast<TreeBuilder*>(self)->Text({text, static_cast<std::size_t>(length)});
    });
    XML_SetStartDoctypeDeclHandler(
        parser_.get(), [](void* self, const XML_Char*, const XML_Char*, const XML_Char*, int) {
          static_cast<TreeBuilder*>(self)->Stop("A definition has no document type.");
        });
  }

  XmlElement Read() {
    const auto status =
        XML_Parse(parser_.get(), content_.data(), static_cast<int>(content_.size()), XML_TRUE);
    if (fault_) throw std::move(*fault_);
    if (status != XML_STATUS_OK) {
      const auto at =
          static_cast<std::size_t>(std::max<XML_Index>(0, XML_GetCurrentByteIndex(parser_.get())));
      throw XmlFault{places_.Of(at), std::string("This is not well-formed XML: ") +
                                         XML_ErrorString(XML_GetErrorCode(parser_.get())) + "."};
    }
    return std::move(root_);
  }

 private:
  std::size_t Here() const { return static_cast<std::size_t>(XML_GetCurrentByteIndex(parser_.get())); }

  void Stop(std::string text) {
    if (fault_) return;
    fault_ = XmlFault{places_.Of(Here()), std::move(text)};
    XML_StopParser(parser_.get(), XML_FALSE);
  }

  void Start(const XML_Char* name, const XML_Char** attributes) {
    if (fault_) return;
    if (open_.size() >= kMostDepth) return Stop("Elements are nested deeper than 20.");
    XmlElement element;
    element.name = name;
    element.place = places_.Of(Here());
    for (; *attributes; attributes += 2) {
      XmlAttribute attribute;
      attribute.name = attributes[0];
      attribute.value.text = attributes[1];
      element.attributes.push_back(std::move(attribute));
    }
    LocateAttributes(element);
    open_.push_back(std::move(element));
  }

  void End() {
    if (fault_) return;
    XmlElement element = std::move(open_.back());
    open_.pop_back();
    if (open_.empty())
      root_ = std::move(element);
    else
      open_.back().children.push_back(std::move(element));
  }

  void Text(std::string_view text) {
    if (fault_ || open_.empty()) return;
    SourcedText& all = open_.back().text;
    all.pieces.emplace_back(all.text.size(), places_.Of(Here()));
    all.text += text;
  }

  /// The parser does not say where in the tag an attribute stands, so the tag is looked through again. It is
  /// well-formed, and its attributes come in the same order.
  void LocateAttributes(XmlElement& element) {
    std::size_t at = Here() + 1 + element.name.size();
    const auto skipBlanks = [&] {
      while (at < content_.size() && std::string_view(" \t\r\n").find(content_[at]) != std::string_view::npos)
        ++at;
    };
    for (auto& attribute : element.attributes) {
      skipBlanks();
      attribute.place = places_.Of(at);
      at = std::min(content_.find('=', at), content_.size() - 1) + 1;
      skipBlanks();
      if (at >= content_.size()) return;
      const char mark = content_[at++];
      at = LocatePieces(attribute.value, at, mark);
    }
  }

  /// Notes a place at the beginning of the value and behind each entity and line break. Returns the byte
  /// behind the closing mark.
  std::size_t LocatePieces(SourcedText& value, std::size_t at, char mark) {
    std::size_t decoded = 0;
    value.pieces.emplace_back(0, places_.Of(at));
    while (at < content_.size() && content_[at] != mark) {
      if (content_[at] == '&') {
        at = std::min(content_.find(';', at), content_.size() - 1) + 1;
        // An entity stands for one character.
        const std::string_view rest =
            std::string_view(value.text).substr(std::min(decoded, value.text.size()));
        decoded += rest.empty() ? 0 : rt::FirstCharacter(rest).bytes;
        value.pieces.emplace_back(decoded, places_.Of(at));
      } else if (content_[at] == '\n' || content_[at] == '\r') {
        // Both together become one blank.
        at += content_.substr(at, 2) == "\r\n" ? 2 : 1;
        value.pieces.emplace_back(++decoded, places_.Of(at));
      } else {
        ++at;
        ++decoded;
      }
    }
    return at + 1;
  }

  std::string_view content_;
  Places places_;
  std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser_;
  std::vector<XmlElement> open_;
  XmlElement root_;
  std::optional<XmlFault> fault_;
};

}  // namespace

Place SourcedText::At(Place inside) const {
  // The byte of the text that is meant.
  std::size_t byte = 0;
  Place place;
  while (byte < text.size() && (place.line < inside.line || place.column < inside.column)) {
    if (text[byte] == '\n') {
      if (place.line == inside.line) break;
      ++place.line;
      place.column = 1;
    } else {
      ++place.column;
    }
    byte += rt::FirstCharacter(std::string_view(text).substr(byte)).bytes;
  }
  std::size_t start = 0;
  Place found;
  for (const auto& [from, where] : pieces) {
    if (from > byte) break;
    start = from;
    found = where;
  }
  for (; start < byte; start += rt::FirstCharacter(std::string_view(text).substr(start)).bytes) {
    if (text[start] == '\n') {
      ++found.line;
      found.column = 1;
    } else {
      ++found.column;
    }
  }
  return found;
}

XmlElement ReadXml(std::string_view content) { return TreeBuilder(content).Read(); }

}  // namespace print
