#include "platform/print/view/PageSearch.h"

#include <QElapsedTimer>
#include <algorithm>
#include <string>

namespace print {
namespace {

bool Occurs(const std::string& text, const QString& sought) {
  return !text.empty() && QString::fromStdString(text).contains(sought, Qt::CaseInsensitive);
}

/// Cheaper than placing the characters of every page: only pages with a hit need that.
bool OccursOn(const Page& page, const PageStore& store, const QString& sought) {
  for (const PlacedBand& band : page.bands) {
    for (const Cell& cell : band.cells) {
      if (cell.slot >= 0) {
        const std::optional<SlotValue> value = store.Slot(cell.slot);
        if (value && Occurs(value->text, sought)) return true;
      }
      if (std::any_of(cell.lines.begin(), cell.lines.end(),
                      [&](const std::string& line) { return Occurs(line, sought); }))
        return true;
    }
  }
  return false;
}

}  // namespace

void PageSearch::Start(const PageStore* store, const QString& text) {
  store_ = store;
  text_ = text;
  next_ = 0;
  hits_.clear();
}

bool PageSearch::Step(int milliseconds) {
  if (!store_ || text_.isEmpty()) return true;
  QElapsedTimer watch;
  watch.start();
  for (; next_ < store_->PageCount(); ++next_) {
    if (watch.elapsed() > milliseconds) return false;
    const Page page = store_->Read(next_);
    if (!OccursOn(page, *store_, text_)) continue;
    const std::vector<TextRun> runs = TextOf(page, *store_);
    for (std::size_t run = 0; run < runs.size(); ++run) {
      const QString& text = runs[run].text;
      for (auto at = text.indexOf(text_, 0, Qt::CaseInsensitive); at >= 0;
           at = text.indexOf(text_, at + text_.size(), Qt::CaseInsensitive)) {
        hits_.push_back(
            {next_, static_cast<int>(run), static_cast<int>(at), static_cast<int>(at + text_.size())});
      }
    }
  }
  return true;
}

}  // namespace print
