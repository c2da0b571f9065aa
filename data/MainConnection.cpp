#include "data/MainConnection.h"

#include "data/BrackenfelGlobals.h"
#include "data/GenericDAO.h"

namespace dw {

MainConnection::MainConnection() { open_ = AdoOpenConnection(connection_, DataConnect, false); }

MainConnection::~MainConnection() { CloseObject(connection_); }

AdoRecordsetPtr MainConnection::Read(const std::string& query) const {
  return AdoOpenRecordset(connection_, query, ado::adOpenForwardOnly);
}

AdoRecordsetPtr MainConnection::Edit(const std::string& query) const {
  return AdoOpenRecordset(connection_, query, ado::adOpenKeyset, ado::adLockPessimistic);
}

std::optional<bool> MainConnection::Finds(const std::string& query) const {
  AdoRecordsetPtr rows = Read(query);
  if (!rows) return std::nullopt;
  const bool found = !rows->AtEnd();
  CloseObject(rows);
  return found;
}

}  // namespace dw
