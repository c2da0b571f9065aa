// From rows to pages.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "platform/print/data/Rows.h"
#include "platform/print/definition/ReportDefinition.h"
#include "platform/print/pages/PageStore.h"
#include "platform/runtime/DateTime.h"

namespace print {

enum class Paper { Letter, A4 };

/// What a run changes of its definition.
struct LayoutOptions {
  Paper paper = Paper::Letter;
  bool hideDetails = false;             ///< "Summary Only"
  std::vector<bool> newPageAfterGroup;  ///< for each group, besides what the definition says
  std::string user;
  std::string title;
  rt::DateTime printTime;
};

/// What outputs must know of a report before its first page.
ReportFacts FactsOf(const ReportDefinition& report, const LayoutOptions& options);

/// Lays the report out into `pages` and finishes them. Every band is evaluated once and measured once; a band
/// that moves to the next page is the same band. Looks at `cancel` at each row; a cancelled run has the pages
/// that were complete. Problems that cost only one cell (a formula that cannot be evaluated for a row, a band
/// higher than a page) are reported in `warnings`, each kind once with its first row. Throws PrintError if
/// the temporary disk is full.
void LayOut(const ReportDefinition& report, const ReportRows& rows, const LayoutOptions& options,
            PageStore& pages, const std::atomic<bool>& cancel, std::vector<std::string>* warnings);

}  // namespace print
