// The main data file, opened for one piece of work.
#pragma once

#include <string>

#include "data/GenericDAO.h"

namespace dw {

/// Opens the main data file in a workspace of its own, and closes it again at the end of its life in every
/// case. Opening waits and asks as DaoOpenDatabase does.
class MainFile {
 public:
  MainFile();
  ~MainFile();
  MainFile(const MainFile&) = delete;
  MainFile& operator=(const MainFile&) = delete;

  bool IsOpen() const { return open_; }
  dao::Workspace& Workspace() { return *workspace_; }
  dao::Database& Database() { return *database_; }

  /// Opens a query, or a table by its name, for reading only. The recordset closes with the file.
  dao::Recordset& Read(const std::string& source);
  /// The same for changing rows.
  dao::Recordset& Edit(const std::string& query);

 private:
  DaoWorkspacePtr workspace_;
  DaoDatabasePtr database_;
  DaoRecordsetPtr rows_;
  bool open_ = false;
};

}  // namespace dw
