// Elements of a definition with their attributes, and what is wrong with them.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/print/Units.h"
#include "platform/print/definition/ReportDefinition.h"
#include "platform/print/definition/XmlTree.h"

namespace print {

/// The faults of one file.
class Faults {
 public:
  explicit Faults(std::string file) : file_(std::move(file)) {}
  void Add(Place place, std::string text) { all_.push_back({file_, place, std::move(text)}); }
  /// A fault of a text that a run put in, which has no place in the file.
  void AddOfRun(std::string text) { all_.push_back({"", Place{0, 0}, std::move(text)}); }
  /// In the order of the file.
  std::vector<DefinitionFault> Sorted() const;

 private:
  std::string file_;
  std::vector<DefinitionFault> all_;
};

/// Reads the attributes of one element. Those that were not asked for are reported as unknown at the end.
class ElementReader {
 public:
  ElementReader(const XmlElement& element, Faults& faults) : element_(element), faults_(faults) {}
  ~ElementReader();
  ElementReader(const ElementReader&) = delete;
  ElementReader& operator=(const ElementReader&) = delete;

  const XmlElement& Element() const { return element_; }
  /// Null if the element does not have it.
  const XmlAttribute* Take(std::string_view name);
  std::string Word(std::string_view name, const std::string& otherwise = {});
  /// An attribute that the element must have.
  std::string NeededWord(std::string_view name);
  bool YesNo(std::string_view name, bool otherwise);
  std::optional<Length> LengthOf(std::string_view name);
  std::optional<Color> ColorOf(std::string_view name);
  /// The place of the value among `words`.
  std::optional<int> Choice(std::string_view name, const std::vector<std::string_view>& words);
  void Fault(const XmlAttribute& attribute, std::string text) {
    faults_.Add(attribute.value.At({}), std::move(text));
  }
  void Fault(std::string text) { faults_.Add(element_.place, std::move(text)); }

 private:
  const XmlElement& element_;
  Faults& faults_;
  std::set<std::string, std::less<>> known_;
};

/// "36pt", "5mm", "0.5in"; nothing for another text or a length beyond 0 to 200 inches.
std::optional<Length> ParseLength(std::string_view text);

}  // namespace print
