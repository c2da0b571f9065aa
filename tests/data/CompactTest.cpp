#include "data/Compact.h"

#include <filesystem>

#include "data/DataTest.h"

namespace dw {
namespace {

namespace fs = std::filesystem;
using dwtest::OtherWorkstation;
using screen::Buttons;
using screen::Icon;

class CompactTest : public dwtest::DataTest {
 protected:
  static std::size_t FilesIn(const std::string& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), {}));
  }
};

TEST_F(CompactTest, TheSpaceOfDeletedRecordsIsGivenBack) {
  const std::string path = MakeVehicles();
  {
    const auto connection = store::Connection::Open({path});
    connection->BeginTrans();
    for (int i = 0; i < 5000; ++i)
      connection->Execute("INSERT INTO [Vehicles] ([Asset ID]) VALUES ('" + std::to_string(i) + "')");
    connection->CommitTrans();
    connection->Execute("DELETE * FROM [Vehicles] WHERE [ID] > 3");
  }
  const auto rights =
      fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read | fs::perms::group_write;
  fs::permissions(path, rights);
  const auto before = fs::file_size(path);

  const test::TempDirectory folder;
  user_->Expect("Compacting complete.", Icon::Information);
  CompactDatabase(path, folder.Path());
  EXPECT_LT(fs::file_size(path), before / 2);
  EXPECT_EQ(AssetOf(path, 3), "TRUCK 3");
  EXPECT_EQ(fs::status(path).permissions(), rights) << "others must be able to write to it as before";
  EXPECT_EQ(FilesIn(folder.Path()), 0U);

  // Without a folder for temporary files, the data directory gets the copy.
  user_->Expect("Compacting complete.", Icon::Information);
  CompactDatabase(path);
  EXPECT_EQ(AssetOf(path, 1), "TRUCK 1");
  for (const auto& entry : fs::directory_iterator(directory_.Path()))
    EXPECT_NE(entry.path().extension(), ".TMP") << entry.path();

  // A new record does not get a number that another record has had.
  store::Connection::Open({path})->Execute("INSERT INTO [Vehicles] ([Asset ID]) VALUES ('NEXT')");
  EXPECT_EQ(AssetOf(path, 5004), "NEXT");
}

TEST_F(CompactTest, AFileInUseStaysAsItIs) {
  const std::string path = MakeVehicles();
  const std::string bytes = BytesOf(path);
  const test::TempDirectory folder;
  {
    other_.Keep(path, OtherWorkstation::Keeps::FileShared);
    user_->Expect("Cannot compact at this time. Currently in use.", Icon::Information);
    CompactDatabase(path, folder.Path());
    other_.LetGo();
  }
  {
    const auto own = store::Connection::Open({path});
    user_->Expect("Cannot compact at this time. Currently in use.", Icon::Information);
    CompactDatabase(path, folder.Path());
  }
  EXPECT_EQ(BytesOf(path), bytes);
  EXPECT_EQ(FilesIn(folder.Path()), 0U);
}

TEST_F(CompactTest, AFailureLeavesTheFirstFileAndNoCopy) {
  const std::string path = MakeVehicles();
  user_->Expect("Unable to get a temporary file name. Compression cancelled.", Icon::None, Buttons::OkCancel);
  CompactDatabase(path, directory_.Path("no such folder"));
  EXPECT_EQ(AssetOf(path, 1), "TRUCK 1");

  WriteBytes(path, "Dear Anna,\nplease fill in.\n");
  const test::TempDirectory folder;
  user_->ExpectPart("Error #3049.\n", Icon::Critical);
  EXPECT_THROW(CompactDatabase(path, folder.Path()), ApplicationEnd);
  EXPECT_TRUE(user_->Shown().back().text.ends_with("\n\nApplication terminated."));
  EXPECT_EQ(BytesOf(path), "Dear Anna,\nplease fill in.\n");
  EXPECT_EQ(FilesIn(folder.Path()), 0U);
}

}  // namespace
}  // namespace dw
