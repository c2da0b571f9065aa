// The finished pages of one report in a temporary file, written by the layout and read by preview and
// outputs.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/print/pages/Page.h"

namespace print {

/// What the outputs must know of the report besides its pages.
struct ReportFacts {
  std::string title;
  std::string author;
  struct Column {
    std::string name;
    std::string heading;
    Length left = 0;
    Length width = 0;
    Align align = Align::Left;
    std::string format;
  };
  std::vector<Column> columns;
  Length pageWidth = 0;
  Length pageHeight = 0;
  Length marginLeft = 0;
  Length marginTop = 0;
  Length marginRight = 0;
  Length marginBottom = 0;
};

/// One thread appends, any number of others read at the same time. Pages never change once they are appended;
/// only slots are filled later. The file is deleted with the store; it has no name, so nothing is left by a
/// crash. The memory held does not grow with the pages but for a few bytes each.
class PageStore {
 public:
  /// The temporary file lies in the directory for temporary files.
  explicit PageStore(ReportFacts facts);
  ~PageStore();
  PageStore(const PageStore&) = delete;
  PageStore& operator=(const PageStore&) = delete;

  const ReportFacts& Facts() const;

  /// Adds the next page. Throws PrintError if the temporary disk is full; the store stays readable.
  void Append(const Page& page);
  /// A new slot, empty until FillSlot.
  int NewSlot();
  void FillSlot(int slot, const SlotValue& value);
  void AddOutline(OutlineEntry entry);
  /// No page, slot or outline entry comes any more.
  void Finish();

  int PageCount() const;
  bool Finished() const;
  /// The page with this place, from 0. Throws PrintError if it cannot be read.
  Page Read(int index) const;
  /// Nothing as long as the slot is empty.
  std::optional<SlotValue> Slot(int slot) const;
  std::vector<OutlineEntry> Outline() const;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace print
