#include "fleet/DueAnalysis.h"

#include <optional>
#include <utility>

#include "data/BrackenfelGlobals.h"
#include "data/GenericDAO.h"
#include "platform/runtime/Clock.h"
#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"
#include "platform/screen/Screen.h"
#include "platform/store/StoreError.h"

namespace dw {

namespace {

/// A frequency counts from above 0 on; a Null is none.
bool IsAboveZero(const rt::Value& frequency) { return !frequency.IsNull() && frequency.AsDouble() > 0; }

/// Mileages are Singles from the file to the text; none on file reads 0.
float MileageOf(const rt::Value& mileage) { return mileage.IsNull() ? 0.0F : mileage.AsSingle(); }

void TellBrokenOff(std::int32_t number, const std::string& description) {
  screen::MessageBox("Error #" + std::to_string(number) + "\r\r" + description +
                         "\r\rThe maintenance due analysis was broken off.",
                     screen::Icon::Critical);
}

/// Runs a piece of the analysis; false after a message when the data cannot be read. Errors of conversion are
/// the caller's and pass.
template <class Piece>
bool Guarded(Piece piece) {
  try {
    return piece();
  } catch (const ado::Error& error) {
    TellBrokenOff(error.Number(), error.what());
  } catch (const store::StoreError& error) {
    TellBrokenOff(error.Number(), error.what());
  }
  return false;
}

/// Adds months to a date; empty where the calendar ends before. A day that never comes is never due.
std::optional<rt::DateTime> MonthsAfter(const rt::DateTime& date, const rt::Value& months) {
  try {
    return rt::DateAdd("m", months.AsLong(), date);
  } catch (const rt::RuntimeError&) {
    return std::nullopt;
  }
}

/// What a reading of one row gives; empty when another user deleted the row since the keys were read.
template <class Reading>
auto UnlessDeleted(Reading reading) -> std::optional<decltype(reading())> {
  try {
    return reading();
  } catch (const ado::Error& error) {
    if (error.Native() != store::kRecordDeleted) throw;
    return std::nullopt;
  }
}

}  // namespace

rt::Value DueColumn::Of(ado::Recordset& recordset) {
  if (field_ < 0) field_ = recordset.FieldIndex(name_);
  return recordset.Get(field_);
}

DueAnalysis::DueAnalysis(AdoConnectionPtr connection, DueDestination destination, DueHorizon horizon,
                         std::function<void(const DueItem&)> onItem)
    : connection_(std::move(connection)),
      destination_(std::move(destination)),
      horizon_(std::move(horizon)),
      onItem_(std::move(onItem)) {}

std::optional<DueAsset> DueAnalysis::Read(ado::Recordset& asset) {
  return UnlessDeleted([&] {
    return DueAsset{assetID_.Of(asset).Shown(), description_.Of(asset), purchaseDate_.Of(asset)};
  });
}

bool DueAnalysis::Run(const DueAsset& asset) {
  return Guarded([&] { return Analyse(asset); });
}

bool DueAnalysis::Analyse(const DueAsset& asset) {
  // A dozen questions about one asset share one look at the file.
  const store::Reading reading(connection_->Store());
  Standing standing;
  if (!FindStanding(asset, standing)) return false;
  destination_.write("Latest mileage on file is " + rt::PlainText(standing.mileage) + " on " +
                     rt::GeneralDate(standing.date));
  destination_.write(destination_.separator);

  AdoRecordsetPtr schedule =
      AdoOpenRecordset(connection_,
                       "SELECT * FROM [Maintenance Schedule] LEFT JOIN [Maintenance Types] ON [Maintenance "
                       "Schedule].[Type ID] = "
                       "[Maintenance Types].[ID] WHERE [Maintenance Schedule].[Asset ID] = '" +
                           asset.assetID + "'");
  if (!schedule) return false;
  if (schedule->AtEnd()) destination_.write("There are no scheduled maintenance items to analyze.");
  for (; !schedule->AtEnd(); schedule->MoveNext()) {
    const auto line = ReadLine(*schedule);
    if (line && !AnalyseLine(asset, standing, *line)) return false;
  }
  CloseObject(schedule);
  return true;
}

/// The newest reading counts, unless the transaction with the highest mileage is of a later day. Readings
/// without a date sort last, so one of them comes first only where no reading tells a day: then it is as if
/// there were none.
bool DueAnalysis::FindStanding(const DueAsset& asset, Standing& standing) {
  AdoRecordsetPtr readings =
      AdoOpenRecordset(connection_, "SELECT * FROM [Odometer Entries] WHERE [Asset ID] = '" + asset.assetID +
                                        "' ORDER BY [Date] DESC");
  if (!readings) return false;
  const rt::Value readingDate = readings->AtEnd() ? rt::Value() : readingDate_.Of(*readings);
  if (!readingDate.IsNull()) {
    standing.mileage = MileageOf(readingMileage_.Of(*readings));
    standing.date = readingDate.AsDate();
  } else if (!asset.purchaseDate.IsNull()) {
    standing.date = asset.purchaseDate.AsDate();
  } else {
    standing.date = rt::Today();
    destination_.write("ERROR: Purchase date missing.");
  }
  CloseObject(readings);

  AdoRecordsetPtr transactions =
      AdoOpenRecordset(connection_, "SELECT * FROM [Maintenance Transactions] WHERE [Asset ID] = '" +
                                        asset.assetID + "' AND [Mileage] > 0 ORDER BY [Mileage] DESC");
  if (!transactions) return false;
  if (!transactions->AtEnd()) {
    const rt::Value date = transactionDate_.Of(*transactions);
    if (!date.IsNull() && rt::DateDiff("d", standing.date, date.AsDate()) > 0) {
      standing.mileage = MileageOf(transactionMileage_.Of(*transactions));
      standing.date = date.AsDate();
    }
  }
  CloseObject(transactions);
  return true;
}

std::optional<DueAnalysis::Line> DueAnalysis::ReadLine(ado::Recordset& schedule) {
  return UnlessDeleted([&] {
    const rt::Value typeID = typeID_.Of(schedule);
    // A line without a type counts as type 0, which means none as well.
    return Line{typeID.IsNull() ? 0 : typeID.AsLong(), typeText_.Of(schedule).Shown(), months_.Of(schedule),
                usage_.Of(schedule)};
  });
}

bool DueAnalysis::AnalyseLine(const DueAsset& asset, const Standing& standing, const Line& line) {
  const rt::DateTime dueBy = horizon_.dueBy();
  const float extraUsage = horizon_.extraUsage();
  AdoRecordsetPtr performed = AdoOpenRecordset(
      connection_,
      "SELECT * FROM [Maintenance_Performed] LEFT JOIN [Maintenance Transactions] ON "
      "[Maintenance_Performed].[Maintenance_Entry_ID] = [Maintenance Transactions].[ID] WHERE "
      "[Maintenance_Type_ID] = " +
          std::to_string(line.typeID) + " AND [Asset ID] = '" + asset.assetID +
          "' ORDER BY [Transaction Date] DESC");
  if (!performed) return false;
  const bool wasPerformed = !performed->AtEnd();

  DueItem item;
  item.assetID = asset.assetID;
  item.type = line.type;

  bool reported = false;
  if (IsAboveZero(line.months)) {
    rt::Value base = wasPerformed ? performedDate_.Of(*performed) : rt::Value();
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
    const float lastMileage = wasPerformed ? MileageOf(performedMileage_.Of(*performed)) : 0.0F;
    item.nextMileage = wasPerformed ? lastMileage + line.usage.AsSingle() : line.usage.AsSingle();
    if (extraUsage + standing.mileage >= item.nextMileage) {
      Report(item, item.type + " due on mileage " + rt::PlainText(item.nextMileage));
    }
  }
  CloseObject(performed);
  return true;
}

void DueAnalysis::Report(const DueItem& item, const std::string& text) {
  destination_.write(text);
  if (onItem_) onItem_(item);
}

bool AnalyseDue(const AdoConnectionPtr& connection, ado::Recordset& asset, const DueDestination& destination,
                const DueHorizon& horizon, const std::function<void(const DueItem&)>& onItem) {
  DueAnalysis analysis(connection, destination, horizon, onItem);
  const auto facts = analysis.Read(asset);
  return facts && analysis.Run(*facts);
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
    // Half an analysis would read as if nothing else were due.
    if (!Guarded([&] { return AnalyseDue(connection, *asset, destination, horizon); })) text.clear();
  }
  CloseObject(asset);
  CloseObject(connection);
  return text;
}

}  // namespace dw
