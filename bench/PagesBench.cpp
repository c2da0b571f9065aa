// Measures the report engine behind the layout: the page store and the outputs, on pages of a cost report
// that are made here. dwpagesbench [rows]
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#ifdef DWBENCH_CAIRO
#include <cairo-pdf.h>
#endif

#include "platform/print/fonts/Fonts.h"
#include "platform/print/output/Outputs.h"
#include "platform/print/pages/PageStore.h"

namespace {

using print::Align;
using print::BandKind;
using print::Cell;
using print::Length;
using print::Page;
using print::PageStore;
using print::PlacedBand;

constexpr Length kPt = print::kPoint;
constexpr Length kMargin = 36 * kPt;
constexpr int kRowsOfAsset = 40;

/// Seconds of the processor that `work` takes: others may use the machine at the same time.
template <class Work>
double Seconds(Work work) {
  const auto now = [] {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
  };
  const double start = now();
  work();
  return now() - start;
}

/// Seconds that pass while `work` is done, waiting for the disk and for the processor included.
template <class Work>
double Passing(Work work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

template <class Work>
double BestOf3(Work work) {
  return std::min({Seconds(work), Seconds(work), Seconds(work)});
}

double ResidentMegabytes() {
  std::ifstream file("/proc/self/statm");
  double total = 0;
  double resident = 0;
  file >> total >> resident;
  return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

void Tell(const char* name, double value, const char* unit) {
  std::printf("%-60s %12.2f %s\n", name, value, unit);
}

print::ReportFacts Facts() {
  print::ReportFacts facts;
  facts.title = "Equipment Costs By Class Listing";
  facts.author = "Fleet office";
  facts.pageWidth = 792 * kPt;
  facts.pageHeight = 612 * kPt;
  facts.marginLeft = facts.marginTop = facts.marginRight = facts.marginBottom = kMargin;
  const std::vector<std::pair<const char*, int>> columns{
      {"Date", 52},        {"Work Order", 70},    {"Mileage", 56}, {"Fuel", 60},
      {"Oil", 56},         {"Labor", 60},         {"Parts", 60},   {"Outside Fuel", 66},
      {"Outside Oil", 62}, {"Outside Other", 68}, {"Total", 70}};
  Length left = kMargin;
  int place = 0;
  for (const auto& [heading, width] : columns) {
    const bool text = place < 2;
    facts.columns.push_back({heading, heading, left, width * kPt, text ? Align::Left : Align::Right,
                             place == 0 ? "date" : (place > 2 ? "money" : (text ? "" : "number0"))});
    left += (width + 3) * kPt;
    ++place;
  }
  return facts;
}

/// Fills a store with the pages of a report by asset: rows, sums, shaded rows, late values.
class Report {
 public:
  Report(PageStore& pages, int rows) : pages_(pages), all_(pages.NewSlot()) {
    BeginPage();
    for (int row = 0; row < rows; ++row) {
      if (row % kRowsOfAsset == 0) Header(row / kRowsOfAsset);
      Row(row);
      if (row % kRowsOfAsset == kRowsOfAsset - 1) Footer();
    }
    EndPage();
    pages_.FillSlot(all_, {"Page count " + std::to_string(pages_.PageCount()), pages_.PageCount()});
    pages_.Finish();
  }

 private:
  static std::string Money(int cents) {
    std::string text =
        "$" + std::to_string(cents / 100 % 1000) + "." + std::to_string(cents % 100 + 100).substr(1);
    if (cents >= 100000) text.insert(1, std::to_string(cents / 100000) + ",");
    return cents % 97 == 0 ? "(" + text + ")" : text;
  }

  PlacedBand& Band(BandKind kind, Length height) {
    if (kind != BandKind::PageHeader && kind != BandKind::PageFooter && top_ + height > 560 * kPt) {
      EndPage();
      BeginPage();
    }
    PlacedBand band;
    band.kind = kind;
    band.box = {kMargin, top_, 720 * kPt, height};
    top_ += height;
    page_.bands.push_back(std::move(band));
    return page_.bands.back();
  }

  Cell At(int column, const PlacedBand& band, const std::string& text) const {
    const auto& known = pages_.Facts().columns[static_cast<std::size_t>(column)];
    Cell cell;
    cell.box = {known.left, band.box.top, known.width, 1035};
    cell.align = known.align;
    cell.lines = {text};
    cell.column = column;
    cell.format = known.format;
    cell.style.size = 8 * kPt;
    return cell;
  }

  void Header(int asset) {
    PlacedBand& band = Band(BandKind::GroupHeader, 14 * kPt);
    band.group = 0;
    Cell cell = At(0, band, "BUS-" + std::to_string(asset) + "  City bus with a wheelchair lift");
    cell.column = -1;
    cell.box.width = 400 * kPt;
    cell.style.face = print::FontFace::SansBold;
    cell.value = cell.lines.front();
    band.cells.push_back(cell);
    pages_.AddOutline({0, cell.lines.front(), page_.number, band.box.top});
  }

  void Row(int row) {
    PlacedBand& band = Band(BandKind::Detail, 10 * kPt);
    if (row % 2 == 1) band.rules.push_back({band.box, {242, 244, 247}});
    Cell date = At(0, band, std::to_string(row % 12 + 1) + "/" + std::to_string(row % 28 + 1) + "/2026");
    date.value = rt::DateTime(2026, row % 12 + 1, row % 28 + 1);
    Cell order = At(1, band, "WO-" + std::to_string(100000 + row));
    order.value = order.lines.front();
    Cell miles = At(2, band, std::to_string(row * 7 % 200000));
    miles.value = static_cast<double>(row * 7 % 200000);
    band.cells = {date, order, miles};
    for (int column = 3; column < 11; ++column) {
      const int cents = static_cast<int>(random_() % 500000);
      const std::string text = Money(cents);
      Cell cell = At(column, band, text);
      cell.value = rt::Currency::FromUnits((text[0] == '(' ? -cents : cents) * std::int64_t{100});
      sums_[static_cast<std::size_t>(column)] += std::get<rt::Currency>(cell.value.Data()).Units();
      band.cells.push_back(std::move(cell));
    }
  }

  void Footer() {
    PlacedBand& band = Band(BandKind::GroupFooter, 14 * kPt);
    band.group = 0;
    for (int column = 3; column < 11; ++column) {
      auto& units = sums_[static_cast<std::size_t>(column)];
      const rt::Currency sum = rt::Currency::FromUnits(units);
      Cell cell = At(column, band, sum.DisplayText());
      cell.value = sum;
      cell.columnTotal = true;
      cell.style.face = print::FontFace::SansBold;
      band.rules.push_back({{cell.box.left, band.box.top, cell.box.width, 50}, {}});
      band.cells.push_back(std::move(cell));
      units = 0;
    }
  }

  void BeginPage() {
    page_ = {};
    page_.number = pages_.PageCount() + 1;
    page_.width = 792 * kPt;
    page_.height = 612 * kPt;
    top_ = kMargin;
    PlacedBand& band = Band(BandKind::PageHeader, 40 * kPt);
    Cell title = At(0, band, pages_.Facts().title);
    title.column = -1;
    title.box.width = 720 * kPt;
    title.align = Align::Center;
    title.style = {print::FontFace::SansBold, 14 * kPt, {}};
    band.cells.push_back(title);
    for (int column = 0; column < 11; ++column) {
      Cell cell = At(column, band, pages_.Facts().columns[static_cast<std::size_t>(column)].heading);
      cell.box.top += 26 * kPt;
      cell.heading = true;
      cell.style.face = print::FontFace::SansBold;
      band.cells.push_back(std::move(cell));
    }
    band.rules.push_back({{kMargin, band.box.top + 38 * kPt, 720 * kPt, 75}, {}});
  }

  void EndPage() {
    top_ = 565 * kPt;
    PlacedBand& band = Band(BandKind::PageFooter, 11 * kPt);
    Cell by = At(0, band, "Generated by the fleet office on 6/30/2026 8:00 AM");
    Cell number = At(10, band, "");
    by.column = number.column = -1;
    number.lines.clear();
    number.slot = all_;
    band.cells = {by, number};
    pages_.Append(page_);
  }

  PageStore& pages_;
  int all_;
  Page page_;
  Length top_ = 0;
  std::array<std::int64_t, 11> sums_{};
  std::mt19937 random_{1};
};

#ifdef DWBENCH_CAIRO
/// Draws the pages into a PDF with the general drawing library; the time of drawing alone.
double CairoSeconds(const PageStore& pages, const std::string& path) {
  cairo_surface_t* surface = cairo_pdf_surface_create(path.c_str(), 792, 612);
  cairo_t* cairo = cairo_create(surface);
  double seconds = 0;
  for (int i = 0; i < pages.PageCount(); ++i) {
    const Page page = pages.Read(i);
    seconds += Seconds([&] {
      for (const PlacedBand& band : page.bands) {
        for (const print::Rule& rule : band.rules) {
          cairo_set_source_rgb(cairo, rule.color.red / 255.0, rule.color.green / 255.0,
                               rule.color.blue / 255.0);
          cairo_rectangle(cairo, rule.box.left / 100.0, rule.box.top / 100.0, rule.box.width / 100.0,
                          rule.box.height / 100.0);
          cairo_fill(cairo);
        }
        cairo_set_source_rgb(cairo, 0, 0, 0);
        for (const Cell& cell : band.cells) {
          cairo_select_font_face(cairo, "Liberation Sans", CAIRO_FONT_SLANT_NORMAL,
                                 cell.style.face == print::FontFace::SansBold ? CAIRO_FONT_WEIGHT_BOLD
                                                                              : CAIRO_FONT_WEIGHT_NORMAL);
          cairo_set_font_size(cairo, cell.style.size / 100.0);
          for (const std::string& line : cell.lines) {
            Length left = cell.box.left;
            if (cell.align != Align::Left) left += cell.box.width - print::TextWidth(cell.style, line);
            cairo_move_to(cairo, left / 100.0, (cell.box.top + print::Ascent(cell.style)) / 100.0);
            cairo_show_text(cairo, line.c_str());
          }
        }
      }
      cairo_show_page(cairo);
    });
  }
  seconds += Seconds([&] { cairo_surface_finish(surface); });
  cairo_destroy(cairo);
  cairo_surface_destroy(surface);
  return seconds;
}
#endif

void MeasureWidths() {
  const print::TextStyle style;
  std::vector<std::string> texts;
  for (int i = 0; i < 1000; ++i) texts.push_back("$" + std::to_string(100000 + i) + ".00");
  std::int64_t sum = 0;
  const double seconds = BestOf3([&] {
    for (int round = 0; round < 1000; ++round)
      for (const std::string& text : texts) sum += print::TextWidth(style, text);
  });
  if (sum == 0) std::abort();
  Tell("Width of a text of 10 letters", seconds * 1e9 / 1e6, "ns");
}

/// Before everything else: memory that was used and freed would hide what is needed.
void MeasureMemory(const std::string& directory) {
  static constexpr int kRows = 460000;
  print::TextWidth({}, "The tables of the fonts belong to the program.");
  const double before = ResidentMegabytes();
  double most = 0;
  PageStore pages(Facts());
  const Report report(pages, kRows);
  most = ResidentMegabytes();
  Tell("Memory with the pages in the store", most - before, "MB");
  print::WriteOutput(pages, print::OutputFormat::Pdf, directory + "/long.pdf", {}, [&](int page, int) {
    if (page % 500 == 0) most = std::max(most, ResidentMegabytes());
    return true;
  });
  std::printf("%-60s %12d\n", "Pages of it", pages.PageCount());
  Tell("The most memory while they became a PDF", std::max(most, ResidentMegabytes()) - before, "MB");
}

int Measure(int rows, const std::string& directory) {
  MeasureMemory(directory);
  MeasureWidths();
  {
    PageStore pages(Facts());
    const double append = Seconds([&] { const Report report(pages, rows); });
    const double count = pages.PageCount();
    Tell("Rows", rows, "");
    Tell("Pages", count, "");
    Tell("Pages made and appended", count / append, "pages/s");
    const double read = BestOf3([&] {
      for (int i = 0; i < pages.PageCount(); ++i) pages.Read(i);
    });
    Tell("Pages read", count / read, "pages/s");
    const auto write = [&](print::OutputFormat format, const char* name) {
      print::WriteOutput(pages, format, directory + "/" + name, {}, {});
    };
    const double pdf = BestOf3([&] { write(print::OutputFormat::Pdf, "a.pdf"); });
    Tell("PDF", count / pdf, "pages/s");
    Tell("PDF, by the clock on the wall", count / Passing([&] { write(print::OutputFormat::Pdf, "a.pdf"); }),
         "pages/s");
    Tell("PDF, size", static_cast<double>(std::filesystem::file_size(directory + "/a.pdf")) / count / 1000,
         "KB/page");
#ifdef DWBENCH_CAIRO
    const double cairo =
        std::min(CairoSeconds(pages, directory + "/c.pdf"), CairoSeconds(pages, directory + "/c.pdf"));
    Tell("Cairo, drawing alone", count / cairo, "pages/s");
    Tell("Cairo, size", static_cast<double>(std::filesystem::file_size(directory + "/c.pdf")) / count / 1000,
         "KB/page");
    Tell("PDF over Cairo", cairo / pdf, "times");
#endif
    for (const auto& [format, name] :
         {std::pair{print::OutputFormat::Rtf, "a.rtf"}, std::pair{print::OutputFormat::Spreadsheet, "a.xlsx"},
          std::pair{print::OutputFormat::Csv, "a.csv"}, std::pair{print::OutputFormat::Html, "a.html"},
          std::pair{print::OutputFormat::Text, "a.txt"}}) {
      const double seconds = BestOf3([&, format = format, name = name] { write(format, name); });
      const double size = static_cast<double>(std::filesystem::file_size(directory + "/" + name)) / 1e6;
      std::printf("%-60s %12.2f s, %.1f MB\n", name + 2, seconds, size);
    }
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const int rows = argc > 1 ? std::atoi(argv[1]) : 50000;
  const char* chosen = std::getenv("DWBENCH_DIR");
  std::string directory = std::string(chosen != nullptr ? chosen : "/tmp") + "/dwpagesXXXXXX";
  if (mkdtemp(directory.data()) == nullptr) return 1;
  int result = 1;
  try {
    result = Measure(rows, directory);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "dwpagesbench: %s\n", error.what());
  }
  std::error_code ignored;
  std::filesystem::remove_all(directory, ignored);
  return result;
}
