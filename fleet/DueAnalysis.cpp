#include "fleet/DueAnalysis.h"

#include <optional>
#include <utility>

#include "data/BrackenfelGlobals.h"
#include "data/GenericDAO.h"
#include "fleet/DueQueries.h"
#include "platform/runtime/Clock.h"
#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"
#include "platform/screen/Screen.h"
#include "platform/store/StoreError.h"

namespace dw {

namespace {

/// A frequency counts if it is above 0; a Null does not count.
bool IsAboveZero(const rt::Value& frequency) { return !frequency.IsNull() && frequency.AsDouble() > 0; }

/// Mileages are Singles from the file to the text; no mileage on file counts as 0.
float MileageOf(const rt::Value& mileage) { return mileage.IsNull() ? 0.0F : mileage.AsSingle(); }

void TellBrokenOff(std::int32_t number, const std::string& description) {
  screen::MessageBox("Error #" + std::to_string(number) + "\r\r" + description +
                         "\r\rThe maintenance due analysis was broken off.",
                     screen::Icon::Critical);
}

/// A recordset could not be opened, which has been reported.
struct NotOpened {};

/// Runs a part of the analysis; false after a message if the data cannot be read. Conversion errors pass to
/// the caller.
template <class Piece>
bool Guarded(Piece piece) {
  try {
    return piece();
  } catch (const NotOpened&) {
  } catch (const rt::RuntimeError&) {
    throw;
  } catch (const rt::Error& error) {
    TellBrokenOff(error.Number(), error.what());
  }
  return false;
}

/// Adds months to a date; empty if the result is beyond the calendar. A day that never comes is never due.
std::optional<rt::DateTime> MonthsAfter(const rt::DateTime& date, const rt::Value& months) {
  try {
    return rt::DateAdd("m", months.AsLong(), date);
  } catch (const rt::RuntimeError&) {
    return std::nullopt;
  }
}

}  // namespace

DueAnalysis::DueAnalysis(DueDestination destination, DueHorizon horizon,
                         std::function<void(const DueItem&)> onItem)
    : destination_(std::move(destination)), horizon_(std::move(horizon)), onItem_(std::move(onItem)) {}

void DueAnalysis::Run(const DueAsset& asset, DueSource& source) {
  const Standing standing = FindStanding(asset, source);
  destination_.write("Latest mileage on file is " + rt::PlainText(standing.mileage) + " on " +
                     rt::GeneralDate(standing.date));
  destination_.write(destination_.separator);
  const bool scheduled = source.ForEachLine(
      asset.assetID, [&](const DueLine& line) { AnalyzeLine(asset, source, standing, line); });
  if (!scheduled) destination_.write("There are no scheduled maintenance items to analyze.");
}

/// The newest reading counts, unless the transaction with the highest mileage has a later date. If even the
/// newest reading has no date, the asset counts as one without readings.
DueAnalysis::Standing DueAnalysis::FindStanding(const DueAsset& asset, DueSource& source) {
  Standing standing;
  const auto reading = source.NewestReading(asset.assetID);
  if (reading && !reading->date.IsNull()) {
    standing.mileage = MileageOf(reading->mileage);
    standing.date = reading->date.AsDate();
  } else if (!asset.purchaseDate.IsNull()) {
    standing.date = asset.purchaseDate.AsDate();
  } else {
    standing.date = rt::Today();
    destination_.write("ERROR: Purchase date missing.");
  }

  const auto highest = source.HighestTransaction(asset.assetID);
  if (highest && !highest->date.IsNull() && rt::DateDiff("d", standing.date, highest->date.AsDate()) > 0) {
    standing.mileage = MileageOf(highest->mileage);
    standing.date = highest->date.AsDate();
  }
  return standing;
}

void DueAnalysis::AnalyzeLine(const DueAsset& asset, DueSource& source, const Standing& standing,
                              const DueLine& line) {
  const rt::DateTime dueBy = horizon_.dueBy();
  const float extraUsage = horizon_.extraUsage();
  const auto performed = source.LastPerformance(asset.assetID, line);

  DueItem item;
  item.assetID = asset.assetID;
  item.type = line.type;

  bool reported = false;
  if (IsAboveZero(line.months)) {
    rt::Value base = performed ? performed->date : rt::Value();
    if (base.IsNull()) base = asset.purchaseDate;
    const auto nextDate = MonthsAfter(base.IsNull() ? rt::Today() : base.AsDate(), line.months);
    if (nextDate && rt::DateDiff("d", *nextDate, dueBy) >= 0) {
      item.byDate = true;
      item.nextDate = *nextDate;
      Report(item, item.type + " due on " + rt::GeneralDate(*nextDate));
      reported = true;
    }
  }

  if (IsAboveZero(line.usage) && !reported) {
    const float lastMileage = performed ? MileageOf(performed->mileage) : 0.0F;
    item.nextMileage = performed ? lastMileage + line.usage.AsSingle() : line.usage.AsSingle();
    if (extraUsage + standing.mileage >= item.nextMileage) {
      Report(item, item.type + " due on mileage " + rt::PlainText(item.nextMileage));
    }
  }
}

void DueAnalysis::Report(const DueItem& item, const std::string& text) {
  destination_.write(text);
  if (onItem_) onItem_(item);
}

bool AnalyseDue(const AdoConnectionPtr& connection, ado::Recordset& asset, const DueDestination& destination,
                const DueHorizon& horizon, const std::function<void(const DueItem&)>& onItem) {
  return Guarded([&] {
    const auto found = UnlessDeleted([&] {
      return DueAsset{asset.Get("Asset ID").Shown(), asset.Get("Description"), asset.Get("Purchase Date")};
    });
    if (!found) return false;
    // A dozen queries about one asset share one look.
    const store::Reading reading(connection->Store());
    DueQueries queries([&](const std::string& sql) {
      AdoRecordsetPtr rows = AdoOpenRecordset(connection, sql);
      if (!rows) throw NotOpened{};
      return rows;
    });
    DueAnalysis(destination, horizon, onItem).Run(*found, queries);
    return true;
  });
}

std::string CalculateDue(const std::string& assetID, const rt::DateTime& dueBy, float extraUsage) {
  AdoConnectionPtr connection;
  if (!AdoOpenConnection(connection, DataConnect, false)) return {};
  const screen::Hourglass hourglass;
  AdoRecordsetPtr asset =
      AdoOpenRecordset(connection, "SELECT * FROM Vehicles WHERE [Asset ID] = '" + assetID + "'");
  std::string text;
  if (asset && asset->AtEnd()) {
    screen::MessageBox("Unable to find asset to report.\r\nThis should never happen.",
                       screen::Icon::Information);
  } else if (asset) {
    DueDestination destination;
    destination.write = [&](const std::string& line) { text += line + "\r\n"; };
    destination.separator = "-----------------------";
    destination.write("Maintenance Schedule as of " + rt::GeneralDate(rt::Now()));
    DueHorizon horizon;
    horizon.dueBy = [&] { return dueBy; };
    horizon.extraUsage = [&] { return extraUsage; };
    // Half an analysis would look as if nothing else were due.
    if (!AnalyseDue(connection, *asset, destination, horizon)) text.clear();
  }
  CloseObject(asset);
  CloseObject(connection);
  return text;
}

}  // namespace dw
