// A small report with everything that outputs treat differently, laid out by hand.
#pragma once

#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "platform/print/fonts/Fonts.h"
#include "platform/print/pages/PageStore.h"
#include "print/SamplePages.h"

namespace test {

/// Builds the pages of a report with the columns Date, Notes, Miles and Cost, one row after the other.
class SampleReport {
 public:
  explicit SampleReport(const std::string& title = "Equipment Costs") {
    print::ReportFacts facts;
    facts.title = title;
    facts.author = "Pat O'Neil";
    facts.pageWidth = 612 * kPt;
    facts.pageHeight = 792 * kPt;
    facts.marginLeft = facts.marginRight = facts.marginTop = facts.marginBottom = 36 * kPt;
    facts.columns = {{"Date", "Date", 36 * kPt, 60 * kPt, print::Align::Left, "date"},
                     {"Notes", "Notes", 106 * kPt, 200 * kPt, print::Align::Left, ""},
                     {"Miles", "Miles", 316 * kPt, 80 * kPt, print::Align::Right, "number0"},
                     {"Cost", "Cost", 406 * kPt, 100 * kPt, print::Align::Right, "money"}};
    store_ = std::make_unique<print::PageStore>(facts);
    pages_ = store_->NewSlot();
    BeginPage();
  }

  /// A group header with a label, a key and a late share at the right.
  void Group(int level, const std::string& label, const std::string& key, bool continued = false) {
    print::PlacedBand& band = NewBand(print::BandKind::GroupHeader, 16 * kPt);
    band.group = level;
    band.continued = continued;
    const print::Length left = kMargin + level * 10 * kPt;
    print::Cell name = TextCell(left, y_ - 14 * kPt, 60 * kPt, label);
    name.value = {};
    print::Cell value =
        TextCell(left + 60 * kPt, y_ - 14 * kPt, 200 * kPt, key + (continued ? " (continued)" : ""));
    value.value = key;
    name.style.face = value.style.face = print::FontFace::SansBold;
    band.cells = {name, value};
    if (!continued) store_->AddOutline({level, key, page_.number, band.box.top});
  }

  void Row(const rt::DateTime& date, const std::string& notes, double miles, const std::string& cost,
           const std::string& shownCost) {
    const std::vector<std::string> lines = print::Wrap({}, notes, 200 * kPt);
    const auto height = static_cast<print::Length>(lines.size()) * 1100;
    print::PlacedBand& band = NewBand(print::BandKind::Detail, height);
    if (++rows_ % 2 == 0) band.rules.push_back({band.box, {242, 244, 247}});
    const print::Length top = y_ - height;
    print::Cell day = TextCell(kMargin, top, 60 * kPt, rt::ShortDate(date), 0);
    day.value = date;
    day.format = "date";
    print::Cell words = TextCell(kMargin + 70 * kPt, top, 200 * kPt, "", 1);
    words.lines = lines;
    words.value = notes;
    print::Cell distance = TextCell(kMargin + 280 * kPt, top, 80 * kPt, "", 2, print::Align::Right);
    distance.lines = {rt::Value(miles).AsText()};
    distance.value = miles;
    distance.format = "number0";
    band.cells = {day, words, distance, Money(top, cost, shownCost)};
  }

  /// A sum of the costs since the group (or of all, for level -1).
  void Total(int level, const std::string& cost, const std::string& shown) {
    print::PlacedBand& band =
        NewBand(level < 0 ? print::BandKind::ReportFooter : print::BandKind::GroupFooter, 15 * kPt);
    band.group = level;
    const print::Length top = y_ - 13 * kPt;
    band.rules.push_back({{kMargin + 370 * kPt, top - kPt, 100 * kPt, 50}, {}});
    print::Cell label = TextCell(kMargin, top, 200 * kPt, level < 0 ? "Report total" : "Total");
    label.value = {};
    print::Cell sum = Money(top, cost, shown);
    sum.columnTotal = true;
    sum.style.face = print::FontFace::SansBold;
    band.cells = {label, sum};
  }

  /// A line of a subreport below a row.
  void Inner(const std::string& text) {
    print::PlacedBand& band = NewBand(print::BandKind::Detail, 11 * kPt);
    band.subreport = 1;
    band.cells = {TextCell(kMargin + 80 * kPt, y_ - 11 * kPt, 300 * kPt, text)};
  }

  void BreakPage() {
    EndPage();
    BeginPage();
  }

  /// The band that was placed last, for changes.
  print::PlacedBand& Last() { return page_.bands.back(); }

