// The list of pages that a search of the help has found.
#pragma once

#include <QListWidget>
#include <string>
#include <vector>

#include "shell/Help.h"

namespace dw {

/// Shows each page with its title in bold and the excerpt below it.
class HelpResults : public QListWidget {
 public:
  explicit HelpResults(QWidget* parent);
  /// Replaces the hits that were shown; no row is current then. Without hits one row says so.
  void Fill(const std::vector<HelpHit>& hits);
  /// The page of the current row; empty if there is none.
  std::string CurrentPage() const;
  /// How many pages were found.
  int Found() const { return found_; }

 private:
  int found_ = 0;
};

}  // namespace dw
