// Looks for words on all pages of a report.
#pragma once

#include <QString>
#include <vector>

#include "platform/print/view/PageView.h"

namespace print {

/// One search over the pages of a store, in steps, so that the window stays alive. Letters are found whatever
/// their case is. Pages that are added while it runs are searched too.
class PageSearch {
 public:
  /// Begins anew; an empty text finds nothing.
  void Start(const PageStore* store, const QString& text);
  /// Searches on for about this long. True if it has searched every page that there is by now.
  bool Step(int milliseconds);
  const std::vector<Mark>& Hits() const { return hits_; }
  const QString& Text() const { return text_; }

 private:
  const PageStore* store_ = nullptr;
  QString text_;
  int next_ = 0;
  std::vector<Mark> hits_;
};

}  // namespace print
