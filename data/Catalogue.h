// Every table of every data file, in one declarative list from which files are made and checked.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/store/Connection.h"
#include "platform/store/Schema.h"

namespace dw {

struct CatalogueFile {
  std::string name;  ///< "DW.MDB"
  std::vector<store::TableInfo> tables;
  std::vector<store::RelationInfo> relations;
};

/// DW.MDB, DW_USERS.MDB, DW_LISTS.MDB, DW_SANDS.MDB and BFSYS.MDB (which holds no table of ours).
const std::vector<CatalogueFile>& Catalogue();
const CatalogueFile& CatalogueOf(std::string_view file);

/// Makes an empty data file with all its tables, indexes and relations. Throws StoreError (3204 when it
/// exists).
void CreateDataFile(const std::string& directory, std::string_view file);
/// Adds the indexes that an older file lacks. One that its rows do not allow, or whose table others hold, is
/// left out without a word; CompareWithCatalogue names it.
void AddMissingIndexes(store::Connection& connection, const CatalogueFile& file);
/// The same for the main data file, as the program does when it starts. Where the file cannot be opened,
/// nothing happens.
void CompleteMainFile();
/// Differences between a file and its catalogue, one line each: missing tables, columns and indexes, other
/// types, indexes that are not unique or not required as they should be, and rows that a missing unique index
/// would refuse. What a file has beyond the catalogue is no difference.
std::vector<std::string> CompareWithCatalogue(store::Connection& connection, const CatalogueFile& file);

}  // namespace dw
