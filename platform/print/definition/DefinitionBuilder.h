// From the elements of a definition file to a checked report.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/print/definition/DefinitionReader.h"
#include "platform/print/definition/DefinitionScope.h"
#include "platform/print/definition/ElementReader.h"
#include "platform/print/definition/XmlTree.h"

namespace print {

/// Builds one report or subreport.
class DefinitionBuilder {
 public:
  /// `outer` is the report around a subreport, null for the report itself.
  DefinitionBuilder(Faults& faults, const store::Schema* schema, const ReportDefinition* outer);
  /// Always gives a report; whether it can be used the faults tell.
  std::shared_ptr<ReportDefinition> Build(const XmlElement& root, const std::string& file,
                                          const FormulaTexts& replaced,
                                          const std::vector<std::string>& extraFields);
  const DefinitionScope& Scope() const { return scope_; }

 private:
  struct Band {
    std::string_view element;
    BandDefinition* band;
  };

  void ReadPage(ElementReader& root);
  void ReadMargins(ElementReader& root);
  void ReadData(const XmlElement& data);
  void ReadTable(const XmlElement& element);
  void ReadJoin(const XmlElement& element, TableDefinition& table);
  bool HasColumn(int table, const std::string& column, const ElementReader& reader,
                 std::string_view attribute);
  void ReadOrder(const XmlElement& data);
  void ReadStyle(const XmlElement& element);
  void ReadColumn(const XmlElement& element);
  void DefineFormulas(const XmlElement& root, const FormulaTexts& replaced);
  void ReadGroup(const XmlElement& element);
  void ReadKeep(ElementReader& reader, GroupDefinition& group);
  void ReadSubreport(const XmlElement& element);
  void ReadLink(ElementReader& reader, const XmlElement& element, const DefinitionScope& inner,
                SubreportDefinition& subreport);

  BandDefinition ReadBand(const XmlElement& element);
  void ReadItem(const XmlElement& element, BandDefinition& band);
  void ReadPlace(ElementReader& reader, ItemDefinition& item, const BandDefinition& band);
  void ReadLook(ElementReader& reader, ItemDefinition& item);
  void ReadValue(ElementReader& reader, ItemDefinition& item);
  void ReadLines(ElementReader& reader, ItemDefinition& item);

  /// The formula of an attribute; empty if there is none or it is faulty.
  Formula FormulaAt(ElementReader& reader, std::string_view name, FormulaUse use = FormulaUse::Anywhere);
  Formula FormulaOf(const SourcedText& text, std::string_view called, FormulaUse use);
  int StyleAt(ElementReader& reader, int otherwise);
  Length UsableWidth() const;
  void CheckNoText(const XmlElement& element);

  Faults& faults_;
  const store::Schema* schema_;
  const ReportDefinition* outer_;
  std::shared_ptr<ReportDefinition> report_;
  DefinitionScope scope_;
};

/// The styles that every definition has; the first is the default.
std::vector<NamedStyle> OwnStyles();
/// Words between tags: blanks and line ends around them are left out, those inside count as one blank.
std::string PlainWords(std::string_view text);
/// The formulas that a run may set in every report.
const std::vector<std::string>& TitleFormulas();

}  // namespace print
