#include "platform/print/layout/Paginator.h"

#include <algorithm>

namespace print {
namespace {

Length HeightOf(const std::vector<Atom>& atoms) {
  Length height = 0;
  for (const Atom& atom : atoms)
    for (const BuiltBand& band : atom)
      if (band.Seen()) height += band.Whole();
  return height;
}

const BuiltBand* FirstOf(const std::vector<Atom>& atoms) {
  for (const Atom& atom : atoms)
    if (!atom.empty()) return &atom.front();
  return nullptr;
}

/// Parts of an atom that is too high: each begins with headers, which stay with what follows them.
std::vector<Atom> AtHeaders(Atom atom) {
  std::vector<Atom> parts;
  bool header = true;
  for (BuiltBand& band : atom) {
    const bool begins = band.Seen() && band.parts.front().kind == BandKind::GroupHeader;
    if (parts.empty() || (begins && !header)) parts.emplace_back();
    if (band.Seen()) header = begins;
    parts.back().push_back(std::move(band));
  }
  return parts;
}

void MoveDown(PlacedBand& part, Length by) {
  part.box.top += by;
  for (Rule& rule : part.rules) rule.box.top += by;
  for (Cell& cell : part.cells) cell.box.top += by;
}

}  // namespace

Paginator::Paginator(const ReportDefinition& report, const ReportFacts& facts, Composer& composer,
                     PageStore& pages, Warn warn)
    : report_(report),
      facts_(facts),
      composer_(composer),
      pages_(pages),
      warn_(std::move(warn)),
      totals_(composer.Totals()) {}

Length Paginator::RepeatedHeight(const BuiltBand& band) const {
  Length height = 0;
  if (band.repeated)
    for (const auto& header : *band.repeated)
      if (header && header->Seen()) height += header->height + header->spaceAfter;
  // Headers that would fill the page are not repeated.
  return height > BodyHeight() / 2 ? 0 : height;
}

Length Paginator::FreshHeight(const BuiltBand& band) {
  if (!open_) OpenPage(band);
  return BodyHeight() - RepeatedHeight(band);
}

void Paginator::OpenPage(const BuiltBand& first) {
  ++number_;
  page_ = Page{number_, facts_.pageWidth, facts_.pageHeight, {}};
  deferred_.clear();
  open_ = true;
  empty_ = true;
  afterHeader_ = false;
  lastRow_ = first.row;
  const Length height = facts_.pageHeight - facts_.marginTop - facts_.marginBottom;
  BuiltBand header = composer_.PageHeader(first.row, number_);
  const Length footer = composer_.PageFooter(first.row, number_, totals_).height;
  bodyTop_ = facts_.marginTop + (header.Seen() ? header.height + header.spaceAfter : 0);
  limit_ = facts_.pageHeight - facts_.marginBottom - footer;
  if (BodyHeight() < height / 4) {
    warn_("page",
          report_.name + ": the header and footer leave less than a quarter of the page; they are cut.");
    bodyTop_ = std::min(bodyTop_, facts_.marginTop + height / 2);
    limit_ = std::max(limit_, bodyTop_ + height / 4);
    if (header.height > height / 2) SplitBand(header, height / 2);
  }
  if (header.Seen()) PutAt(std::move(header), facts_.marginTop);
  cursor_ = bodyTop_;
  if (RepeatedHeight(first) > 0) {
    for (const auto& again : *first.repeated) {
      if (!again || !again->Seen()) continue;
      PutAt(*again, cursor_);
      cursor_ += again->height + again->spaceAfter;
    }
  }
}

void Paginator::PutAt(BuiltBand band, Length top) {
  const std::size_t offset = page_.bands.size();
  for (PlacedBand& part : band.parts) {
    MoveDown(part, top);
    page_.bands.push_back(std::move(part));
  }
  for (DeferredCell& cell : band.deferred) deferred_.push_back({offset + cell.part, std::move(cell)});
}

void Paginator::Put(BuiltBand band) {
  if (!open_) OpenPage(band);
  if (band.Seen() && !empty_) cursor_ += band.spaceBefore;
  if (band.row >= 0) lastRow_ = band.row;
  if (band.outline) {
    band.outline->page = number_;
    band.outline->top = cursor_;
    pages_.AddOutline(*band.outline);
  }
  totals_.Add(band.pageValues, kPlacedLevel, kPageLevel,
              [this](std::size_t place, const rt::Error& error) { composer_.Refused(place, error); });
  if (!band.Seen()) return;
  const Length below = cursor_ + band.height + band.spaceAfter;
  afterHeader_ = band.parts.front().kind == BandKind::GroupHeader;
  PutAt(std::move(band), cursor_);
  cursor_ = below;
  empty_ = false;
}

void Paginator::Settle() {
  for (PageCell& late : deferred_) {
    Cell& cell = page_.bands[late.band].cells[late.deferred.cell];
    if (composer_.Settle(late.deferred, cell, number_, totals_)) continue;
    cell.lines.clear();
    cell.slot = pages_.NewSlot();
    waiting_.push_back({cell.slot, cell, std::move(late.deferred)});
  }
  deferred_.clear();
}

void Paginator::ClosePage() {
  BuiltBand footer = composer_.PageFooter(lastRow_, number_, totals_);
  const Length room = facts_.pageHeight - facts_.marginBottom - limit_;
  if (footer.height > room) {
    warn_("page footer", report_.name + ": the footer of page " + std::to_string(number_) +
                             " is higher than on the first page; its end is cut.");
    SplitBand(footer, room);
  }
  if (footer.Seen()) PutAt(std::move(footer), limit_);
  Settle();
  pages_.Append(page_);
  totals_.Reset(kPageLevel);
  open_ = false;
}

void Paginator::Split(BuiltBand band) {
  while (true) {
    if (!open_) OpenPage(band);
    const Length room = Left() - (empty_ ? 0 : band.spaceBefore);
    if (band.height <= room) {
      Put(std::move(band));
      return;
    }
    // Starting far down would leave a strip of it; a cut within the first line nothing at all.
    const bool strip = room < BodyHeight() / 3 && !afterHeader_;
    if (!empty_ && (strip || CutBetweenLines(band, room) <= 0)) {
      ClosePage();
      continue;
    }
    auto rest = SplitBand(band, room);
    if (!rest)
      warn_("clipped", report_.name + ", page " + std::to_string(number_) +
                           ": a band is higher than a page and cannot be split; its end is cut off.");
    Put(std::move(band));
    if (!rest) return;
    band = std::move(*rest);
    ClosePage();
  }
}

void Paginator::Place(BuiltBand band) {
  std::vector<Atom> atoms(1);
  atoms.front().push_back(std::move(band));
  Place(std::move(atoms));
}

void Paginator::Place(std::vector<Atom> atoms) {
  const BuiltBand* first = FirstOf(atoms);
  if (first == nullptr) return;
  if (first->newPageBefore && open_ && !empty_) ClosePage();
  if (!open_) OpenPage(*first);
  const Length height = HeightOf(atoms);
  const Length skipped = empty_ && first->Seen() ? first->spaceBefore : 0;
  if (height - skipped > Left()) {
    const bool fitsFresh = height - first->spaceBefore <= FreshHeight(*first);
    if (!fitsFresh && atoms.size() == 1) atoms = AtHeaders(std::move(atoms.front()));
    if (!fitsFresh && atoms.size() > 1) {
      for (Atom& atom : atoms) {
        std::vector<Atom> one;
        one.push_back(std::move(atom));
        Place(std::move(one));
      }
      return;
    }
    first = &atoms.front().front();
    const bool single = atoms.front().size() == 1;
    // A row that is too long for the page below its header begins there; the header must not stay alone.
    const bool cut = afterHeader_ && first->Seen() && first->parts.front().kind == BandKind::Detail &&
                     CutBetweenLines(*first, Left()) > 0;
    if (single && (!fitsFresh || cut)) {
      Split(std::move(atoms.front().front()));
      return;
    }
    if (!empty_) {
      ClosePage();
      OpenPage(*first);
    }
    if (!fitsFresh) {
      for (BuiltBand& band : atoms.front()) Place(std::move(band));
      return;
    }
  }
  for (Atom& atom : atoms)
    for (BuiltBand& band : atom) Put(std::move(band));
}

void Paginator::FillWithBlankRows(Length reserved) {
  while (true) {
    BuiltBand blank = composer_.BlankDetail();
    if (!blank.Seen()) return;
    if (!open_) OpenPage(blank);
    if (blank.Whole() > Left() - reserved) return;
    Put(std::move(blank));
  }
}

void Paginator::FillSlots(int pageCount) {
  for (Waiting& late : waiting_) {
    composer_.SettleLast(late.deferred, late.cell, pageCount);
    pages_.FillSlot(late.slot, {late.cell.lines.empty() ? "" : late.cell.lines.front(), late.cell.value});
  }
  waiting_.clear();
}

void Paginator::Finish() {
  if (!open_ && number_ == 0) OpenPage(BuiltBand());
  if (open_) ClosePage();
  FillSlots(number_);
}

void Paginator::Abandon() {
  open_ = false;
  FillSlots(pages_.PageCount());
}

}  // namespace print
