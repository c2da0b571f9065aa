// Pages as a PDF document.
#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "platform/print/fonts/Fonts.h"
#include "platform/print/output/PageTexts.h"
#include "platform/print/output/PdfFile.h"
#include "platform/print/output/PdfFonts.h"
#include "platform/print/output/PdfOutline.h"
#include "platform/print/output/Writers.h"
#include "platform/runtime/Clock.h"

namespace print {
namespace {

/// Draws pages into content streams.
class PageDrawer {
 public:
  PageDrawer(const PageStore& pages, PdfFonts& fonts) : texts_(pages), fonts_(fonts) {}

  /// The content of the page, valid until the next call.
  const std::string& Draw(const Page& page) {
    out_.clear();
    height_ = page.height;
    color_ = {};
    for (const PlacedBand& band : page.bands)
      for (const Rule& rule : band.rules) DrawRule(rule);
    EndPath();
    out_ += "BT\n";
    font_ = nullptr;
    x_ = y_ = 0;
    for (const PlacedBand& band : page.bands)
      for (const Cell& cell : band.cells) DrawCell(cell);
    out_ += "ET\n";
    return out_;
  }

 private:
  void SetColor(const Color& color) {
    if (color == color_) return;
    color_ = color;
    const auto part = [this](std::uint8_t value) {
      AppendPoints(out_, (value * 100 + 127) / 255);
      out_.push_back(' ');
    };
    if (color.red == color.green && color.green == color.blue) {
      part(color.red);
      out_ += "g\n";
    } else {
      part(color.red);
      part(color.green);
      part(color.blue);
      out_ += "rg\n";
    }
  }

  void EndPath() {
    if (inPath_) out_ += "f\n";
    inPath_ = false;
  }

  void DrawRule(const Rule& rule) {
    if (rule.box.width <= 0 || rule.box.height <= 0) return;
    if (rule.color != color_) EndPath();
    SetColor(rule.color);
    AppendPoints(out_, rule.box.left);
    out_.push_back(' ');
    AppendPoints(out_, height_ - rule.box.top - rule.box.height);
    out_.push_back(' ');
    AppendPoints(out_, rule.box.width);
    out_.push_back(' ');
    AppendPoints(out_, rule.box.height);
    out_ += " re\n";
    inPath_ = true;
  }

  void DrawCell(const Cell& cell) {
    const std::vector<std::string>& lines = texts_.Lines(cell);
    if (std::all_of(lines.begin(), lines.end(), [](const std::string& line) { return line.empty(); })) return;
    if (font_ == nullptr || cell.style.face != style_.face || cell.style.size != style_.size) {
      style_ = cell.style;
      font_ = &fonts_.Of(cell.style.face);
      ascent_ = Ascent(cell.style);
      lineHeight_ = LineHeight(cell.style);
      out_ += "/F" + std::to_string(static_cast<int>(cell.style.face)) + " ";
      AppendPoints(out_, cell.style.size);
      out_ += " Tf\n";
    }
    SetColor(cell.style.color);
    Length baseline = cell.box.top + ascent_;
    for (const std::string& line : lines) {
      if (!line.empty()) DrawLine(cell, line, baseline);
      baseline += lineHeight_;
    }
  }

  void DrawLine(const Cell& cell, const std::string& line, Length baseline) {
    Length x = cell.box.left;
    if (cell.align != Align::Left) {
      const Length room =
          cell.box.width - Scaled(font_->Table(), font_->Table().Advance(line), cell.style.size);
      x += cell.align == Align::Right ? room : room / 2;
    }
    const Length y = height_ - baseline;
    AppendPoints(out_, std::int64_t{x} - x_);
    out_.push_back(' ');
    AppendPoints(out_, std::int64_t{y} - y_);
    out_ += " Td";
    font_->AppendString(out_, line);
    out_ += "Tj\n";
    x_ = x;
    y_ = y;
  }

