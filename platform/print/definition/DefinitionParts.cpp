#include "platform/print/definition/DefinitionParts.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace print {
namespace {

const std::string& NameOf(const XmlElement& element) {
  static const std::string none;
  for (const XmlAttribute& attribute : element.attributes)
    if (attribute.name == "name") return attribute.value.text;
  return none;
}

/// A fault in what was taken over is shown where it was taken over.
void PlaceAll(XmlElement& element, Place place) {
  element.place = place;
  element.text.pieces = {{0, place}};
  for (XmlAttribute& attribute : element.attributes) {
    attribute.place = place;
    attribute.value.pieces = {{0, place}};
  }
  for (XmlElement& child : element.children) PlaceAll(child, place);
}

bool HasOwn(const XmlElement& root, const XmlElement& element) {
  return std::any_of(root.children.begin(), root.children.end(), [&](const XmlElement& own) {
    return own.name == element.name && NameOf(own) == NameOf(element);
  });
}

std::optional<XmlElement> ReadPart(const XmlElement& use, const std::string& path, Faults& faults) {
  ElementReader reader(use, faults);
  const std::string name = reader.NeededWord("file");
  if (name.empty()) return std::nullopt;
  if (name.find_first_of("/\\") != std::string::npos) {
    reader.Fault("The file of <use> lies beside the definition; write its name alone.");
    return std::nullopt;
  }
  const std::filesystem::path file = std::filesystem::path(path).parent_path() / name;
  std::ifstream in(file, std::ios::binary);
  std::ostringstream content;
  content << in.rdbuf();
  if (!in) {
    reader.Fault("The file \"" + name + "\" cannot be read.");
    return std::nullopt;
  }
  try {
    XmlElement part = ReadXml(std::move(content).str());
    if (part.name == "part") return part;
    reader.Fault("The file \"" + name + "\" begins with <" + part.name + "> instead of <part>.");
  } catch (const XmlFault& fault) {
    reader.Fault(name + ", line " + std::to_string(fault.place.line) + ", column " +
                 std::to_string(fault.place.column) + ": " + fault.text);
  }
  return std::nullopt;
}

}  // namespace

void UseParts(XmlElement& root, const std::string& path, Faults& faults) {
  std::vector<XmlElement> children;
  std::vector<XmlElement> tables;
  for (XmlElement& child : root.children) {
    if (child.name != "use") {
      children.push_back(child);
      continue;
    }
    auto part = ReadPart(child, path, faults);
    if (!part) continue;
    PlaceAll(*part, child.place);
    for (XmlElement& shared : part->children) {
      if (shared.name == "use") {
        faults.Add(child.place, "A part has no element <use>.");
      } else if (shared.name == "data") {
        tables.insert(tables.end(), shared.children.begin(), shared.children.end());
      } else if (!HasOwn(root, shared)) {
        children.push_back(std::move(shared));
      }
    }
  }
  for (XmlElement& child : children)
    if (child.name == "data") child.children.insert(child.children.end(), tables.begin(), tables.end());
  root.children = std::move(children);
}

}  // namespace print
