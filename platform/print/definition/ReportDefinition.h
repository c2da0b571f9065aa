// A report as its definition file describes it, read and checked. Immutable once read.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/print/Units.h"
#include "platform/print/formula/Formula.h"

namespace print {

/// A fault of a definition file: "dwr006.rpt, line 12, column 8: ..."
struct DefinitionFault {
  std::string file;
  Place place;
  std::string text;
  std::string Shown() const;
};

struct JoinDefinition {
  std::string field;       ///< of this table
  std::string otherTable;  ///< its alias or name; empty: the field must equal the constant
  std::string otherField;
  rt::Value constant;  ///< so that a table with one row of settings joins every row
};

struct TableDefinition {
  std::string name;                   ///< in the data file
  std::string alias;                  ///< as the definition calls it; the name if it gives no other
  std::vector<JoinDefinition> joins;  ///< empty for the primary table, which is the first
};

/// A named look of texts: "title", "heading", "money", ...
struct NamedStyle {
  std::string name;
  TextStyle text;
  Align align = Align::Left;
  std::string format;
  std::optional<Color> negative;  ///< the color of negative numbers
};

struct ColumnDefinition {
  std::string name;
  Length left = 0;  ///< from the left margin, for the width of the paper that the definition was made for
  Length width = 0;
  std::string heading;
  int style = 0;  ///< its place in ReportDefinition::styles
};

/// Something that a band draws.
struct ItemDefinition {
  enum class Kind {
    Text,      ///< the value, wrapped if it grows, otherwise shortened
    Headings,  ///< the headings of all columns, wrapped, aligned as their columns
    Line,      ///< a horizontal line, or a vertical one if the width is 0
    Rectangle,
    Bar,        ///< a filled bar whose length is the value (0 to 1) of the width
    Subreport,  ///< the rows of another definition; grows
  };
  Kind kind = Kind::Text;
  int column = -1;               ///< lies in this column; -1 if it has a place of its own
  Length left = 0;               ///< from the left margin
  Length top = 0;                ///< from the top of the band
  std::optional<Length> width;   ///< nothing: to the right margin
  std::optional<Length> height;  ///< nothing: by the content
  bool grows = false;
  int style = 0;
  std::optional<Align> align;  ///< instead of the style's
  std::string format;          ///< instead of the style's; empty: the style's
  Formula value;
  Formula visible;         ///< empty: always
  bool lineAbove = false;  ///< a thin line over the cell, as over totals
  bool lineBelow = false;
  Color color;            ///< of lines, rectangles and bars
  std::string subreport;  ///< the name in ReportDefinition::subreports
};

enum class Shade { None, Alternate, Always };

struct BandDefinition {
  bool present = false;
  Length minimumHeight = 0;
  Length spaceBefore = 0;
  Length spaceAfter = 0;
  Shade shade = Shade::None;
  bool visible = true;  ///< what the section options change
  Formula showIf;       ///< empty: always
  bool newPageBefore = false;
  bool newPageAfter = false;
  std::vector<ItemDefinition> items;
};

enum class Keep { None, HeaderWithRows, WholeGroup };

struct GroupDefinition {
  Formula key;
  std::string keyText;  ///< as GroupOf compares it
  bool descending = false;
  Keep keep = Keep::HeaderWithRows;
  int keepRows = 2;
  bool repeatHeader = false;  ///< on each further page
  Formula treeTitle;          ///< the entry in the tree of groups; empty: the key
  BandDefinition header;
  BandDefinition footer;
};

struct OrderDefinition {
  int field = 0;  ///< its place among ReportDefinition::fields
  bool descending = false;
};

/// A column of the rows: every field that any formula, join, order or selection reads.
struct FieldDefinition {
  int table = 0;
  std::string column;
  rt::ValueType type = rt::ValueType::Null;
  std::string format;  ///< the display format of a plain field of this type
};

struct ReportDefinition;

struct SubreportDefinition {
  std::string name;
  std::shared_ptr<const ReportDefinition> report;
  /// The rows of the subreport are those whose field has the value that the outer row's field has.
  int innerField = 0;
  int outerField = 0;
};

struct ReportDefinition {
  std::string file;
  std::string name;
  Length pageWidth = 0;  ///< of the paper that the definition was made for
  Length pageHeight = 0;
  bool landscape = false;
  Length marginLeft = 0;
  Length marginTop = 0;
  Length marginRight = 0;
  Length marginBottom = 0;
  std::vector<TableDefinition> tables;
  std::vector<FieldDefinition> fields;
  std::vector<OrderDefinition> order;
  std::vector<NamedStyle> styles;  ///< the first is the default
  std::vector<ColumnDefinition> columns;
  std::vector<std::pair<std::string, Formula>> formulas;  ///< by name, in the file's order
  std::vector<GroupDefinition> groups;                    ///< from the outermost inwards
  BandDefinition reportHeader;
  BandDefinition pageHeader;
  BandDefinition detail;
  BandDefinition pageFooter;
  BandDefinition reportFooter;
  std::vector<SubreportDefinition> subreports;
  std::string emptyText;  ///< instead of rows, where there are none
  int fillBlankRows =
      0;            ///< after the last row, empty ruled rows of the detail to the end of the page if not 0
  Formula rowTest;  ///< what is left to test on each row of a definition's own selection; empty: nothing
};

}  // namespace print
