#include "data/Catalogue.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "platform/store/StoreError.h"
#include "support/TempDirectory.h"

namespace {

using Lines = std::vector<std::string>;

std::shared_ptr<store::Connection> OpenIn(const test::TempDirectory& directory, const std::string& file) {
  return store::Connection::Open({.path = directory.Path(file)});
}

Lines Differences(store::Connection& connection, const char* file) {
  return dw::CompareWithCatalogue(connection, dw::CatalogueOf(file));
}

TEST(Catalogue, NewFilesAgreeWithItAndCarryTheirRelations) {
  const test::TempDirectory directory;
  for (const dw::CatalogueFile& file : dw::Catalogue()) {
    dw::CreateDataFile(directory.Path(), file.name);
    const auto connection = OpenIn(directory, file.name);
    EXPECT_EQ(dw::CompareWithCatalogue(*connection, file), Lines{}) << file.name;
    EXPECT_EQ(connection->Tables()->tables.size(), file.tables.size()) << file.name;
    EXPECT_EQ(connection->Relations().size(), file.relations.size()) << file.name;
  }
}

TEST(Catalogue, RelationsAndIndexesNameColumnsThatExistAndMatchInType) {
  for (const dw::CatalogueFile& file : dw::Catalogue()) {
    const store::Schema schema{file.tables};
    for (const store::TableInfo& table : file.tables) {
      EXPECT_EQ(schema.Find(table.name),
                &schema.tables[static_cast<std::size_t>(&table - file.tables.data())])
          << table.name << " is there twice";
      for (const store::IndexInfo& index : table.indexes)
        for (const std::string& column : index.columns)
          EXPECT_GE(table.Find(column), 0) << table.name << column;
    }
    for (const store::RelationInfo& relation : file.relations) {
      const store::TableInfo* table = schema.Find(relation.table);
      const store::TableInfo* foreign = schema.Find(relation.foreignTable);
      ASSERT_TRUE(table && foreign) << relation.name;
      const int key = table->Find(relation.columns.front().first);
      const int reference = foreign->Find(relation.columns.front().second);
      ASSERT_TRUE(key >= 0 && reference >= 0) << relation.name;
      const store::ColumnInfo& a = table->columns[static_cast<std::size_t>(key)];
      const store::ColumnInfo& b = foreign->columns[static_cast<std::size_t>(reference)];
      const auto kind = [](const store::ColumnInfo& column) {
        return column.type == store::ColumnType::Counter ? store::ColumnType::Long : column.type;
      };
      EXPECT_EQ(kind(a), kind(b)) << relation.name;
      EXPECT_EQ(a.size, b.size) << relation.name;
    }
  }
}

TEST(Catalogue, NamesWhatAFileLacksAndNothingThatItHasBeyond) {
  const test::TempDirectory directory;
  dw::CreateDataFile(directory.Path(), "DW.MDB");
  const auto connection = OpenIn(directory, "DW.MDB");
  const auto expectOnly = [&](const std::string& line) {
    EXPECT_EQ(Differences(*connection, "DW.MDB"), Lines{line});
  };

  connection->DropColumn("Vehicles", "No_Longer_In_Service");
  expectOnly("column [Vehicles].[No_Longer_In_Service] is missing");
  connection->AddColumn("Vehicles", {.name = "No_Longer_In_Service", .type = store::ColumnType::Boolean});
  EXPECT_EQ(Differences(*connection, "DW.MDB"), Lines{});

  // Oil units were once whole numbers.
  connection->DropColumn("Maintenance Transactions", "Oil");
  connection->AddColumn("Maintenance Transactions", {.name = "Oil", .type = store::ColumnType::Short});
  expectOnly("column [Maintenance Transactions].[Oil] is SHORT instead of SINGLE");
  connection->DropColumn("Maintenance Transactions", "Oil");
  connection->AddColumn("Maintenance Transactions", {.name = "Oil", .type = store::ColumnType::Single});

  connection->DropIndex("Maintenance_Performed", "By_Maintenance_ID");
  expectOnly("index [By_Maintenance_ID] of [Maintenance_Performed] is missing");
  connection->CreateIndex("Maintenance_Performed",
                          {.name = "By_Maintenance_ID", .columns = {"Maintenance_Entry_ID"}});
  expectOnly(
      "index [By_Maintenance_ID] of [Maintenance_Performed] is on Maintenance_Entry_ID instead of "
      "Maintenance_Entry_ID, ID");
  connection->DropIndex("Maintenance_Performed", "By_Maintenance_ID");
  connection->CreateIndex("Maintenance_Performed",
                          {.name = "By_Maintenance_ID", .columns = {"Maintenance_Entry_ID", "ID"}});
  expectOnly("index [By_Maintenance_ID] of [Maintenance_Performed] is not unique");
  connection->DropIndex("Maintenance_Performed", "By_Maintenance_ID");
  connection->CreateIndex(
      "Maintenance_Performed",
      {.name = "By_Maintenance_ID", .columns = {"Maintenance_Entry_ID", "ID"}, .unique = true});
  EXPECT_EQ(Differences(*connection, "DW.MDB"), Lines{});

  // Two assets with the same code prevent the index that an older file lacks.
  connection->DropIndex("Vehicles", "One Asset a Code");
  for (const char* code : {"TRK-1", "VAN 2", "trk-1", "", ""})
    connection->Execute("INSERT INTO [Vehicles] ([Asset ID]) VALUES ('" + std::string(code) + "')");
  dw::AddMissingIndexes(*connection, dw::CatalogueOf("DW.MDB"));
  EXPECT_EQ(Differences(*connection, "DW.MDB"),
            (Lines{"index [One Asset a Code] of [Vehicles] is missing",
                   "2 rows of [Vehicles] have the [Asset ID] 'TRK-1': [ID] 1, 3"}));
  connection->Execute("UPDATE [Vehicles] SET [Asset ID] = 'TRK-3' WHERE [ID] = 3");
  dw::AddMissingIndexes(*connection, dw::CatalogueOf("DW.MDB"));
  EXPECT_EQ(Differences(*connection, "DW.MDB"), Lines{});

  // Older files allow a task without a transaction, and a row of parameters without a key.
  const auto allowNulls = [&](const char* name) {
    store::TableInfo table = *connection->Tables()->Find(name);
    connection->DropTable(name);
    for (store::ColumnInfo& column : table.columns) column.required = false;
    connection->CreateTable(table);
  };
  allowNulls("Maintenance_Performed");
  allowNulls("Parameters");
  EXPECT_EQ(Differences(*connection, "DW.MDB"),
            (Lines{"index [PrimaryKey] of [Parameters] allows a Null",
                   "index [By_Maintenance_Type_ID] of [Maintenance_Performed] allows a Null",
                   "index [By_Maintenance_ID] of [Maintenance_Performed] allows a Null"}));
  for (const char* name : {"Maintenance_Performed", "Parameters"}) {
    const store::Schema wanted{dw::CatalogueOf("DW.MDB").tables};
    connection->DropTable(name);
    connection->CreateTable(*wanted.Find(name));
  }
  EXPECT_EQ(Differences(*connection, "DW.MDB"), Lines{});

  // Other columns, tables and wider texts of the user's own may stay; a narrower text is a difference.
  connection->DropColumn("Divisions", "Description");
  connection->AddColumn("Divisions", {.name = "Description", .type = store::ColumnType::Text, .size = 200});
  connection->AddColumn("Divisions", {.name = "Telephone", .type = store::ColumnType::Text, .size = 30});
  connection->CreateTable(
      {.name = "Own Table", .columns = {{.name = "ID", .type = store::ColumnType::Counter}}, .indexes = {}});
  EXPECT_EQ(Differences(*connection, "DW.MDB"), Lines{});
  connection->DropColumn("Divisions", "Description");
  connection->AddColumn("Divisions", {.name = "Description", .type = store::ColumnType::Text, .size = 50});
  expectOnly("column [Divisions].[Description] is TEXT(50) instead of TEXT(100)");

  connection->DropTable("Divisions");
  expectOnly("table [Divisions] is missing");
}

TEST(Catalogue, AFileIsNeverMadeOverAnother) {
  const test::TempDirectory directory;
  dw::CreateDataFile(directory.Path(), "DW_LISTS.MDB");
  {
    const auto connection = OpenIn(directory, "DW_LISTS.MDB");
    connection->Execute("INSERT INTO [List Definitions] ([Name], [Type]) VALUES ('Kept', 1)");
  }
  try {
    dw::CreateDataFile(directory.Path(), "dw_lists.mdb");
    FAIL() << "made a second time";
  } catch (const store::StoreError& error) {
    EXPECT_EQ(error.Number(), store::kFileExists);
  }
  const auto connection = OpenIn(directory, "DW_LISTS.MDB");
  EXPECT_EQ(connection->Execute("UPDATE [List Definitions] SET [Type] = 2 WHERE [Name] = 'Kept'"), 1);
  EXPECT_THROW(dw::CatalogueOf("OTHER.MDB"), std::invalid_argument);
}

TEST(Catalogue, KeysRefuseTheSecondOfAKindAndLetUnfinishedRowsBe) {
  const test::TempDirectory directory;
  dw::CreateDataFile(directory.Path(), "DW.MDB");
  const auto connection = OpenIn(directory, "DW.MDB");
  const auto refused = [&](const char* sql) {
    try {
      connection->Execute(sql);
    } catch (const store::StoreError& error) {
      return error.Number();
    }
    return 0;
  };
  // Two windows that have each just added an empty row.
  EXPECT_EQ(refused("INSERT INTO [Vehicles] ([Asset ID]) VALUES ('')"), 0);
  EXPECT_EQ(refused("INSERT INTO [Vehicles] ([Asset ID]) VALUES ('')"), 0);
  EXPECT_EQ(refused("INSERT INTO [Vehicles] ([Asset ID]) VALUES (Null)"), 0);
  EXPECT_EQ(refused("INSERT INTO [Vehicles] ([Asset ID]) VALUES ('TRK-1')"), 0);
  EXPECT_EQ(refused("INSERT INTO [Vehicles] ([Asset ID]) VALUES ('trk-1')"), store::kDuplicateKey);
  EXPECT_EQ(refused("UPDATE [Vehicles] SET [Asset ID] = 'TRK-1' WHERE [ID] = 1"), store::kDuplicateKey);
  EXPECT_EQ(refused("INSERT INTO [Divisions] ([Division ID]) VALUES ('')"), 0);
  EXPECT_EQ(refused("INSERT INTO [Divisions] ([Division ID]) VALUES ('')"), 0);
  EXPECT_EQ(refused("INSERT INTO [Assets Annual Costs] ([Asset ID], [Fiscal Year]) VALUES ('TRK-1', 2025)"),
            0);
  EXPECT_EQ(refused("INSERT INTO [Assets Annual Costs] ([Asset ID], [Fiscal Year]) VALUES ('TRK-1', 2025)"),
            store::kDuplicateKey);
  EXPECT_EQ(refused("INSERT INTO [Parameters] ([ID]) VALUES (1)"), 0);
  EXPECT_EQ(refused("INSERT INTO [Parameters] ([ID]) VALUES (1)"), store::kDuplicateKey);
  EXPECT_EQ(refused("INSERT INTO [Parameters] ([Contact]) VALUES ('nobody')"), store::kFieldRequired);
  EXPECT_EQ(refused("INSERT INTO [Maintenance_Performed] ([Maintenance_Type_ID]) VALUES (1)"),
            store::kFieldRequired);
}

}  // namespace
