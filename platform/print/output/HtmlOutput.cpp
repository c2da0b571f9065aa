// The report as one web page with one table.
#include <algorithm>
#include <array>
#include <cstdio>

#include "platform/print/output/RowTable.h"
#include "platform/print/output/Writers.h"

namespace print {
namespace {

/// On a narrow screen each row becomes a card with its headings; see PhoneStyle.
constexpr std::string_view kStyle =
    "body{font:14px/1.35 'Liberation Sans',Arial,Helvetica,sans-serif;color:#111;background:#fff;"
    "margin:1rem}\n"
    "h1{font-size:1.3rem;margin:0 0 .3rem}p{margin:0 0 .3rem}\n"
    "table{border-collapse:collapse;margin-top:.8rem}\n"
    "th,td{padding:.15rem .5rem;text-align:left;vertical-align:top}\n"
    "thead th{border-bottom:1px solid #444;position:sticky;top:0;background:#fff;vertical-align:bottom}\n"
    ".d:nth-child(even){background:#f2f4f7}\n"
    ".g td{padding-top:.7rem}.t td{border-top:1px solid #bbb}\n"
    ".r{text-align:right;white-space:nowrap}.c{text-align:center}\n"
    "b{font-weight:bold}\n"
    "@media print{thead{display:table-header-group}tr{break-inside:avoid}}\n";

std::string Escaped(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\n':
        escaped += "<br/>";
        break;
      default:
        escaped.push_back(c);
    }
  }
  return escaped;
}

/// A text inside quotes of a style sheet.
std::string StyleText(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') quoted.push_back('\\');
    // A style sheet inside a page ends at the first "</", also inside quotes.
    if (c == '<')
      quoted += "\\3c ";
    else
      quoted.push_back(c);
  }
  return quoted + "'";
}

class HtmlTable {
 public:
  HtmlTable(const PageStore& pages, OutputFile& file) : table_(pages), texts_(pages), file_(file) {}

  void Begin(const std::string& title) {
    file_.Write(
        "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\"/>\n"
        "<meta name=\"viewport\" content=\"width=device-width,initial-scale=1\"/>\n<title>" +
        Escaped(Clean(title)) + "</title>\n<style>\n" + std::string(kStyle) + PhoneStyle() +
        "</style>\n</head>\n<body>\n");
  }

  void Write(const PlacedBand& band) {
    if (band.kind == BandKind::PageHeader && !inTable_) return WriteTitles(band);
    OpenTable();
    for (const auto& row : RowsOf(band)) WriteRow(band, row);
  }

  void End() {
    OpenTable();
    file_.Write("</tbody>\n</table>\n</body>\n</html>\n");
  }

 private:
  std::string PhoneStyle() const {
    std::string style =
        "@media(max-width:40rem){thead{display:none}tr,td{display:block}"
        ".d{border:1px solid #ddd;border-radius:.3rem;margin:.4rem 0;padding:.2rem}"
        ".d td{display:flex;justify-content:space-between;text-align:right;white-space:normal}"
        "td:empty{display:none!important}";
    for (std::size_t i = 0; i < table_.All().size(); ++i)
      style += ".w td:nth-child(" + std::to_string(i + 1) +
               ")::before{content:" + StyleText(table_.All()[i].heading) +
               ";color:#555;margin-right:1rem;text-align:left}";
    return style + "}\n";
  }

  /// Titles stand above the table, headings are its head.
  void WriteTitles(const PlacedBand& band) {
    bool first = true;
    for (const auto& row : RowsOf(band)) {
      std::string line;
      for (const Cell* cell : row) {
        if (cell->heading) {
          auto& heading = headings_[static_cast<std::size_t>(table_.PlaceOf(*cell))];
          heading = Escaped(texts_.Joined(*cell));
          hasHeadings_ = true;
          continue;
        }
        const std::string text = Styled(*cell);
        if (!line.empty() && !text.empty()) line += " &#160; ";
        line += text;
      }
      if (line.empty()) continue;
      file_.Write(first ? "<h1>" + line + "</h1>\n" : "<p>" + line + "</p>\n");
      first = false;
    }
  }

