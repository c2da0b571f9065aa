#include "reports/CrystalTables.h"

#include "data/BrackenfelGlobals.h"
#include "data/FailureBox.h"
#include "data/GenericTools.h"
#include "data/MainConnection.h"
#include "platform/runtime/Text.h"
#include "platform/screen/Screen.h"
#include "reports/PrintCalls.h"

namespace dw {
namespace {

void AddTablesOfFile(const std::string& reportFile, std::vector<std::string>& tables) {
  const int job = Engine().PEOpenPrintJob(reportFile);
  if (job == 0) {
    ShowEngineError(0);
    return;
  }
  const int count = Engine().PEGetNTables(job);
  if (count == -1) ShowEngineError(job);
  for (int n = 0; n < count; ++n) {
    print::PETableLocation location;
    if (Engine().PEGetNthTableLocation(job, n, &location))
      tables.push_back(BareFileName(location.Location.substr(0, location.Location.find('\0'))));
    else
      ShowEngineError(job);
  }
  if (!Engine().PEClosePrintJob(job)) ShowEngineError(job);
}

}  // namespace

void GetCrystalTables(const std::string& reportFile, std::vector<std::string>& tables,
                      const std::string& primaryTable) {
  if (primaryTable.find(',') != std::string::npos) {
    std::string rest = primaryTable;
    while (!rest.empty()) {
      const std::size_t comma = rest.find(',');
      tables.push_back(StripBrackets(rt::Trim(rest.substr(0, comma))));
      rest = comma == std::string::npos ? std::string() : rest.substr(comma + 1);
    }
  } else if (!reportFile.empty()) {
    AddTablesOfFile(reportFile, tables);
  } else {
    screen::MessageBox("INTERNAL ERROR: GetCrystalTables has no Report and SQL list to process.");
  }
}

std::vector<std::string> LoadTableFields(const std::string& table) {
  std::vector<std::string> fields;
  const MainConnection main;
  if (!main.IsOpen()) return fields;
  bool found = false;
  Done([&] {
    ado::Catalog catalog(main.Connection());
    for (const std::string& name : catalog.Tables()) found = found || rt::EqualNoCase(name, table);
    if (!found) return;
    for (const ado::Column& column : catalog.Columns(table)) fields.push_back(column.name);
  });
  if (!found) screen::MessageBox("Internal Error: Unable to find the " + table + " table.");
  return fields;
}

}  // namespace dw
