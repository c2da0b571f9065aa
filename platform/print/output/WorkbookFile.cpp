#include "platform/print/output/WorkbookFile.h"

#include <fcntl.h>
#include <unistd.h>
#include <xlsxwriter.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "platform/print/PrintError.h"
#include "platform/print/TemporaryFile.h"
#include "platform/runtime/Clock.h"
#include "platform/runtime/Letters.h"

namespace print {
namespace {

constexpr int kMostRows = 1048576;
constexpr std::size_t kMostLetters = 32767;
constexpr int kDeepestOutline = 7;
constexpr double kPointsOfLetter = 4.9;  // the spreadsheet's letters are larger than those on paper

double Inches(Length length) { return static_cast<double>(length) / kInch; }

bool IsBold(FontFace face) { return face == FontFace::SansBold || face == FontFace::SansBoldItalic; }
bool IsItalic(FontFace face) { return face == FontFace::SansItalic || face == FontFace::SansBoldItalic; }

int ColorNumber(const Color& color) { return color.red << 16 | color.green << 8 | color.blue; }

/// Texts that are longer than a cell may be lose their end.
std::string Fitting(std::string text) {
  if (text.size() <= kMostLetters) return text;
  std::size_t end = kMostLetters;
  while (end > 0 && rt::IsContinuation(text[end])) --end;
  text.resize(end);
  return text;
}

std::tm CivilTime(const rt::DateTime& time) {
  std::tm civil{};
  civil.tm_year = time.Year() - 1900;
  civil.tm_mon = time.Month() - 1;
  civil.tm_mday = time.Day();
  civil.tm_hour = time.Hour();
  civil.tm_min = time.Minute();
  civil.tm_sec = time.Second();
  civil.tm_isdst = -1;
  return civil;
}

/// Whether a file ends as a whole workbook does. The library does not report a failure of its last bytes.
bool HasEnd(const std::string& path) {
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  const off_t size = lseek(fd, 0, SEEK_END);
  std::array<char, 22> end{};
  const bool whole = size > 22 && pread(fd, end.data(), end.size(), size - 22) == 22 &&
                     std::string_view(end.data(), 4) == std::string_view("PK\5\6", 4);
  close(fd);
  return whole;
}

}  // namespace

std::string SpreadsheetFormat(const std::string& format, const rt::Value& value) {
  if (value.Type() == rt::ValueType::Date)
    return value.AsDate().HasTime() && format != "date" ? "m/d/yyyy h:mm AM/PM" : "m/d/yyyy";
  const int decimals = format.empty() ? 0 : format.back() - '0';
  const std::string digits =
      decimals > 0 && decimals <= 4 ? "." + std::string(static_cast<std::size_t>(decimals), '0') : "";
  if (format.starts_with("money")) {
    const std::string amount = format == "money4" ? "$#,##0.0000" : "$#,##0.00";
    return amount + ";[Red](" + amount + ");\"\"";
  }
  if (format.starts_with("number")) return "#,##0" + digits + ";-#,##0" + digits + ";\"\"";
  if (format.starts_with("plain")) return "0" + digits;
  if (format.starts_with("percent")) return "0" + digits + "%";
  return {};
}

void WorkbookFile::WorkbookEnd::operator()(lxw_workbook* workbook) const { lxw_workbook_free(workbook); }

WorkbookFile::WorkbookFile(const ReportFacts& facts, const std::vector<TableColumn>& columns,
                           OutputFile& file)
    : facts_(facts), columns_(columns), file_(file) {
  temporaryDirectory_ = TemporaryDirectory();
  lxw_workbook_options options{};
  options.constant_memory = LXW_TRUE;
  options.tmpdir = temporaryDirectory_.data();
  options.use_zip64 = LXW_TRUE;
  workbook_.reset(workbook_new_opt(file.TemporaryPath().c_str(), &options));
  if (workbook_ == nullptr) throw std::bad_alloc();
  std::string title = Clean(facts.title).substr(0, 255);
  std::string author = Clean(facts.author).substr(0, 255);
  lxw_doc_properties properties{};
  properties.title = title.data();
  properties.author = author.data();
  std::tm now = CivilTime(rt::Now());
  properties.created = std::mktime(&now);
  workbook_set_properties(workbook_.get(), &properties);
  NewSheet();
}

WorkbookFile::~WorkbookFile() = default;

void WorkbookFile::NewSheet() {
  ++sheetNumber_;
  const std::string name = sheetNumber_ == 1 ? "Report" : "Report " + std::to_string(sheetNumber_);
  sheet_ = workbook_add_worksheet(workbook_.get(), name.c_str());
  if (sheet_ == nullptr || sheet_->optimize_tmpfile == nullptr)
    throw PrintError("No temporary file can be made in '" + temporaryDirectory_ +
                     "': " + ReasonOf(errno != 0 ? errno : ENOSPC) + ".");
  sheets_.push_back(sheet_);
  row_ = 0;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const double letters = std::max(static_cast<double>(columns_[i].width) / kPoint / kPointsOfLetter, 6.0);
    const auto column = static_cast<lxw_col_t>(i);
    // Notes below a row run over the whole page there; here they may run over the cells beside them.
    const double most = columns_[i].heading.empty() ? 30.0 : 80.0;
    worksheet_set_column(sheet_, column, column, std::min(letters, most), nullptr);
  }
  worksheet_outline_settings(sheet_, LXW_TRUE, LXW_TRUE, LXW_TRUE, LXW_FALSE);
  if (facts_.pageWidth > facts_.pageHeight) worksheet_set_landscape(sheet_);
  static constexpr Length kWidthOfA4 = 595 * kPoint;
  const Length narrow = std::min(facts_.pageWidth, facts_.pageHeight);
  worksheet_set_paper(sheet_, std::abs(narrow - kWidthOfA4) < 2 * kPoint ? 9 : 1);
  worksheet_fit_to_pages(sheet_, 1, 0);
  worksheet_set_margins(sheet_, Inches(facts_.marginLeft), Inches(facts_.marginRight),
                        Inches(facts_.marginTop), std::max(0.7, Inches(facts_.marginBottom)));
  worksheet_set_footer(sheet_, "&RPage &P of &N");
}

