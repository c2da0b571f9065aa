// Which schedule lines of an asset fall due, by date or by mileage.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "data/GenericADO.h"
#include "platform/runtime/Value.h"

namespace dw {

/// Where the lines of an analysis go. The asset's window and the report differ in two things only: what
/// separates the head from the items, and where the text goes.
struct DueDestination {
  std::function<void(const std::string& line)> write;
  std::string
      separator;  ///< written behind the "Latest mileage" line: hyphens on the window, empty in the report
};

/// How far ahead to look. Each is read anew for each schedule line; what they throw ends the analysis and
/// reaches the caller.
struct DueHorizon {
  std::function<rt::DateTime()> dueBy;
  std::function<float()> extraUsage;  ///< miles
};

/// One due item as a fact, for tables and scripts.
struct DueItem {
  std::string assetID;
  std::string type;  ///< `Maintenance Types`.`Description`, empty where there is no type
  bool byDate = false;
  rt::DateTime nextDate;  ///< where byDate
  float nextMileage = 0;  ///< where not byDate
};

/// A column of one query, whose position is looked up at the first row and kept for all recordsets of that
/// query.
class DueColumn {
 public:
  explicit DueColumn(const char* name) : name_(name) {}
  rt::Value Of(ado::Recordset& recordset);

 private:
  const char* name_;
  int field_ = -1;
};

/// What the analysis takes from the asset's own row.
struct DueAsset {
  std::string assetID;
  rt::Value description;
  rt::Value purchaseDate;
};

/// The analysis of one asset after the other on one connection.
class DueAnalysis {
 public:
  DueAnalysis(AdoConnectionPtr connection, DueDestination destination, DueHorizon horizon,
              std::function<void(const DueItem&)> onItem = {});
  /// The asset that the recordset (columns of `Vehicles`) stands on; empty when another user has removed it
  /// meanwhile.
  std::optional<DueAsset> Read(ado::Recordset& asset);
  /// False after a message when the data cannot be read: what was written up to there is not the whole.
  bool Run(const DueAsset& asset);

 private:
  /// The mileage that the asset is taken to stand at, and its day.
  struct Standing {
    float mileage = 0;
    rt::DateTime date;
  };
  struct Line {
    std::int32_t typeID = 0;
    std::string type;
    rt::Value months;
    rt::Value usage;
  };

  bool Analyse(const DueAsset& asset);
  bool FindStanding(const DueAsset& asset, Standing& standing);
  std::optional<Line> ReadLine(ado::Recordset& schedule);
  bool AnalyseLine(const DueAsset& asset, const Standing& standing, const Line& line);
  void Report(const DueItem& item, const std::string& text);

  AdoConnectionPtr connection_;
  DueDestination destination_;
  DueHorizon horizon_;
  std::function<void(const DueItem&)> onItem_;

  DueColumn assetID_{"Asset ID"};
  DueColumn description_{"Description"};
  DueColumn purchaseDate_{"Purchase Date"};
  DueColumn readingDate_{"Date"};
  DueColumn readingMileage_{"Mileage"};
  DueColumn transactionDate_{"Transaction Date"};
  DueColumn transactionMileage_{"Mileage"};
  DueColumn typeID_{"Type ID"};
  DueColumn typeText_{"Maintenance Types.Description"};
  DueColumn months_{"Monthly Frequently"};
  DueColumn usage_{"Usage Frequency"};
  DueColumn performedDate_{"Transaction Date"};
  DueColumn performedMileage_{"Mileage"};
};

/// Analyses the asset that the recordset (columns of `Vehicles`) stands on and writes a line for each due
/// item; `onItem`, where given, gets each as a fact. False as DueAnalysis::Run, and when the asset was
/// removed meanwhile.
bool AnalyseDue(const AdoConnectionPtr& connection, ado::Recordset& asset, const DueDestination& destination,
                const DueHorizon& horizon, const std::function<void(const DueItem&)>& onItem = {});

/// The text of the "Maintenance Due" tab for one asset, lines ended with CR LF. Empty after the box "Unable
/// to find asset to report." when the asset is not on file, and after the message of an analysis that could
/// not be finished.
std::string CalculateDue(const std::string& assetID, const rt::DateTime& dueBy, float extraUsage);

}  // namespace dw
