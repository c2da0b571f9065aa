// The rows of a report with commas between their values.
#include <algorithm>
#include <iterator>
#include <map>

#include "platform/print/output/RowTable.h"
#include "platform/print/output/Writers.h"
#include "platform/runtime/Text.h"

namespace print {
namespace {

/// A text that a spreadsheet program would take for a formula gets an apostrophe in front, as people would
/// type it. A number with a sign, and a sign alone, are no formulas.
std::string Guarded(std::string text) {
  // Some programs skip blanks at the start.
  const std::size_t first = text.find_first_not_of(' ');
  const bool suspect =
      first != std::string::npos && std::string_view("=+-@").find(text[first]) != std::string_view::npos;
  if (suspect && first + 1 < text.size() && !rt::IsNumeric(text)) text.insert(text.begin(), '\'');
  return text;
}

/// Numbers plainly, dates as year-month-day, texts in full: what other programs read.
std::string PlainValue(const rt::Value& value, const std::string& shown) {
  switch (value.Type()) {
    case rt::ValueType::Integer:
    case rt::ValueType::Long:
    case rt::ValueType::Single:
    case rt::ValueType::Double:
    case rt::ValueType::Currency:
      return value.AsText();
    case rt::ValueType::Date: {
      const rt::DateTime date = value.AsDate();
      const std::string iso = date.ToIso();
      return date.HasTime() ? iso : iso.substr(0, iso.find(' '));
    }
    case rt::ValueType::Text:
      return Guarded(CleanLines(value.AsText()));
    default:
      return Guarded(shown);
  }
}

std::string Field(const std::string& text) {
  if (text.find_first_of(",\"\n") == std::string::npos && !text.starts_with(' ') && !text.ends_with(' '))
    return text;
  return rt::Enclosed(text, '"');
}

/// Collects the values of one row; the columns of the file are found in a first run over all rows.
class CsvRows {
 public:
  CsvRows(const PageStore& pages, bool marked, OutputFile& file)
      : table_(pages), texts_(pages), marked_(marked), file_(file) {}

  /// The first run: which columns there are.
  void Look(const PlacedBand& band) { Take(band, false); }
  void Begin() {
    EndRow(false);
    Settle();
    if (marked_ && beyondAscii_) file_.Write("\xEF\xBB\xBF");
    std::vector<std::string> names(columns_.size());
    for (const auto& [key, column] : columns_)
      names[static_cast<std::size_t>(column.place)] = Field(column.name);
    WriteLine(names);
    keys_.clear();
  }
  void Write(const PlacedBand& band) { Take(band, true); }
  void End() { EndRow(true); }

 private:
  /// Group keys come first, then the table's columns, then the lines of subreports. `ordinal` tells apart
  /// what would be in one column.
  struct Key {
    int part;
    int group;
    Length place;
    int ordinal;
    friend auto operator<=>(const Key&, const Key&) = default;
  };
  struct Column {
    std::string name;
    int place = 0;
  };

  void Take(const PlacedBand& band, bool write) {
    if (band.subreport > 0) {
      if (rowOpen_) AddInner(band);
      return;
    }
    if (band.kind == BandKind::GroupHeader) {
      EndRow(write);
      TakeGroup(band);
    } else if (table_.HasDetails()
                   ? band.kind == BandKind::Detail
                   : band.kind == BandKind::GroupFooter && band.group == table_.InnermostGroup()) {
      EndRow(write);
      rowOpen_ = true;
      TakeRow(band);
    }
  }

  /// The keys of a group are what its header says with a value; a label before one names it.
  void TakeGroup(const PlacedBand& band) {
    for (auto key = keys_.begin(); key != keys_.end();)
      key = key->first.group >= band.group ? keys_.erase(key) : std::next(key);
    int ordinal = 0;
    for (const auto& row : RowsOf(band)) {
      std::string label;
      for (const Cell* cell : row) {
        if (cell->value.IsNull() || cell->columnTotal || cell->slot >= 0) {
          label = cell->slot < 0 ? texts_.Joined(*cell) : "";
          continue;
        }
        const Key key{0, band.group, 0, ordinal++};
        while (label.ends_with(':') || label.ends_with(' ')) label.pop_back();
        if (label.empty()) {
          label = "Group " + std::to_string(band.group + 1);
          if (key.ordinal > 0) label += "." + std::to_string(key.ordinal + 1);
        }
        Name(key, label);
        std::string text = PlainValue(cell->value, texts_.Joined(*cell));
        // A code joined with a description that is missing.
        while (text.ends_with(' ')) text.pop_back();
        keys_[key] = Seen(text);
        label.clear();
      }
    }
  }

