// A connection to the main data, opened for one piece of work. Its counterpart for the object model that
// holds records is MainFile.
#pragma once

#include <optional>
#include <string>

#include "data/GenericADO.h"

namespace dw {

/// Opens the main data and closes it again at the end of its life, whatever happened in between. Opening asks
/// for a missing file and reports failures as AdoOpenConnection does.
class MainConnection {
 public:
  MainConnection();
  ~MainConnection();
  MainConnection(const MainConnection&) = delete;
  MainConnection& operator=(const MainConnection&) = delete;

  bool IsOpen() const { return open_; }
  const AdoConnectionPtr& Connection() const { return connection_; }

  /// A recordset for reading. Null where it cannot be opened, which has been reported.
  AdoRecordsetPtr Read(const std::string& query) const;
  /// A keyset that takes a row with the first change.
  AdoRecordsetPtr Edit(const std::string& query) const;
  /// Whether the query finds a row; nothing where it cannot be asked, which has been reported.
  std::optional<bool> Finds(const std::string& query) const;

 private:
  AdoConnectionPtr connection_;
  bool open_ = false;
};

}  // namespace dw
