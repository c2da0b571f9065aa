// Which bands stay together on a page.
#pragma once

#include <vector>

#include "platform/print/layout/Paginator.h"

namespace print {

/// Holds bands back until it is known what must stay with them: a group's header with its first rows, the
/// last row with the footers below it, and a whole group where the definition asks for that.
class Keeper : public BandSink {
 public:
  Keeper(const ReportDefinition& report, const LayoutOptions& options, Paginator& paginator);

  void OpenGroup(int group, BuiltBand header) override;
  void Detail(BuiltBand detail) override;
  void CloseGroup(int group, BuiltBand footer) override;
  void ReportFooter(BuiltBand footer);
  /// What comes next begins a page.
  void BreakNext() { breakNext_ = true; }
  /// Places all that is held back.
  void Flush();

 private:
  /// What headers stay with: where details are hidden, the innermost groups' footers are the rows, or their
  /// headers.
  enum class Rows { Details, Footers, Headers };

  void StartsNext(BuiltBand& band);
  void Hold(BuiltBand band);
  void EndAtom();
  void CountRow();

  const ReportDefinition& report_;
  const LayoutOptions& options_;
  Paginator& paginator_;
  Atom atom_;
  std::vector<Atom> kept_;
  Length keptHeight_ = 0;
  std::vector<int> needed_;  // for each group, how many rows its header still waits for
  std::vector<bool> whole_;  // for each group, whether it is open and kept whole
  Rows rows_ = Rows::Details;
  bool breakNext_ = false;
};

}  // namespace print
