#include "data/BrackenfelGlobals.h"

#include "data/DataTest.h"
#include "data/GenericADO.h"

namespace dw {
namespace {

class BrackenfelGlobalsTest : public dwtest::DataTest {};

TEST_F(BrackenfelGlobalsTest, TheDirectoryGivesFilesAndConnections) {
  SetDataPath("/srv/fleet");
  EXPECT_EQ(DataPath, "/srv/fleet/");
  EXPECT_EQ(DataFile, "/srv/fleet/DW.MDB");
  EXPECT_EQ(UsersFile, "/srv/fleet/DW_USERS.MDB");
  EXPECT_EQ(DataConnect,
            "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=/srv/fleet/DW.MDB;Persist Security Info=False;"
            "User ID=admin;Password=;");
  EXPECT_EQ(
      ListsConnect,
      "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=/srv/fleet/DW_LISTS.MDB;Persist Security Info=False");
  SetDataPath("C:\\Fleet\\");
  EXPECT_EQ(SandsFile, "C:\\Fleet\\DW_SANDS.MDB");
}

TEST_F(BrackenfelGlobalsTest, EveryStringOpensItsFile) {
  for (const std::string& path : {DataFile, UsersFile, ListsFile, SandsFile}) MakeVehicles(path);
  for (const std::string* text : {&DataConnect, &UsersConnect, &ListsConnect, &SandsConnect}) {
    AdoConnectionPtr connection;
    EXPECT_TRUE(AdoOpenConnection(connection, *text, false)) << *text;
    EXPECT_TRUE(AdoTableExists(connection, "Vehicles")) << *text;
  }
}

TEST_F(BrackenfelGlobalsTest, ServersAreReachedTrustedOrByLogin) {
  EXPECT_EQ(ServerConnect("HAULER", "Keelwatch"),
            "Provider=SQLOLEDB.1;Integrated Security=SSPI;Data Source=HAULER;Persist Security Info=False;"
            "Initial Catalog=Keelwatch;");
  EXPECT_EQ(ServerConnect("HAULER", "Keelwatch", "anna", "secret"),
            "Provider=SQLOLEDB.1;Data Source=HAULER;Persist Security Info=False;Initial Catalog=Keelwatch;"
            "UID=anna;Pwd=secret;");
}

}  // namespace
}  // namespace dw
