// A workbook that is written row by row, in little memory.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "platform/print/output/OutputFile.h"
#include "platform/print/output/RowTable.h"
#include "platform/runtime/Value.h"

struct lxw_format;
struct lxw_workbook;
struct lxw_worksheet;

namespace print {

/// How a cell looks.
struct SheetLook {
  TextStyle style;
  Align align = Align::Left;
  std::string numbers;  ///< a spreadsheet's number format; empty: general
  bool wrapped = false;
  bool lineAbove = false;
  bool lineBelow = false;
};

/// Rows go from the top down; a sheet that is full is followed by another one.
class WorkbookFile {
 public:
  WorkbookFile(const ReportFacts& facts, const std::vector<TableColumn>& columns, OutputFile& file);
  ~WorkbookFile();
  WorkbookFile(const WorkbookFile&) = delete;
  WorkbookFile& operator=(const WorkbookFile&) = delete;

  /// The row that is written now, from 0.
  int Row() const { return row_; }
  /// The number of the sheet, from 1.
  int Sheet() const { return sheetNumber_; }
  /// A text, never taken for a formula.
  void Text(int column, const std::string& text, const SheetLook& look);
  void Number(int column, double number, const SheetLook& look);
  /// The sum of the rows from `first` to `last` in the column, which is `number`; sums among these rows are
  /// not counted twice.
  void Sum(int column, int first, int last, double number, const SheetLook& look);
  /// Ends the row; `level` is its depth in the outline.
  void NextRow(int level);
  /// The rows down to the present one stay on the screen and stand on each printed page.
  void FreezeHere(int headingRow);
  /// Writes the workbook. Throws PrintError if it cannot be written whole.
  void Close();

 private:
  void NewSheet();
  lxw_format* Format(const SheetLook& look);
  void CheckTemporaryRoom();

  const ReportFacts& facts_;
  const std::vector<TableColumn>& columns_;
  OutputFile& file_;
  std::string temporaryDirectory_;
  struct WorkbookEnd {
    void operator()(lxw_workbook* workbook) const;
  };
  std::unique_ptr<lxw_workbook, WorkbookEnd> workbook_;
  std::vector<lxw_worksheet*> sheets_;
  lxw_worksheet* sheet_ = nullptr;
  int sheetNumber_ = 0;
  int row_ = 0;
  using LookKey = std::tuple<int, int, int, int, std::string, bool, bool, bool>;
  std::map<LookKey, lxw_format*> formats_;
};

/// The number format of a spreadsheet for a display format of the engine.
std::string SpreadsheetFormat(const std::string& format, const rt::Value& value);

}  // namespace print
