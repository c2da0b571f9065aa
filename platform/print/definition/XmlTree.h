// XML files as a tree whose every part knows its place in the file.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/print/formula/Formula.h"

namespace print {

/// A text of the file with its entities resolved.
struct SourcedText {
  std::string text;
  /// From which byte of `text` on which place of the file is meant; up to the next one both go on alike.
  std::vector<std::pair<std::size_t, Place>> pieces;

  /// The place in the file of a place inside of the text.
  Place At(Place inside) const;
};

struct XmlAttribute {
  std::string name;
  SourcedText value;
  Place place;
};

struct XmlElement {
  std::string name;
  Place place;
  std::vector<XmlAttribute> attributes;
  SourcedText text;  ///< that of children left out
  std::vector<XmlElement> children;
};

/// Where reading ended early.
struct XmlFault {
  Place place;
  std::string text;
};

/// Reads a document of UTF-8. A document type, and with it every entity of its own, is refused, and so are
/// elements nested deeper than 20. Throws XmlFault.
XmlElement ReadXml(std::string_view content);

}  // namespace print
