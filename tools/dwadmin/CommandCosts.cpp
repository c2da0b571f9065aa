// Costs from the cost tables.
#include <iostream>

#include "costing/Posting.h"
#include "data/GenericTools.h"
#include "platform/dao/Dao.h"
#include "tools/dwadmin/Commands.h"
#include "tools/dwadmin/Output.h"

namespace dw {
namespace {

struct Source {
  const char* table;
  std::vector<std::string> keys;
};

Source SourceOf(CostSpan by) {
  switch (by) {
    case CostSpan::Period:
      return {"Assets Period Costs", {"Asset ID", "Fiscal Year", "Period"}};
    case CostSpan::Year:
      return {"Assets Annual Costs", {"Asset ID", "Fiscal Year"}};
    case CostSpan::Life:
      break;
  }
  return {"Assets Lifetime Costs", {"Asset ID"}};
}

std::string Listed(const std::vector<std::string>& columns) {
  std::string list;
  for (const std::string& column : columns) list += (list.empty() ? "[" : ", [") + column + "]";
  return list;
}

}  // namespace

int Costs(const std::string& asset, CostSpan by, Format format) {
  const auto workspace = dao::DBEngine::CreateWorkspace("Costs", "admin", "");
  const auto database = workspace->OpenDatabase(RequireFile("DW.MDB"), false, true);
  const auto read = [&](const std::string& sql) {
    return database->OpenRecordset(sql, dao::RecordsetType::Snapshot, dao::Access::ReadOnly);
  };
  const std::string condition = asset.empty() ? "" : " WHERE [Asset ID] = '" + QuoteSQL(asset) + "'";

  const Source source = SourceOf(by);
  ResultTable table;
  table.columns = source.keys;
  for (const CostColumn& column : kAssetCostColumns) table.columns.emplace_back(column.accumulator);
  const auto rows = read("SELECT " + Listed(table.columns) + " FROM [" + source.table + "]" + condition +
                         " ORDER BY " + Listed(source.keys));
  for (; !rows->AtEnd(); rows->MoveNext()) {
    std::vector<rt::Value>& values = table.rows.emplace_back();
    for (int i = 0; i < static_cast<int>(table.columns.size()); ++i) values.push_back(rows->Get(i));
  }
  // Costs outlive their asset; only a code that is in no table is a mistake.
  if (table.rows.empty() && !asset.empty() && read("SELECT [ID] FROM [Vehicles]" + condition)->AtEnd())
    throw NotDone("There is no asset " + asset + ".");

  if (format == Format::Json) {
    table.WriteJson(std::cout);
    std::cout << '\n';
  } else if (table.rows.empty()) {
    std::cout << "No costs have been posted.\n";
  } else {
    table.WriteText(std::cout);
  }
  return 0;
}

}  // namespace dw
