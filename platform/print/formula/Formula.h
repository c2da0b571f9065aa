// The language of reports: fields, formulas, operators, functions and totals.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/print/PrintError.h"
#include "platform/runtime/Value.h"

namespace print {

struct FormulaNode;  // see FormulaNode.h

/// A place in a text: line and column count from 1, in characters.
struct Place {
  int line = 1;
  int column = 1;
};

/// A fault of a formula's text.
class FormulaError : public PrintError {
 public:
  FormulaError(const std::string& text, Place place) : PrintError(text), place_(place) {}
  Place Where() const { return place_; }

 private:
  Place place_;
};

/// What a total covers: the rows of the group of the band that it stands in (for the report's own bands, all
/// rows), the whole report, one named group, the page, or the rows so far.
enum class TotalScope { Band, Report, Group, Page };
/// Percent is a share from 0 to 1: of what its argument sums to in the band's own scope (in a detail: the
/// row's own value) in the sum of the scope that it names; without a name, of the scope around the band's own
/// (in a detail: the innermost group). Running is the sum over the rows of its scope up to the present one.
enum class TotalKind { Sum, Count, DistinctCount, Average, Minimum, Maximum, First, Last, Percent, Running };

/// One total in a formula, in the order in which they are found.
struct Total {
  TotalKind kind = TotalKind::Sum;
  TotalScope scope = TotalScope::Band;
  int group = -1;  ///< for TotalScope::Group: 0 is the outermost
  std::shared_ptr<const FormulaNode> argument;
};

/// What names mean where a formula stands.
class FormulaScope {
 public:
  virtual ~FormulaScope() = default;
  /// The place of "Table.Field" among the columns of a row; nothing if there is no such field. Tables answer
  /// to their own name and to their alias, without regard to case.
  virtual std::optional<int> FieldPlace(std::string_view name) const = 0;
  virtual rt::ValueType FieldType(int place) const = 0;
  /// The tree of "{@name}"; null if there is no such formula. Throws FormulaError if formulas use each other
  /// in a circle.
  virtual std::shared_ptr<const FormulaNode> NamedFormula(std::string_view name) const = 0;
  /// The place of the group whose key is this field or formula; nothing if there is none.
  virtual std::optional<int> GroupOf(std::string_view key) const = 0;
};

/// Where an evaluation gets its values. The layout implements it for bands, the selection for rows.
class FormulaValues {
 public:
  virtual ~FormulaValues() = default;
  virtual const rt::Value& Field(int place) const = 0;
  /// The field in the row before or after; Null where there is none.
  virtual rt::Value Neighbor(int place, int distance) const = 0;
  /// A total of the formula by its place in Formula::Totals.
  virtual rt::Value TotalOf(int total) const = 0;
  virtual bool FirstInGroup(int group) const = 0;
  virtual bool LastInGroup(int group) const = 0;
  virtual std::int64_t RowNumber() const = 0;
  virtual int PageNumber() const = 0;
  /// How many pages the report has; Null as long as that is not known.
  virtual rt::Value PageCount() const = 0;
  virtual bool Continued() const = 0;
  virtual std::string ReportName() const = 0;
  virtual std::string User() const = 0;
  virtual rt::DateTime PrintTime() const = 0;
};

/// Where a formula is going to stand.
enum class FormulaUse {
  Anywhere,
  PerRow,  ///< in a selection, a group key or a sort: totals, other rows and pages are not there yet
};

/// A formula that was read and checked. Immutable; evaluations in several threads may share it.
class Formula {
 public:
  Formula() = default;
  /// Reads a text. Throws FormulaError with the place inside the text; names of fields, formulas and
  /// functions that do not exist, wrong numbers of arguments and operands whose types can never fit are
  /// faults too.
  static Formula Read(std::string_view text, const FormulaScope& scope,
                      FormulaUse use = FormulaUse::Anywhere);

  bool Empty() const { return root_ == nullptr; }
  const std::string& Text() const { return text_; }
  const std::vector<Total>& Totals() const { return totals_; }
  /// The fields that the formula reads, those of named formulas included, each once.
  const std::vector<int>& Fields() const { return fields_; }
  /// Whether the value is known only when all pages are (Pages).
  bool NeedsPages() const { return needsPages_; }
  /// If the formula is nothing but one total: that total's place. For spreadsheets.
  std::optional<int> SoleTotal() const;
  const FormulaNode* Root() const { return root_.get(); }
  /// The same, kept alive: what FormulaScope::NamedFormula returns.
  const std::shared_ptr<const FormulaNode>& Tree() const { return root_; }
  /// What the value's type will be where that is certain; Null where it depends on the row.
  rt::ValueType Type() const { return type_; }

  /// The value. Arithmetic with Null is Null, a division by zero is Null, money stays exact. Throws
  /// PrintError where a row's value makes no sense (a text that is no number in a sum); the caller says which
  /// row.
  rt::Value Evaluate(const FormulaValues& values) const;
  /// For selections: true only if the value is true; Null is not.
  bool Holds(const FormulaValues& values) const;

 private:
  std::string text_;
  std::shared_ptr<const FormulaNode> root_;
  std::vector<Total> totals_;
  std::vector<int> fields_;
  bool needsPages_ = false;
  rt::ValueType type_ = rt::ValueType::Null;
};

/// The value of a total's argument for one row. Throws as Formula::Evaluate does.
rt::Value EvaluateArgument(const Total& total, const FormulaValues& values);

/// The fault as people read it: 'Formula "RptTitle1", column 12: ...', with the line where there is more than
/// one. `name` says what the text is: 'Formula "RptTitle1"', "Selection".
std::string FaultText(std::string_view name, const FormulaError& error);

/// A value as a display format writes it: "money" ($1,234.50, parentheses when negative, empty for zero),
/// "money4", "number0" to "number4" (thousands, empty for zero), "plain0" to "plain4" (no thousands, zero
/// shown), "date" (M/d/yyyy), "datetime", "percent1", "yesno"; with an empty format as texts are joined. Null
/// is the empty text. Throws PrintError for an unknown format.
std::string FormatValue(const rt::Value& value, std::string_view format);
/// Whether there is such a format.
bool IsFormat(std::string_view format);

}  // namespace print
