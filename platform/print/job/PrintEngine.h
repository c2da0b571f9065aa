// The calls of one report run, in the order in which a run makes them. A job is a number; 0 is no job. A call
// that fails returns false (or 0, or -1 for a count) and leaves its text for PEGetErrorText.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace print {

/// The sizes that a caller enters in StructSize; with another size the call fails.
struct PEWindowOptions {
  static constexpr std::uint16_t kSize = 32;
  std::uint16_t StructSize = kSize;
  bool hasGroupTree = false;
  bool hasSearchButton = false;
};
struct PEExportOptions {
  static constexpr std::uint16_t kSize = 150;
  std::uint16_t StructSize = kSize;
  std::string formatDLLName;
  std::string destinationDLLName;
};
struct PESectionOptions {
  static constexpr std::uint16_t kSize = 28;
  std::uint16_t StructSize = kSize;
  std::int16_t visible = 1;
  std::int16_t newPageAfter = 0;
};
struct PEPrintOptions {
  static constexpr std::uint16_t kSize = 522;
  std::uint16_t StructSize = kSize;
  int startPageN = 0;  ///< 0: from the first
  int stopPageN = 0;   ///< 0: to the last
  int nReportCopies = 1;
  bool collate = true;
};
struct PETableLocation {
  static constexpr std::uint16_t kSize = 1026;
  static constexpr std::size_t kLocationSize = 256;
  std::uint16_t StructSize = kSize;
  std::string Location;  ///< at most 255 characters before the NUL
};
struct PESubreportInfo {
  static constexpr std::uint16_t kSize = 137;
  std::uint16_t StructSize = kSize;
  std::string name;
};

constexpr int kReportHeaderSection = 1000;
constexpr int kPageHeaderSection = 2000;
constexpr int kGroupHeaderSection = 3000;  ///< plus the group
constexpr int kDetailSection = 4000;
constexpr int kGroupFooterSection = 5000;  ///< plus the group
constexpr int kPageFooterSection = 7000;
constexpr int kReportFooterSection = 8000;

bool PEOpenEngine();
void PECloseEngine();
/// Reads and checks the definition file. 0 if it cannot be read; PEGetErrorText(0, ...) then has the fault.
int PEOpenPrintJob(const std::string& reportFile);
bool PEClosePrintJob(int job);
bool PEDiscardSavedData(int job);

/// Gives a named formula of the definition another text for this job. Texts end at their first NUL if they
/// hold one. A text between double quotes is taken as it stands, with whatever a person typed between them:
/// quotes inside need not be doubled. Fails if the definition has no such formula or the text has a fault.
bool PESetFormula(int job, const std::string& name, const std::string& text);
bool PESetSelectionFormula(int job, const std::string& text);
bool PEGetSelectionFormula(int job, int* textHandle, int* textLength);
/// Copies the text of a handle into `buffer`, whose length the caller has set, and gives the handle up.
bool PEGetHandleString(int textHandle, std::string* buffer);
/// Field n of the order, from 0 and without gaps; "{Table.Field}" by the table's name or alias. Direction 1
/// is ascending, 0 descending.
bool PESetNthSortField(int job, int n, const std::string& name, int direction);

int PEGetNTables(int job);
/// A path whose last component is the table's own name: the data file, or the definition file as long as no
/// location was set, then "/" and the name.
bool PEGetNthTableLocation(int job, int n, PETableLocation* location);
/// The path of the data file that the table is read from.
bool PESetNthTableLocation(int job, int n, const PETableLocation& location);

/// The report's header, the page's header, the groups' headers from the outermost inwards, the detail, the
/// groups' footers, the page's footer, the report's footer.
int PEGetNSections(int job);
int PEGetSectionCode(int job, int n);
int PEGetNGroups(int job);
bool PEGetSectionFormat(int job, int sectionCode, PESectionOptions* options);
bool PESetSectionFormat(int job, int sectionCode, const PESectionOptions& options);
int PEGetNSubreportsInSection(int job, int sectionCode);
int PEGetNthSubreportInSection(int job, int sectionCode, int n);
bool PEGetSubreportInfo(int job, int subreport, PESubreportInfo* info);
/// A job for the subreport, which takes locations; closed with its parent.
int PEOpenSubreport(int job, const std::string& name);

/// Position and size in pixels.
bool PESetWindowOptions(int job, const PEWindowOptions& options);
bool PEOutputToWindow(int job, const std::string& title, int left, int top, int width, int height);
bool PEOutputToPrinter(int job, int copies);
bool PEExportTo(int job, const PEExportOptions& options);
bool PESetPrintOptions(int job, const PEPrintOptions& options);
/// An empty name is the default printer.
bool PESelectPrinter(int job, const std::string& printer);
/// Output to the printer goes to this PDF file instead of to a queue; empty: to the queue again.
bool PESelectPdfFile(int job, const std::string& path);
bool PEShowPrintControls(int job, bool show);

/// Runs the report to its destination: reads its rows in one go, and lays them out in a thread of its own. To
/// a window: returns as soon as the first page is there, or the run has failed. To a printer or by mail:
/// returns when the pages have been handed over. Without a destination the report goes to a window. `wait`
/// false starts a window only; the other destinations always wait.
bool PEStartPrintJob(int job, bool wait);
bool PEPrintControlsShowing(int job, bool* showing);
/// The preview window of the job; 0 once it is closed.
std::uintptr_t PEGetWindowHandle(int job);

/// The text of the job's last failure (of the engine's, for job 0): "No error." if there was none.
bool PEGetErrorText(int job, int* textHandle, int* textLength);

}  // namespace print
