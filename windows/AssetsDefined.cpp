#include "windows/AssetsDefined.h"

#include "data/BrackenfelGlobals.h"
#include "data/GenericADO.h"
#include "data/GenericDAO.h"
#include "platform/screen/Screen.h"

namespace dw {

bool AssetsDefined(const std::string& query) {
  AdoConnectionPtr connection;
  if (!AdoOpenConnection(connection, DataConnect, false)) return false;
  AdoRecordsetPtr assets = AdoOpenRecordset(connection, query, ado::adOpenForwardOnly);
  const bool asked = assets != nullptr;
  const bool found = asked && !assets->AtEnd();
  CloseObject(assets);
  CloseObject(connection);
  if (asked && !found) screen::MessageBox("You must first define some Assets.", screen::Icon::Exclamation);
  return found;
}

}  // namespace dw