  const print::PageStore& Finish() {
    EndPage();
    store_->FillSlot(pages_, {std::to_string(store_->PageCount()), store_->PageCount()});
    store_->Finish();
    return *store_;
  }
  print::PageStore& Store() { return *store_; }

 private:
  static constexpr print::Length kMargin = 36 * kPt;

  print::PlacedBand& NewBand(print::BandKind kind, print::Length height) {
    if (kind == print::BandKind::Detail && y_ + height > 740 * kPt) BreakPage();
    print::PlacedBand band;
    band.kind = kind;
    band.box = {kMargin, y_, 540 * kPt, height};
    y_ += height;
    page_.bands.push_back(band);
    return page_.bands.back();
  }

  print::Cell Money(print::Length top, const std::string& cost, const std::string& shown) const {
    print::Cell cell = TextCell(kMargin + 370 * kPt, top, 100 * kPt, shown, 3, print::Align::Right);
    const auto amount = rt::Currency::Parse(cost);
    cell.value = amount ? rt::Value(*amount) : rt::Value();
    cell.format = "money";
    if (amount && amount->Units() < 0) cell.style.color = {192, 0, 0};
    return cell;
  }

  void BeginPage() {
    page_ = {};
    page_.number = store_->PageCount() + 1;
    page_.width = 612 * kPt;
    page_.height = 792 * kPt;
    y_ = kMargin;
    print::PlacedBand& band = NewBand(print::BandKind::PageHeader, 50 * kPt);
    print::Cell title =
        TextCell(kMargin, kMargin, 540 * kPt, store_->Facts().title, -1, print::Align::Center);
    title.style = {print::FontFace::SansBold, 14 * kPt, {}};
    title.value = {};
    band.cells.push_back(title);
    int column = 0;
    for (const auto& fact : store_->Facts().columns) {
      print::Cell cell =
          TextCell(fact.left, kMargin + 34 * kPt, fact.width, fact.heading, column++, fact.align);
      cell.heading = true;
      cell.value = {};
      cell.style.face = print::FontFace::SansBold;
      band.cells.push_back(cell);
    }
    band.rules.push_back({{kMargin, kMargin + 47 * kPt, 540 * kPt, 75}, {64, 64, 64}});
  }

  void EndPage() {
    print::PlacedBand band;
    band.kind = print::BandKind::PageFooter;
    band.box = {kMargin, 745 * kPt, 540 * kPt, 11 * kPt};
    print::Cell by = TextCell(kMargin, 745 * kPt, 200 * kPt, "Generated by Pat");
    by.value = {};
    print::Cell number = TextCell(kMargin + 400 * kPt, 745 * kPt, 110 * kPt,
                                  "Page " + std::to_string(page_.number) + " of", -1, print::Align::Right);
    print::Cell all = TextCell(kMargin + 510 * kPt, 745 * kPt, 30 * kPt, "", -1, print::Align::Right);
    all.lines.clear();
    all.value = {};
    all.slot = pages_;
    band.cells = {by, number, all};
    page_.bands.push_back(band);
    store_->Append(page_);
  }

  std::unique_ptr<print::PageStore> store_;
  print::Page page_;
  print::Length y_ = 0;
  int pages_ = 0;
  int rows_ = 0;
};

/// Two groups on two pages, a continued header, a subreport, texts that each format must escape.
inline void FillSample(SampleReport& report) {
  const rt::DateTime day(2026, 3, 1);
  report.Group(0, "Class:", "Trucks & <Vans>");
  report.Row(day, "Oil \"changed\"; 5,5 l {5W-30} \\ done", 1234, "1234.5", "$1,234.50");
  report.Inner("Filter, seal");
  report.Inner("Brake \u00fc");
  report.Row(day, "=HYPERLINK(\"x\")", 10, "-20", "($20.00)");
  report.BreakPage();
  report.Group(0, "Class:", "Trucks & <Vans>", true);
  report.Row(day, "\u00dcberpr\u00fcfung \u8eca\u4e21 \u05e9\u05dc\u05d5\u05dd", 0, "5", "$5.00");
  report.Total(0, "1219.5", "$1,219.50");
  report.Group(0, "Class:", "Wagons");
  report.Row(rt::DateTime(2026, 12, 31), "Two lines of notes that do not fit into the width of the column", 7,
             "1", "$1.00");
  report.Total(0, "1", "$1.00");
  report.Total(-1, "1220.5", "$1,220.50");
}

inline std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace test
