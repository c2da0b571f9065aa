#include "fleet/ScheduleLines.h"

#include <functional>
#include <limits>

#include "data/FailureBox.h"
#include "data/GenericDAO.h"
#include "data/GenericTools.h"
#include "data/MainConnection.h"

namespace dw {
namespace {

constexpr std::int16_t kHighest = std::numeric_limits<std::int16_t>::max();

/// Passes on the rows of a query over a connection of its own; reports a failure.
void Ask(const std::string& query, const std::function<void(ado::Recordset&)>& rows) {
  const MainConnection main;
  if (!main.IsOpen()) return;
  AdoRecordsetPtr found = main.Read(query);
  if (found) Done([&] { rows(*found); });
  CloseObject(found);
}

std::int16_t LowestFree(const std::string& assetID) {
  std::int16_t free = 1;
  Ask("SELECT [Line Item] FROM [Maintenance Schedule] WHERE [Asset ID] = '" + QuoteSQL(assetID) +
          "' AND [Line Item] > 0 ORDER BY [Line Item]",
      [&](ado::Recordset& lines) {
        // The same number may be there twice.
        for (; !lines.AtEnd() && lines.Get(0).AsInteger() <= free && free < kHighest; lines.MoveNext())
          if (lines.Get(0).AsInteger() == free) ++free;
      });
  return free;
}

}  // namespace

std::int16_t NextLineItem(const std::string& assetID) {
  rt::Value highest;
  Ask("SELECT [Line Item] FROM [Maintenance Schedule] WHERE [Asset ID] = '" + QuoteSQL(assetID) +
          "' ORDER BY [Line Item] DESC",
      [&](ado::Recordset& lines) {
        if (!lines.AtEnd()) highest = lines.Get(0);
      });
  if (highest.IsNull()) return 1;
  if (highest.AsInteger() == kHighest) return LowestFree(assetID);
  return static_cast<std::int16_t>(highest.AsInteger() + 1);
}

bool LineItemInUse(const std::string& assetID, std::int32_t lineItem, std::int32_t id) {
  bool inUse = false;
  Ask("SELECT * FROM [Maintenance Schedule] WHERE [Asset ID] = '" + QuoteSQL(assetID) +
          "' AND [Line Item] = " + std::to_string(lineItem) + " AND [ID] <> " + std::to_string(id),
      [&](ado::Recordset& lines) { inUse = !lines.AtEnd(); });
  return inUse;
}

}  // namespace dw
