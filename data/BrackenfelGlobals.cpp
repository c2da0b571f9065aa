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

void SetDataFile(DataKind kind, const std::string& path) {
  const auto set = [&](std::string& file, std::string& connect) {
    file = path;
    connect = kind == DataKind::Main ? MainFileConnect(path) : FileConnect(path);
  };
  switch (kind) {
    case DataKind::Main:
      return set(DataFile, DataConnect);
    case DataKind::Users:
      return set(UsersFile, UsersConnect);
    case DataKind::SelectAndSort:
      return set(SandsFile, SandsConnect);
    case DataKind::Lists:
      return set(ListsFile, ListsConnect);
    case DataKind::System:
      return set(SystemFile, SystemConnect);
  }
}

void SetDataPath(const std::string& directory) {
  DataPath = directory;
  if (DataPath.empty() || (DataPath.back() != '/' && DataPath.back() != '\\')) DataPath += '/';

  const std::string stem = DataPath + kApplicationCode;
  SetDataFile(DataKind::Main, stem + ".MDB");
  SetDataFile(DataKind::Lists, stem + "_LISTS.MDB");
  SetDataFile(DataKind::Users, stem + "_USERS.MDB");
  SetDataFile(DataKind::SelectAndSort, stem + "_SANDS.MDB");
}

}  // namespace dw
