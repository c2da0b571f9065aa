#include "support/SmallFleet.h"

#include <map>
#include <memory>

#include "data/BrackenfelGlobals.h"
#include "data/Catalogue.h"
#include "platform/dao/Dao.h"

namespace test {
namespace {

/// A file that one function opens for itself.
struct Opened {
  explicit Opened(const std::string& path)
      : workspace(dao::DBEngine::CreateWorkspace("Test", "admin", "")),
        database(workspace->OpenDatabase(path)) {}
  ~Opened() {
    database.reset();
    workspace->Close();
  }
  Opened(const Opened&) = delete;
  Opened& operator=(const Opened&) = delete;
  std::shared_ptr<dao::Workspace> workspace;
  std::shared_ptr<dao::Database> database;
};

void Store(dao::Recordset& rows, const Row& row) {
  rows.AddNew();
  for (const auto& [column, value] : row) rows.Set(column, value);
  rows.Update();
}

std::string Shown(const rt::Value& value) { return value.IsNull() ? "Null" : value.AsText(); }

Row TransactionRow(const std::string& asset, const rt::Value& year, const rt::Value& period,
                   const Row& more) {
  Row row{{"Asset ID", asset},
          {"Year", year},
          {"Period", period},
          {"Transaction Date", rt::DateTime(2026, 3, 1)},
          {"Type_ID", 0}};
  for (const char* column :
       {"Internal Fuel Cost", "Internal Fuel Units", "Outside Fuel Cost", "Outside Fuel Units",
        "Outside Oil Cost", "Outside Oil Units", "Oil Cost", "Parts Cost", "Outside Cost",
        "Internal Time Cost", "Total Internal Cost", "Total Outside Cost"}) {
    row.emplace_back(column, 0);
  }
  row.insert(row.end(), more.begin(), more.end());
  return row;
}

const std::map<std::string, std::string>& IndexOf() {
  static const std::map<std::string, std::string> indexes{{"Assets Period Costs", "Assets by Period"},
                                                          {"Assets Annual Costs", "Assets by Year"},
                                                          {"Assets Lifetime Costs", "By Asset ID"},
                                                          {"Fuel Period Costs", "Fuel By Period"},
                                                          {"Fuel Annual Costs", "Fuel By Year"}};
  return indexes;
}

}  // namespace

rt::Value Money(double amount) { return rt::Currency::RoundedToEven(amount); }

SmallFleet::SmallFleet(std::initializer_list<const char*> otherFiles) {
  dw::CreateDataFile(directory_.Path(), "DW.MDB");
  for (const char* file : otherFiles) dw::CreateDataFile(directory_.Path(), file);
  dw::SetDataPath(directory_.Path());
  dw::CurrentUserName = "TESTER";
}

SmallFleet::~SmallFleet() { dw::CurrentUserName.clear(); }

std::int32_t SmallFleet::Add(const std::string& table, const Row& row, const std::string& file) {
  Opened opened(Path(file));
  const auto rows = opened.database->OpenRecordset(table, dao::RecordsetType::Table);
  Store(*rows, row);
  rows->SetBookmark(rows->LastModified());
  return rows->Get("ID").AsLong();
}

std::int32_t SmallFleet::AddAsset(const std::string& code, const rt::Value& fuelType, const Row& more) {
  Row row{{"Asset ID", code}, {"Fuel Type", fuelType}};
  row.insert(row.end(), more.begin(), more.end());
  return Add("Vehicles", row);
}

std::int32_t SmallFleet::AddTransaction(const std::string& asset, const rt::Value& year,
                                        const rt::Value& period, const Row& more) {
  return Add("Maintenance Transactions", TransactionRow(asset, year, period, more));
}

void SmallFleet::AddTransactions(int count, const std::function<std::string(int, Row&)>& make) {
  Opened opened(Path());
  const auto rows = opened.database->OpenRecordset("Maintenance Transactions", dao::RecordsetType::Table);
  opened.workspace->BeginTrans();
  for (int i = 0; i < count; ++i) {
    Row more;
    const std::string asset = make(i, more);
    Store(*rows, TransactionRow(asset, 2026, 1 + i % 12, more));
  }
  opened.workspace->CommitTrans();
}

std::int64_t SmallFleet::Run(const std::string& sql, const std::string& file) {
  Opened opened(Path(file));
  return opened.database->Execute(sql);
}

std::string SmallFleet::Ask(const std::string& sql, const std::string& file) {
  Opened opened(Path(file));
  const auto rows = opened.database->OpenRecordset(sql, dao::RecordsetType::Snapshot, dao::Access::ReadOnly);
  return rows->AtEnd() ? "no row" : Shown(rows->Get(0));
}

std::string SmallFleet::OfTransaction(std::int32_t id, const std::string& column) {
  return Ask("SELECT [" + column + "] FROM [Maintenance Transactions] WHERE [ID] = " + std::to_string(id));
}

std::string SmallFleet::Sum(const std::string& table, const std::vector<rt::Value>& key,
                            const std::string& column) {
  Opened opened(Path());
  const auto rows = opened.database->OpenRecordset(table, dao::RecordsetType::Table);
  rows->SetIndex(IndexOf().at(table));
  rows->Seek(key);
  return rows->NoMatch() ? "no row" : Shown(rows->Get(column));
}

std::string SmallFleet::Everything(const std::string& table) {
  Opened opened(Path());
  const auto rows = opened.database->OpenRecordset("SELECT * FROM [" + table + "]",
                                                   dao::RecordsetType::Snapshot, dao::Access::ReadOnly);
  std::string text;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    for (std::size_t i = 0; i < rows->Fields().size(); ++i)
      text += Shown(rows->Get(static_cast<int>(i))) + "|";
    text += "\n";
  }
  return text;
}

}  // namespace test