lxw_format* WorkbookFile::Format(const SheetLook& look) {
  const LookKey key{static_cast<int>(look.style.face),
                    look.style.size > 11 * kPoint ? look.style.size : 0,
                    ColorNumber(look.style.color),
                    static_cast<int>(look.align),
                    look.numbers,
                    look.wrapped,
                    look.lineAbove,
                    look.lineBelow};
  lxw_format*& format = formats_[key];
  if (format != nullptr) return format;
  format = workbook_add_format(workbook_.get());
  if (format == nullptr) throw std::bad_alloc();
  format_set_font_name(format, look.style.face == FontFace::Mono ? "Courier New" : "Arial");
  format_set_font_size(format, look.style.size > 11 * kPoint ? look.style.size / 100.0 : 10);
  if (IsBold(look.style.face)) format_set_bold(format);
  if (IsItalic(look.style.face)) format_set_italic(format);
  if (look.style.color != Color{})
    format_set_font_color(format, static_cast<lxw_color_t>(ColorNumber(look.style.color)));
  if (look.align == Align::Right) format_set_align(format, LXW_ALIGN_RIGHT);
  if (look.align == Align::Center) format_set_align(format, LXW_ALIGN_CENTER);
  format_set_align(format, LXW_ALIGN_VERTICAL_TOP);
  if (!look.numbers.empty()) format_set_num_format(format, look.numbers.c_str());
  if (look.wrapped) format_set_text_wrap(format);
  if (look.lineAbove) format_set_top(format, LXW_BORDER_THIN);
  if (look.lineBelow) format_set_bottom(format, LXW_BORDER_THIN);
  return format;
}

void WorkbookFile::Text(int column, const std::string& text, const SheetLook& look) {
  const std::string fitting = Fitting(text);
  worksheet_write_string(sheet_, static_cast<lxw_row_t>(row_), static_cast<lxw_col_t>(column),
                         fitting.c_str(), Format(look));
}

void WorkbookFile::Number(int column, double number, const SheetLook& look) {
  worksheet_write_number(sheet_, static_cast<lxw_row_t>(row_), static_cast<lxw_col_t>(column), number,
                         Format(look));
}

void WorkbookFile::Sum(int column, int first, int last, double number, const SheetLook& look) {
  std::array<char, LXW_MAX_CELL_RANGE_LENGTH> range{};
  lxw_rowcol_to_range(range.data(), static_cast<lxw_row_t>(first), static_cast<lxw_col_t>(column),
                      static_cast<lxw_row_t>(last), static_cast<lxw_col_t>(column));
  const std::string formula = "=SUBTOTAL(9," + std::string(range.data()) + ")";
  worksheet_write_formula_num(sheet_, static_cast<lxw_row_t>(row_), static_cast<lxw_col_t>(column),
                              formula.c_str(), Format(look), number);
}

void WorkbookFile::NextRow(int level) {
  if (level > 0) {
    lxw_row_col_options options{};
    options.level = static_cast<std::uint8_t>(std::min(level, kDeepestOutline));
    worksheet_set_row_opt(sheet_, static_cast<lxw_row_t>(row_), LXW_DEF_ROW_HEIGHT, nullptr, &options);
  }
  if (++row_ == kMostRows) NewSheet();
}

void WorkbookFile::FreezeHere(int headingRow) {
  worksheet_freeze_panes(sheet_, static_cast<lxw_row_t>(row_), 0);
  worksheet_repeat_rows(sheet_, static_cast<lxw_row_t>(headingRow), static_cast<lxw_row_t>(row_ - 1));
}

void WorkbookFile::CheckTemporaryRoom() {
  // The library does not look whether its temporary files are whole: the rows written so far, and their copy
  // that it makes at the end.
  const auto failed = [&](int error) {
    return PrintError("The temporary files of the spreadsheet cannot be written in '" + temporaryDirectory_ +
                      "': " + ReasonOf(error) + ".");
  };
  off_t rows = 0;
  for (lxw_worksheet* sheet : sheets_) {
    errno = 0;
    const bool flushed = std::fflush(sheet->optimize_tmpfile) == 0;
    if (!flushed || std::ferror(sheet->optimize_tmpfile) != 0) throw failed(errno != 0 ? errno : ENOSPC);
    rows = std::max(rows, static_cast<off_t>(std::ftell(sheet->optimize_tmpfile)));
  }
  std::string name = temporaryDirectory_ + "/dwroomXXXXXX";
  const int fd = mkostemp(name.data(), O_CLOEXEC);
  if (fd < 0) throw failed(errno);
  unlink(name.c_str());
  static constexpr off_t kAround = 64 * 1024;  // what stands around the rows
  const int error = posix_fallocate(fd, 0, rows + kAround);
  close(fd);
  if (error != 0) throw failed(error);
}

void WorkbookFile::Close() {
  CheckTemporaryRoom();
  errno = 0;
  const lxw_error error = workbook_close(workbook_.release());
  if (error != LXW_NO_ERROR || !HasEnd(file_.TemporaryPath())) file_.Fail(errno != 0 ? errno : ENOSPC);
}

}  // namespace print
