// Which schedule lines of an asset fall due, by date or by mileage.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "data/GenericADO.h"
#include "fleet/DueSource.h"
#include "platform/runtime/Value.h"

namespace dw {

/// Where the lines of an analysis go. The asset's window and the report differ only in what separates the
/// head from the items, and in where the text goes.
struct DueDestination {
  std::function<void(const std::string& line)> write;
  std::string
      separator;  ///< written after the "Latest mileage" line: hyphens on the window, empty in the report
};

/// How far ahead to look. Each is read anew for each schedule line. Their exceptions end the analysis and
/// reach the caller.
struct DueHorizon {
  std::function<rt::DateTime()> dueBy;
  std::function<float()> extraUsage;  ///< miles
};

/// One due item as a fact, for tables and scripts.
struct DueItem {
  std::string assetID;
  std::string type;  ///< `Maintenance Types`.`Description`, empty if there is no type
  bool byDate = false;
  rt::DateTime nextDate;  ///< if byDate
  float nextMileage = 0;  ///< if not byDate
};

/// What the analysis takes from the asset's own row.
struct DueAsset {
  std::string assetID;
  rt::Value description;
  rt::Value purchaseDate;
};

/// The analysis of assets, one after the other.
class DueAnalysis {
 public:
  DueAnalysis(DueDestination destination, DueHorizon horizon,
              std::function<void(const DueItem&)> onItem = {});
  /// Writes the lines of the asset. An exception of the source or the horizon ends it, and so does a fact of
  /// the wrong kind (RuntimeError); the lines written so far are incomplete then.
  void Run(const DueAsset& asset, DueSource& source);

 private:
  /// The standing of the asset: the mileage that it is taken to have now, and the date of that mileage.
  struct Standing {
    float mileage = 0;
    rt::DateTime date;
  };

  Standing FindStanding(const DueAsset& asset, DueSource& source);
  void AnalyzeLine(const DueAsset& asset, DueSource& source, const Standing& standing, const DueLine& line);
  void Report(const DueItem& item, const std::string& text);

  DueDestination destination_;
  DueHorizon horizon_;
  std::function<void(const DueItem&)> onItem_;
};

/// Analyzes the asset at the place of the recordset (columns of `Vehicles`) and writes a line for each due
/// item; `onItem`, if set, gets each as a fact. False after a message if the data cannot be read (the lines
/// written so far are incomplete then), and if another user has removed the asset meanwhile.
bool AnalyseDue(const AdoConnectionPtr& connection, ado::Recordset& asset, const DueDestination& destination,
                const DueHorizon& horizon, const std::function<void(const DueItem&)>& onItem = {});

/// The text of the "Maintenance Due" tab for one asset, lines ended with CR LF. Empty after the box "Unable
/// to find asset to report." if the asset is not on file, and after the message of an analysis that could not
/// be finished.
std::string CalculateDue(const std::string& assetID, const rt::DateTime& dueBy, float extraUsage);

}  // namespace dw
