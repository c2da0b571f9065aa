// A connection to the main data, opened for one piece of work. MainFile is its counterpart for the object
// model that holds records.
#pragma once

#include <optional>
#include <string>

#include "data/GenericADO.h"

namespace dw {

/// Opens the main data, and closes it again at the end of its life in every case. Opening asks for a missing
/// file and reports failures as AdoOpenConnection does.
class MainConnection {
 public:
  MainConnection();
  ~MainConnection();
  MainConnection(const MainConnection&) = delete;
  MainConnection& operator=(const MainConnection&) = delete;

  bool IsOpen() const { return open_; }
  const AdoConnectionPtr& Connection() const { return connection_; }

  /// A recordset for reading. Null if it cannot be opened, which has been reported.
  AdoRecordsetPtr Read(const std::string& query) const;
  /// A keyset that holds a row from its first change.
  AdoRecordsetPtr Edit(const std::string& query) const;
  /// Whether the query finds a row; empty if the query fails, which has been reported.
  std::optional<bool> Finds(const std::string& query) const;

 private:
  AdoConnectionPtr connection_;
  bool open_ = false;
};

}  // namespace dw
