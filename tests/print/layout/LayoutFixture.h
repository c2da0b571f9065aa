// Reports built in code, and their pages, for tests of the layout.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/print/layout/Layout.h"
#include "platform/runtime/Letters.h"

namespace print::test {

/// The fields of every test report. Their places are their numbers.
enum TestField { kOuter, kMiddle, kInner, kNumber, kMoney, kText, kLink, kFieldCount };

/// Reads formulas over the fields "T.Outer" ... "T.Link".
class ReportScope : public FormulaScope {
 public:
  std::map<std::string, Formula> named;
  std::vector<std::string> groups;

  std::optional<int> FieldPlace(std::string_view name) const override {
    static const std::vector<std::string> names{"T.Outer", "T.Middle", "T.Inner", "T.Number",
                                                "T.Money", "T.Text",   "T.Link"};
    for (std::size_t i = 0; i < names.size(); ++i)
      if (rt::EqualNoCase(names[i], name)) return static_cast<int>(i);
    return std::nullopt;
  }
  rt::ValueType FieldType(int place) const override {
    if (place == kNumber) return rt::ValueType::Long;
    if (place == kMoney) return rt::ValueType::Currency;
    return rt::ValueType::Text;
  }
  std::shared_ptr<const FormulaNode> NamedFormula(std::string_view name) const override {
    const auto found = named.find(std::string(name));
    return found == named.end() ? nullptr : found->second.Tree();
  }
  std::optional<int> GroupOf(std::string_view key) const override {
    for (std::size_t i = 0; i < groups.size(); ++i)
      if (rt::EqualNoCase(groups[i], key)) return static_cast<int>(i);
    return std::nullopt;
  }
};

/// A definition under construction. Letters are 9 points high; style 1 is money, style 2 a number.
class ReportBuilder {
 public:
  ReportBuilder() {
    report.name = "Test";
    report.pageWidth = 612 * kPoint;
    report.pageHeight = 792 * kPoint;
    report.marginLeft = report.marginTop = report.marginRight = report.marginBottom = 36 * kPoint;
    report.fields.resize(kFieldCount);
    for (int i = 0; i < kFieldCount; ++i)
      report.fields[static_cast<std::size_t>(i)].type = scope.FieldType(i);
    report.styles = {{"text", TextStyle{}, Align::Left, "", {}},
                     {"money", TextStyle{}, Align::Right, "money", Color{160, 0, 0}},
                     {"number", TextStyle{}, Align::Right, "plain0", {}}};
    report.columns = {{"Number", 0, 60 * kPoint, "Number", 2},
                      {"Money", 70 * kPoint, 90 * kPoint, "Money", 1},
                      {"Text", 180 * kPoint, 200 * kPoint, "Text", 0}};
  }

  Formula Read(const std::string& text) { return text.empty() ? Formula() : Formula::Read(text, scope); }

  ItemDefinition Text(const std::string& formula, Length left = 0, Length top = 0, bool grows = false) {
    ItemDefinition item;
    item.value = Read(formula);
    item.left = left;
    item.top = top;
    item.grows = grows;
    return item;
  }
  ItemDefinition Cell(int column, const std::string& formula, bool grows = false) {
    ItemDefinition item = Text(formula, 0, 0, grows);
    item.column = column;
    item.style = report.columns[static_cast<std::size_t>(column)].style;
    return item;
  }
  static void Fill(BandDefinition& band, std::vector<ItemDefinition> items) {
    band.present = true;
    band.items = std::move(items);
  }
  GroupDefinition& AddGroup(const std::string& key, const std::string& header, const std::string& footer) {
    scope.groups.push_back(key);
    GroupDefinition group;
    group.key = Read("{" + key + "}");
    group.keyText = key;
    if (!header.empty()) Fill(group.header, {Text(header)});
    if (!footer.empty()) Fill(group.footer, {Text(footer)});
    report.groups.push_back(std::move(group));
    return report.groups.back();
  }

  ReportScope scope;
  ReportDefinition report;
};

inline Row MakeRow(const std::string& outer, const std::string& middle, const std::string& inner, int number,
                   std::int64_t cents = 0, const std::string& text = {}) {
  return {outer, middle, inner, std::int32_t{number}, rt::Currency::FromUnits(cents * 100), text, rt::Null()};
}

/// A laid out report.
struct Result {
  std::unique_ptr<PageStore> store;
  std::vector<Page> pages;
  std::vector<std::string> warnings;

  /// The text of a cell, that of its slot included.
  std::string TextOf(const Cell& cell) const {
    if (cell.slot >= 0) return store->Slot(cell.slot).value_or(SlotValue{}).text;
    std::string text;
    for (const std::string& line : cell.lines) text += (text.empty() ? "" : " ") + line;
    return text;
  }
  /// "kind:text|text" for each band of a page, but for headings and empty bands.
  std::vector<std::string> Bands(std::size_t page) const {
    std::vector<std::string> all;
    for (const PlacedBand& band : pages.at(page).bands) {
      std::string text;
      for (const Cell& cell : band.cells) text += (text.empty() ? "" : "|") + TextOf(cell);
      all.push_back(text);
    }
    return all;
  }
  /// The texts of all bands of all pages, one band after the other.
  std::vector<std::string> Bands() const {
    std::vector<std::string> all;
    for (std::size_t i = 0; i < pages.size(); ++i)
      for (std::string& text : Bands(i)) all.push_back(std::move(text));
    return all;
  }
};

inline Result LayOutRows(const ReportDefinition& report, const ReportRows& rows,
                         const LayoutOptions& options = {}) {
  Result result;
  result.store = std::make_unique<PageStore>(FactsOf(report, options));
  const std::atomic<bool> cancel = false;
  LayOut(report, rows, options, *result.store, cancel, &result.warnings);
  for (int i = 0; i < result.store->PageCount(); ++i) result.pages.push_back(result.store->Read(i));
  return result;
}

inline Result LayOutRows(const ReportDefinition& report, const std::vector<Row>& rows,
                         const LayoutOptions& options = {}) {
  ReportRows spooled;
  for (const Row& row : rows) spooled.rows.Append(row);
  spooled.blank.resize(kFieldCount);
  return LayOutRows(report, spooled, options);
}

}  // namespace print::test
