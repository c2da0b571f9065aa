#include "data/BrackenfelGlobals.h"

namespace dw {
namespace {

const std::string kFileProvider = "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=";

}  // namespace

std::string FileConnect(const std::string& path) {
  return kFileProvider + path + ";Persist Security Info=False";
}

std::string MainFileConnect(const std::string& path) {
  return kFileProvider + path + ";Persist Security Info=False;User ID=" + DataUserID +
         ";Password=" + DataPassword + ";";
}

std::string ServerConnect(const std::string& server, const std::string& database) {
  return "Provider=SQLOLEDB.1;Integrated Security=SSPI;Data Source=" + server +
         ";Persist Security Info=False;Initial Catalog=" + database + ";";
}

std::string ServerConnect(const std::string& server, const std::string& database, const std::string& id,
                          const std::string& password) {
  return "Provider=SQLOLEDB.1;Data Source=" + server +
         ";Persist Security Info=False;Initial Catalog=" + database + ";UID=" + id + ";Pwd=" + password + ";";
}

void SetDataPath(const std::string& directory) {
  DataPath = directory;
  if (DataPath.empty() || (DataPath.back() != '/' && DataPath.back() != '\\')) DataPath += '/';

  const std::string stem = DataPath + kApplicationCode;
  DataFile = stem + ".MDB";
  DataConnect = MainFileConnect(DataFile);
  ListsFile = stem + "_LISTS.MDB";
  ListsConnect = FileConnect(ListsFile);
  UsersFile = stem + "_USERS.MDB";
  UsersConnect = FileConnect(UsersFile);
  SandsFile = stem + "_SANDS.MDB";
  SandsConnect = FileConnect(SandsFile);
}

}  // namespace dw
