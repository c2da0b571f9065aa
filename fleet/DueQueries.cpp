#include "fleet/DueQueries.h"

#include "data/GenericDAO.h"
#include "platform/store/StoreError.h"

namespace dw {

rt::Value DueColumn::Of(ado::Recordset& recordset) {
  if (field_ < 0) field_ = recordset.FieldIndex(name_);
  return recordset.Get(field_);
}

std::optional<DatedMileage> DueQueries::First(const std::string& sql, DueColumn& date, DueColumn& mileage) {
  AdoRecordsetPtr rows = open_(sql);
  std::optional<DatedMileage> first;
  if (!rows->AtEnd()) first = DatedMileage{date.Of(*rows), mileage.Of(*rows)};
  CloseObject(rows);
  return first;
}

std::optional<DatedMileage> DueQueries::NewestReading(const std::string& assetID) {
  return First("SELECT * FROM [Odometer Entries] WHERE [Asset ID] = '" + assetID + "' ORDER BY [Date] DESC",
               readingDate_, readingMileage_);
}

std::optional<DatedMileage> DueQueries::HighestTransaction(const std::string& assetID) {
  return First("SELECT * FROM [Maintenance Transactions] WHERE [Asset ID] = '" + assetID +
                   "' AND [Mileage] > 0 ORDER BY [Mileage] DESC",
               transactionDate_, transactionMileage_);
}

bool DueQueries::ForEachLine(const std::string& assetID, const std::function<void(const DueLine&)>& look) {
  AdoRecordsetPtr schedule = open_(
      "SELECT * FROM [Maintenance Schedule] LEFT JOIN [Maintenance Types] ON [Maintenance "
      "Schedule].[Type ID] = "
      "[Maintenance Types].[ID] WHERE [Maintenance Schedule].[Asset ID] = '" +
      assetID + "'");
  const bool any = !schedule->AtEnd();
  for (; !schedule->AtEnd(); schedule->MoveNext()) {
    const auto line = UnlessDeleted([&] {
      const rt::Value typeID = typeID_.Of(*schedule);
      // A line without a type has type 0, which also finds nothing.
      return DueLine{typeID.IsNull() ? 0 : typeID.AsLong(), typeText_.Of(*schedule).Shown(),
                     months_.Of(*schedule), usage_.Of(*schedule)};
    });
    if (line) look(*line);
  }
  CloseObject(schedule);
  return any;
}

std::optional<DatedMileage> DueQueries::LastPerformance(const std::string& assetID, const DueLine& line) {
  return First(
      "SELECT * FROM [Maintenance_Performed] LEFT JOIN [Maintenance Transactions] ON "
      "[Maintenance_Performed].[Maintenance_Entry_ID] = [Maintenance Transactions].[ID] WHERE "
      "[Maintenance_Type_ID] = " +
          std::to_string(line.typeID) + " AND [Asset ID] = '" + assetID +
          "' ORDER BY [Transaction Date] DESC",
      performedDate_, performedMileage_);
}

}  // namespace dw
