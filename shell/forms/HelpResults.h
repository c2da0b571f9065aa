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
  /// Takes the place of what was there; no row is current then. No hits at all are told in a row of their
  /// own.
  void Fill(const std::vector<HelpHit>& hits);
  /// The page of the current row; empty without one.
  std::string CurrentPage() const;
  /// How many pages were found.
  int Found() const { return found_; }

 private:
  int found_ = 0;
};

}  // namespace dw
