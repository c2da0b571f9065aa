// What the windows of a condition and of a sort field share: one line of a definition, its table and its
// field.
#pragma once

#include <string>

#include "platform/controls/ComboBox.h"
#include "windows/RecordForm.h"

namespace dw {

/// The names by which the controls are known.
struct DefinitionLineNames {
  const char* lineNumber;
  const char* tableName;
  const char* fieldName;
};

/// A line of a definition. `definition.table` without its brackets is the table of the line, in the
/// definitions' file.
class DefinitionLine : public RecordForm {
 public:
  std::int32_t QueryID = 0;  ///< the definition that the line belongs to
  std::string ReportID;      ///< the primary table of the report

  ui::MaskEdBox lineNumber;  ///< `Line Number`
  ui::ComboBox tableName;    ///< `Table Name`; empty: the primary table
  ui::ComboBox fieldName;    ///< `Field Name`

 protected:
  DefinitionLine(const RecordDefinition& definition, const DefinitionLineNames& names);

  void FillPlaceholder() override;
  void ReportVanished() override;
  bool StaysUnheld() const override { return true; }
  void RecordLoaded() override;
  bool ValidData() override;
  bool StoreMore() override;

  /// The table whose columns the field is one of.
  std::string Table() const;

 private:
  bool TableIsThere() const;
  void FillFields();
  bool TableLeft();
  /// Reports a field that is missing or not in the table.
  bool FieldIsThere();
  bool FieldLeft();

  std::string table_;
};

}  // namespace dw