  PageTexts texts_;
  PdfFonts& fonts_;
  std::string out_;
  Length height_ = 0;
  bool inPath_ = false;
  Color color_;
  // The state inside the text object: font, and where the last line began.
  PdfFont* font_ = nullptr;
  TextStyle style_;
  Length ascent_ = 0;
  Length lineHeight_ = 0;
  Length x_ = 0;
  Length y_ = 0;
};

/// The tree of pages: viewers open a long document faster if no node has many children.
class PageTree {
 public:
  PageTree(PdfFile& file, int root) : file_(file), root_(root) {}

  /// The object of the node that the next page belongs to.
  int NodeOfNext() {
    if (nodes_.empty() || nodes_.back().pages.size() == kChildren) nodes_.push_back({file_.Reserve(), {}});
    return nodes_.back().number;
  }
  void Add(int page) { nodes_.back().pages.push_back(page); }
  void Write(const std::string& resources) {
    std::string children;
    std::size_t count = 0;
    for (const Node& node : nodes_) {
      std::string pages;
      for (const int page : node.pages) pages += PdfReference(page) + " ";
      file_.Object(node.number, "<</Type/Pages/Parent " + PdfReference(root_) + "/Count " +
                                    std::to_string(node.pages.size()) + "/Kids[" + pages + "]>>");
      children += PdfReference(node.number) + " ";
      count += node.pages.size();
    }
    file_.Object(root_, "<</Type/Pages/Count " + std::to_string(count) + "/Kids[" + children +
                            "]/Resources<</Font<<" + resources + ">>>>>>");
  }

 private:
  static constexpr std::size_t kChildren = 64;
  struct Node {
    int number;
    std::vector<int> pages;
  };
  PdfFile& file_;
  int root_;
  std::vector<Node> nodes_;
};

std::string DateNow() {
  const rt::DateTime now = rt::Now();
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "(D:%04d%02d%02d%02d%02d%02d)", now.Year(), now.Month(), now.Day(),
                now.Hour(), now.Minute(), now.Second());
  return text.data();
}

std::string PageObject(int parent, const Page& page, int content) {
  std::string body = "<</Type/Page/Parent " + PdfReference(parent) + "/MediaBox[0 0 ";
  AppendPoints(body, page.width);
  body.push_back(' ');
  AppendPoints(body, page.height);
  return body + "]/Contents " + PdfReference(content) + ">>";
}

}  // namespace

bool WritePdf(const PageStore& pages, const PageRange& range, const OutputProgress& progress,
              OutputFile& file) {
  const PageSpan span = SpanOf(pages, range);
  PdfFile pdf(file);
  const int catalog = pdf.Reserve();
  const int root = pdf.Reserve();
  const int info = pdf.Reserve();
  PdfFonts fonts(pdf);
  PageDrawer drawer(pages, fonts);
  PageTree tree(pdf, root);
  std::vector<PdfPagePlace> places;
  for (int i = span.begin; i < span.end; ++i) {
    const Page page = pages.Read(i);
    const int parent = tree.NodeOfNext();
    const int object = pdf.Reserve();
    const int content = pdf.Reserve();
    pdf.Stream(content, "", drawer.Draw(page));
    pdf.Object(object, PageObject(parent, page, content));
    tree.Add(object);
    places.push_back({object, page.height});
    if (progress && !progress(i - span.begin + 1, span.end - span.begin)) return false;
  }
  tree.Write(fonts.Resources());
  fonts.Write();
  const int outline = WritePdfOutline(pdf, pages.Outline(), span.begin + 1, places);

  std::string body =
      "<</Type/Catalog/Pages " + PdfReference(root) + "/ViewerPreferences<</DisplayDocTitle true>>";
  if (outline != 0) body += "/Outlines " + PdfReference(outline) + "/PageMode/UseOutlines";
  pdf.Object(catalog, body + ">>");
  const ReportFacts& facts = pages.Facts();
  pdf.Object(info, "<</Title" + PdfText(facts.title) + "/Author" + PdfText(facts.author) +
                       "/Creator(Drovewright)/Producer(Drovewright)/CreationDate" + DateNow() + ">>");
  pdf.Finish(catalog, info);
  return true;
}

}  // namespace print