  void OpenTable() {
    if (inTable_) return;
    inTable_ = true;
    file_.Write("<table>\n");
    if (hasHeadings_) {
      file_.Write("<thead><tr>");
      for (std::size_t i = 0; i < headings_.size(); ++i)
        file_.Write("<th" + Class(table_.All()[i].align) + ">" + headings_[i] + "</th>");
      file_.Write("</tr></thead>\n");
    }
    file_.Write("<tbody>\n");
  }

  static std::string Class(Align align) {
    if (align == Align::Right) return " class=\"r\"";
    return align == Align::Center ? " class=\"c\"" : "";
  }

  /// The text of a cell with what its style tells apart.
  std::string Styled(const Cell& cell) {
    std::string text;
    // What was wrapped or shortened for the paper is whole here.
    if (cell.value.Type() == rt::ValueType::Text && cell.format.empty()) {
      text = CleanLines(cell.value.AsText());
      while (text.ends_with('\n') || text.ends_with(' ')) text.pop_back();
    } else {
      text = texts_.Joined(cell);
    }
    if (text.empty()) return {};
    std::string styled = Escaped(text);
    const FontFace face = cell.style.face;
    if (face == FontFace::SansItalic || face == FontFace::SansBoldItalic) styled = "<i>" + styled + "</i>";
    if (face == FontFace::SansBold || face == FontFace::SansBoldItalic) styled = "<b>" + styled + "</b>";
    if (face == FontFace::Mono) styled = "<code>" + styled + "</code>";
    if (cell.style.color != Color{}) {
      std::array<char, 40> color{};
      std::snprintf(color.data(), color.size(), "<span style=\"color:#%02x%02x%02x\">", cell.style.color.red,
                    cell.style.color.green, cell.style.color.blue);
      styled = color.data() + styled + "</span>";
    }
    return styled;
  }

  void WriteRow(const PlacedBand& band, const std::vector<const Cell*>& row) {
    const int count = static_cast<int>(table_.All().size());
    std::string cells;
    int next = 0;       // the first column without a cell
    bool whole = true;  // each column has a cell of its own
    std::vector<std::pair<int, const Cell*>> placed;
    for (const Cell* cell : row) placed.emplace_back(table_.PlaceOf(*cell), cell);
    std::stable_sort(placed.begin(), placed.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    bool any = false;
    for (std::size_t i = 0; i < placed.size(); ++i) {
      std::string text = Styled(*placed[i].second);
      const int begin = placed[i].first;
      // What begins in the column of the cell before it goes into that cell.
      while (i + 1 < placed.size() && placed[i + 1].first == begin) {
        const std::string more = Styled(*placed[++i].second);
        if (!text.empty() && !more.empty()) text += ' ';
        text += more;
      }
      any = any || !text.empty();
      const int follower = i + 1 < placed.size() ? placed[i + 1].first : count;
      const int end =
          std::clamp(table_.EndOf(*placed[i].second) + 1, begin + 1, std::max(begin + 1, follower));
      for (; next < begin; ++next) cells += "<td></td>";
      cells += "<td" + Class(placed[i].second->align);
      if (end - begin > 1) {
        cells += " colspan=\"" + std::to_string(end - begin) + "\"";
        whole = false;
      }
      cells += ">" + text + "</td>";
      next = end;
    }
    if (!any) return;
    for (; next < count; ++next) cells += "<td></td>";
    std::string classes;
    const bool isRow = band.kind == BandKind::Detail && band.subreport == 0;
    if (isRow) classes = whole ? "d w" : "d";
    if (band.kind == BandKind::GroupHeader) classes = "g";
    if (band.kind == BandKind::GroupFooter || band.kind == BandKind::ReportFooter) classes = "t";
    file_.Write(classes.empty() ? "<tr>" : "<tr class=\"" + classes + "\">");
    file_.Write(cells);
    file_.Write("</tr>\n");
  }

  const TableColumns table_;
  PageTexts texts_;
  OutputFile& file_;
  std::vector<std::string> headings_ = std::vector<std::string>(table_.All().size());
  bool hasHeadings_ = false;
  bool inTable_ = false;
};

}  // namespace

bool WriteHtml(const PageStore& pages, const OutputProgress& progress, OutputFile& file) {
  HtmlTable table(pages, file);
  table.Begin(pages.Facts().title);
  if (!ReadThrough(pages, progress, [&](const Page&, const PlacedBand& band) { table.Write(band); }))
    return false;
  table.End();
  return true;
}

}  // namespace print