  void TakeRow(const PlacedBand& band) {
    for (const auto& cells : RowsOf(band)) {
      for (const Cell* cell : cells) {
        const rt::Value value = texts_.Value(*cell);
        const std::string shown = texts_.Joined(*cell);
        // Labels of sums say nothing that the keys do not say.
        if (value.IsNull() && (shown.empty() || band.kind != BandKind::Detail)) continue;
        Key key{1, 0, table_.PlaceOf(*cell), 0};
        while (row_.contains(key)) ++key.ordinal;
        const auto& column = table_.All()[static_cast<std::size_t>(key.place)];
        std::string name =
            column.heading.empty() ? "Column " + std::to_string(key.place + 1) : column.heading;
        if (key.ordinal > 0) name += " " + std::to_string(key.ordinal + 1);
        Name(key, name);
        row_[key] = Seen(PlainValue(value, shown));
      }
    }
  }

  void AddInner(const PlacedBand& band) {
    if (band.kind != BandKind::Detail) return;
    std::string text;
    for (const Cell& cell : band.cells) {
      const std::string shown = texts_.Joined(cell);
      if (!text.empty() && !shown.empty()) text += ' ';
      text += shown;
    }
    if (text.empty()) return;
    const Key key{2, 0, 0, 0};
    Name(key, "Details");
    std::string& all = row_[key];
    all = Seen(all.empty() ? Guarded(text) : all + "; " + text);
  }

  void EndRow(bool write) {
    // A form's blank lines are no rows.
    const bool blank =
        std::all_of(row_.begin(), row_.end(), [](const auto& entry) { return entry.second.empty(); });
    if (rowOpen_ && write && !blank) {
      std::vector<std::string> fields(columns_.size());
      for (const auto* values : {&keys_, &row_})
        for (const auto& [key, text] : *values)
          fields[static_cast<std::size_t>(columns_.at(key).place)] = Field(text);
      WriteLine(fields);
    }
    rowOpen_ = false;
    row_.clear();
  }

  void Name(const Key& key, const std::string& name) {
    if (!settled_) columns_.try_emplace(key, Column{Seen(name), 0});
  }
  void Settle() {
    // A column of the table that no row filled is in the file all the same: columns do not come and go.
    for (std::size_t i = 0; i < table_.All().size(); ++i)
      if (!table_.All()[i].heading.empty()) Name({1, 0, static_cast<Length>(i), 0}, table_.All()[i].heading);
    int place = 0;
    for (auto& [key, column] : columns_) column.place = place++;
    settled_ = true;
  }

  std::string Seen(const std::string& text) {
    if (!settled_ && !beyondAscii_)
      beyondAscii_ = std::any_of(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; });
    return text;
  }

  void WriteLine(const std::vector<std::string>& fields) {
    std::string line;
    for (std::size_t i = 0; i < fields.size(); ++i) {
      if (i > 0) line.push_back(',');
      line += fields[i];
    }
    // A line with one empty field would be an empty line, which readers skip.
    if (fields.size() == 1 && line.empty()) line = "\"\"";
    file_.Write(line + "\r\n");
  }

  const TableColumns table_;
  PageTexts texts_;
  const bool marked_;
  OutputFile& file_;
  std::map<Key, Column> columns_;
  bool settled_ = false;
  bool beyondAscii_ = false;
  std::map<Key, std::string> keys_;  ///< of the groups that are open
  std::map<Key, std::string> row_;
  bool rowOpen_ = false;
};

}  // namespace

bool WriteCsv(const PageStore& pages, const OutputProgress& progress, bool marked, OutputFile& file) {
  CsvRows rows(pages, marked, file);
  ReadThrough(pages, {}, [&](const Page&, const PlacedBand& band) { rows.Look(band); });
  rows.Begin();
  if (!ReadThrough(pages, progress, [&](const Page&, const PlacedBand& band) { rows.Write(band); }))
    return false;
  rows.End();
  return true;
}

}  // namespace print
