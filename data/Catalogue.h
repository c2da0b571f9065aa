// Every table of every data file, in one list that files are made from and compared with.
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

/// DW.MDB, DW_USERS.MDB, DW_LISTS.MDB, DW_SANDS.MDB and BFSYS.MDB (which has no table of ours).
const std::vector<CatalogueFile>& Catalogue();
const CatalogueFile& CatalogueOf(std::string_view file);

/// Makes an empty data file with all its tables, indexes and relations. Throws StoreError (3204 if it
/// exists).
void CreateDataFile(const std::string& directory, std::string_view file);
/// Adds the indexes that an older file lacks. It silently leaves out an index that the rows do not allow or
/// whose table others hold; CompareWithCatalogue names it.
void AddMissingIndexes(store::Connection& connection, const CatalogueFile& file);
/// The same for the main data file, as the program does when it starts. Does nothing if the file cannot be
/// opened.
void CompleteMainFile();
/// Differences between a file and its catalogue, one line each: missing tables, columns and indexes, other
/// types, indexes that are not unique or not required as they should be, and rows that a missing unique index
/// would refuse. Anything the file has beyond the catalogue is not a difference.
std::vector<std::string> CompareWithCatalogue(store::Connection& connection, const CatalogueFile& file);

}  // namespace dw
