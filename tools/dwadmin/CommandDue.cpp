// The due report on the console.
#include <fstream>
#include <iostream>
#include <iterator>

#include "data/BrackenfelGlobals.h"
#include "data/GenericADO.h"
#include "data/GenericDAO.h"
#include "data/GenericTools.h"
#include "fleet/DueAnalysis.h"
#include "fleet/DueReport.h"
#include "platform/runtime/Clock.h"
#include "platform/runtime/Text.h"
#include "platform/system/Machine.h"
#include "tools/dwadmin/Commands.h"
#include "tools/dwadmin/Output.h"

namespace dw {
namespace {

constexpr int kFortnight = 14;

/// The items of a run, collected as facts.
class Items {
 public:
  std::function<void(const DueItem&)> Collector() {
    return [this](const DueItem& item) {
      table_.rows.push_back({item.assetID, item.type, item.byDate ? rt::Value(item.nextDate) : rt::Value(),
                             item.byDate ? rt::Value() : rt::Value(item.nextMileage)});
    };
  }
  void WriteJson() const {
    table_.WriteJson(std::cout);
    std::cout << '\n';
  }

 private:
  ResultTable table_{{"Asset ID", "Maintenance Type", "Due Date", "Due Mileage"}, {}};
};

/// The system's lines, with the console's line ends.
void WriteLines(const std::string& text) {
  for (const char c : text)
    if (c != '\r') std::cout << c;
}

int DueOfFleet(const std::string& by, const DueRequest& request, Format format) {
  Items items;
  const std::string directory = request.logDirectory.empty() ? sys::ProgramDirectory() : request.logDirectory;
  const std::string path = WriteDueReport(directory, by, request.usage, items.Collector());
  if (path.empty()) return 1;
  if (format == Format::Json) {
    items.WriteJson();
  } else {
    std::ifstream log(path, std::ios::binary);
    WriteLines(std::string(std::istreambuf_iterator<char>(log), {}));
    if (!log) throw NotDone("Unable to read '" + path + "'.");
  }
  std::cerr << "Written to " << path << std::endl;
  return 0;
}

int ItemsOfAsset(const std::string& code, const DueHorizon& horizon) {
  AdoConnectionPtr connection;
  if (!AdoOpenConnection(connection, DataConnect, false)) return 1;
  AdoRecordsetPtr asset =
      AdoOpenRecordset(connection, "SELECT * FROM Vehicles WHERE [Asset ID] = '" + QuoteSQL(code) + "'");
  if (!asset) return 1;
  if (asset->AtEnd()) throw NotDone("There is no asset " + code + ".");
  DueDestination destination;
  destination.write = [](const std::string&) {};
  Items items;
  if (!AnalyseDue(connection, *asset, destination, horizon, items.Collector())) return 1;
  items.WriteJson();
  return 0;
}

}  // namespace

int Due(const DueRequest& request, Format format) {
  RequireFile("DW.MDB");
  const std::string by =
      request.by.empty() ? rt::ShortDate(rt::DateAdd("d", kFortnight, rt::Today())) : request.by;
  const auto date = rt::ParseDate(by);
  if (!date) throw NotDone("The date '" + by + "' is not a valid date.");
  const auto usage = rt::ParseNumber(request.usage);
  if (!usage) throw NotDone("The usage '" + request.usage + "' is not a valid number.");
  if (request.asset.empty()) return DueOfFleet(by, request, format);

  const float miles = rt::Value(*usage).AsSingle();
  if (format == Format::Json)
    return ItemsOfAsset(request.asset, {.dueBy = [&] { return *date; }, .extraUsage = [&] { return miles; }});
  const std::string text = CalculateDue(request.asset, *date, miles);
  WriteLines(text);
  return text.empty() ? 1 : 0;
}

}  // namespace dw
