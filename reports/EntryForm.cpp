#include "reports/EntryForm.h"

#include "data/BrackenfelGlobals.h"
#include "data/GenericDAO.h"
#include "data/GenericTools.h"
#include "data/MainFile.h"
#include "reports/ReportTable.h"

namespace dw {

std::string EntryFormSelection(const std::string& user) {
  return "{Odometer Entry Work Table.User Name} = '" + QuoteSQL(user) + "'";
}

bool PrepareEntryForm() {
  {
    MainFile file;
    if (!file.IsOpen()) return false;
    file.Database().Execute("DELETE * FROM [Odometer Entry Work Table] WHERE [User Name] = '" +
                            QuoteSQL(CurrentUserName) + "'");
    const auto work = file.Database().OpenRecordset("Odometer Entry Work Table", dao::RecordsetType::Table);
    // No asset is named, so only readings without one are found. The rest of the form are lines to write on.
    const std::string asset;
    const auto readings = file.Database().OpenRecordset(
        "SELECT * FROM [Odometer Entries] WHERE [Asset ID] = '" + asset + "'", dao::RecordsetType::Snapshot);
    for (; !readings->AtEnd(); readings->MoveNext()) {
      DaoAddRecord(*work);
      work->Set("User Name", CurrentUserName);
      for (const char* column : {"Asset ID", "Mileage", "Date"}) work->Set(column, readings->Get(column));
      DaoUpdateRecord(*work);
    }
    readings->Close();
    work->Close();
  }
  SetReportGlobals(*FindReport("011"), EntryFormSelection(CurrentUserName));
  return true;
}

}  // namespace dw
