// Which schedule lines of an asset fall due, by date or by mileage.
#pragma once

#include <functional>
#include <string>

#include "data/GenericADO.h"
#include "platform/runtime/Value.h"

namespace dw {

/// Where the lines of an analysis go. The asset's window and the report differ in two things only: what separates the head
/// from the items, and where the text goes.
struct DueDestination {
  std::function<void(const std::string& line)> write;
  std::string separator;  ///< written behind the "Latest mileage" line: hyphens on the window, empty in the report
};

/// How far ahead to look. Each is read anew for each schedule line.
struct DueHorizon {
  std::function<rt::DateTime()> dueBy;
  std::function<float()> extraUsage;  ///< miles
};

/// One due item as a fact, for tables and scripts.
struct DueItem {
  std::string assetID;
  std::string type;          ///< `Maintenance Types`.`Description`, empty where there is no type
  bool byDate = false;
  rt::DateTime nextDate;     ///< where byDate
  float nextMileage = 0;     ///< where not byDate
};

/// Analyses the asset that the recordset (columns of `Vehicles`) stands on and writes a line for each due item; `onItem`,
/// where given, gets each as a fact.
void AnalyseDue(const AdoConnectionPtr& connection, ado::Recordset& asset, const DueDestination& destination,
                const DueHorizon& horizon, const std::function<void(const DueItem&)>& onItem = {});

/// The text of the "Maintenance Due" tab for one asset, lines ended with CR LF. Empty after the box "Unable to find asset to
/// report." when the asset is not on file.
std::string CalculateDue(const std::string& assetID, const rt::DateTime& dueBy, float extraUsage);

}  // namespace dw
