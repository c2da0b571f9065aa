#include "support/WholeFleet.h"

#include <fstream>
#include <iterator>

#include "costing/CostCheck.h"
#include "costing/Posting.h"
#include "data/BrackenfelGlobals.h"
#include "platform/store/Cursor.h"
#include "support/QuietScreen.h"
#include "tools/dwadmin/Sample.h"

namespace test {
namespace {

std::string Ask(const std::shared_ptr<store::Connection>& file, const std::string& sql) {
  const auto rows = store::Cursor::OpenQuery(file, sql, store::Locking::ReadOnly);
  return rows->AtEnd() ? "no row" : rows->Get(0).IsNull() ? "Null" : rows->Get(0).AsText();
}

}  // namespace

void MakeFleet(const std::string& directory, int assets, int years) {
  dw::MakeSample(directory, assets, years, 7, {}, rt::DateTime(2025, 10, 17));
}

void Post(const std::string& directory, bool clearFirst, Faults& faults) {
  dw::SetDataPath(directory);
  const auto user = QuietScreen::Install();
  dw::RunPosting(clearFirst, {});
  faults.Equal(user->TakeTexts(), std::string("<Posting is Complete.>"), "boxes of the posting");
}

std::string CheckMainFile(const std::string& path, bool readOnly) {
  Faults faults;
  const auto file = store::Connection::Open({.path = path, .readOnly = readOnly});
  for (const std::string& fault : file->CheckIntegrity()) faults.Add("integrity: " + fault);
  for (const dw::CostDifference& found : dw::CheckCosts(*file))
    faults.Add("costs: " + found.table + " " + found.key + " " + found.column + " is " + found.stored +
               " instead of " + found.expected);
  faults.Equal(file->Holds().Roster().size(), std::size_t{1}, "users of the file");
  return faults.Text();
}

std::string CheckMainFileApart(const std::string& path) {
  return RunApart([&] { return CheckMainFile(path); });
}

std::string AskFile(const std::string& path, const std::string& sql) {
  return Ask(store::Connection::Open({.path = path, .readOnly = true}), sql);
}

std::int64_t WaitingRows(const std::string& path) {
  return std::stoll(
      AskFile(path,
              "SELECT COUNT(*) FROM [Maintenance Transactions] INNER JOIN [Vehicles] ON [Maintenance "
              "Transactions].[Asset ID] = [Vehicles].[Asset ID] WHERE [Maintenance Transactions].[When "
              "Posted] IS NULL"));
}

std::string CostTotals(const std::string& path) {
  const auto file = store::Connection::Open({.path = path, .readOnly = true});
  std::string totals;
  for (const char* table : {"Assets Period Costs", "Assets Annual Costs", "Assets Lifetime Costs"})
    for (const char* column : {"COUNT(*)", "SUM([Total Internal Cost])", "SUM([Total Outside Cost])"})
      totals += Ask(file, "SELECT " + std::string(column) + " FROM [" + table + "]") + " ";
  for (const char* table : {"Fuel Period Costs", "Fuel Annual Costs"})
    for (const char* column : {"COUNT(*)", "SUM([Internal Cost])", "SUM([Outside Cost])"})
      totals += Ask(file, "SELECT " + std::string(column) + " FROM [" + table + "]") + " ";
  return totals;
}

std::string BytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteBytes(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

}  // namespace test
