#include "platform/print/layout/Keeper.h"

#include <algorithm>

namespace print {

Keeper::Keeper(const ReportDefinition& report, const LayoutOptions& options, Paginator& paginator)
    : report_(report),
      options_(options),
      paginator_(paginator),
      needed_(report.groups.size(), 0),
      whole_(report.groups.size(), false) {
  if (!options.hideDetails && report.detail.present && report.detail.visible) return;
  const bool footer =
      !report.groups.empty() && report.groups.back().footer.present && report.groups.back().footer.visible;
  rows_ = footer ? Rows::Footers : Rows::Headers;
}

void Keeper::EndAtom() {
  if (atom_.empty()) return;
  if (atom_.front().newPageBefore && !kept_.empty()) {
    paginator_.Place(std::move(kept_));
    kept_.clear();
    keptHeight_ = 0;
  }
  for (const BuiltBand& band : atom_) keptHeight_ += band.Whole();
  kept_.push_back(std::move(atom_));
  atom_.clear();
  const bool open = std::find(whole_.begin(), whole_.end(), true) != whole_.end();
  if (open && keptHeight_ <= paginator_.FreshHeight(kept_.front().front())) return;
  // Complete, or too long for any page: from here on it breaks like any other group.
  if (open) std::fill(whole_.begin(), whole_.end(), false);
  paginator_.Place(std::move(kept_));
  kept_.clear();
  keptHeight_ = 0;
}

void Keeper::Flush() {
  EndAtom();
  if (!kept_.empty()) paginator_.Place(std::move(kept_));
  kept_.clear();
  keptHeight_ = 0;
}

/// What follows is no footer: if nothing waits for it, what came before is complete.
void Keeper::StartsNext(BuiltBand& band) {
  if (breakNext_) {
    band.newPageBefore = true;
    breakNext_ = false;
  }
  const bool waits = std::any_of(needed_.begin(), needed_.end(), [](int rows) { return rows > 0; });
  if (band.newPageBefore) {
    Flush();
  } else if (!waits) {
    EndAtom();
  }
}

void Keeper::Hold(BuiltBand band) {
  if (band.newPageAfter) breakNext_ = true;
  if (band.Seen() || band.outline || !band.pageValues.empty() || band.newPageBefore)
    atom_.push_back(std::move(band));
}

void Keeper::CountRow() {
  for (int& rows : needed_)
    if (rows > 0) --rows;
}

void Keeper::OpenGroup(int group, BuiltBand header) {
  StartsNext(header);
  const auto place = static_cast<std::size_t>(group);
  const GroupDefinition& definition = report_.groups[place];
  const bool keeps = definition.keep != Keep::None && header.Seen();
  needed_[place] = keeps ? std::max(1, definition.keepRows) : 0;
  whole_[place] = definition.keep == Keep::WholeGroup;
  const bool row = place + 1 == needed_.size() && rows_ == Rows::Headers && header.Seen();
  if (row) needed_[place] = 0;
  Hold(std::move(header));
  if (row) CountRow();
}

void Keeper::Detail(BuiltBand detail) {
  StartsNext(detail);
  const bool seen = detail.Seen();
  Hold(std::move(detail));
  if (seen) CountRow();
}

void Keeper::CloseGroup(int group, BuiltBand footer) {
  const auto place = static_cast<std::size_t>(group);
  const bool row = place + 1 == needed_.size() && rows_ == Rows::Footers && footer.Seen();
  Hold(std::move(footer));
  needed_[place] = 0;
  whole_[place] = false;
  if (row) CountRow();
  if (place < options_.newPageAfterGroup.size() && options_.newPageAfterGroup[place]) breakNext_ = true;
}

void Keeper::ReportFooter(BuiltBand footer) {
  if (!footer.Seen()) return;
  if (breakNext_ || footer.newPageBefore) {
    footer.newPageBefore = true;
    breakNext_ = false;
    Flush();
  }
  footer.newPageAfter = false;
  atom_.push_back(std::move(footer));
}

}  // namespace print
