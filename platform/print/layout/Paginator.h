// Bands onto pages.
#pragma once

#include <memory>
#include <vector>

#include "platform/print/layout/Composer.h"

namespace print {

/// Bands that stay together.
using Atom = std::vector<BuiltBand>;

/// Places blocks of bands on pages and hands full pages to the store. A block that does not fit the rest of
/// a page moves to the next as a whole; one that fits no page is taken apart, down to splitting a single band
/// between its lines.
class Paginator {
 public:
  Paginator(const ReportDefinition& report, const ReportFacts& facts, Composer& composer, PageStore& pages,
            Warn warn);

  void Place(std::vector<Atom> atoms);
  void Place(BuiltBand band);
  /// The height for the band on a page of its own, below the headers that are repeated there.
  Length FreshHeight(const BuiltBand& band);
  /// Places empty rows for writing on as long as they fit, leaving `reserved` free.
  void FillWithBlankRows(Length reserved);
  /// Closes the last page, opening one if there is none, and fills in the number of pages.
  void Finish();
  /// The page that is open is given up; the pages before it are all there are.
  void Abandon();

 private:
  struct PageCell {
    std::size_t band = 0;
    DeferredCell deferred;
  };
  struct Waiting {
    int slot = 0;
    Cell cell;
    DeferredCell deferred;
  };

  void OpenPage(const BuiltBand& first);
  void ClosePage();
  void Split(BuiltBand band);
  void Put(BuiltBand band);
  void PutAt(BuiltBand band, Length top);
  void Settle();
  void FillSlots(int pageCount);
  Length Left() const { return limit_ - cursor_; }
  Length RepeatedHeight(const BuiltBand& band) const;
  Length BodyHeight() const { return limit_ - bodyTop_; }

  const ReportDefinition& report_;
  const ReportFacts& facts_;
  Composer& composer_;
  PageStore& pages_;
  Warn warn_;
  TotalsBook totals_;
  Page page_;
  int number_ = 0;
  bool open_ = false;
  bool empty_ = true;         // nothing of the body is on the page yet, but for repeated headers
  bool afterHeader_ = false;  // the last band of the body is a group's header, which must not stay alone
  Length bodyTop_ = 0;        // below the header of the page
  Length cursor_ = 0;
  Length limit_ = 0;  // where the footer of the page begins
  std::int64_t lastRow_ = -1;
  std::vector<PageCell> deferred_;
  std::vector<Waiting> waiting_;
};

}  // namespace print
