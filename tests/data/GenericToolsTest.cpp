#include "data/GenericTools.h"

#include <filesystem>

#include "data/DataTest.h"
#include "data/GenericDAO.h"

namespace dw {
namespace {

using dwtest::OtherWorkstation;
using screen::Icon;

class GenericToolsTest : public dwtest::DataTest {};

TEST_F(GenericToolsTest, ADateIsRefusedWithTheReason) {
  EXPECT_TRUE(ValidDate("", false));
  EXPECT_TRUE(ValidDate("1/1/1800", true));
  EXPECT_TRUE(ValidDate("2/29/2024", false));
  EXPECT_TRUE(user_->Shown().empty());

  user_->Expect("A date is required for this field.", Icon::Critical);
  EXPECT_FALSE(ValidDate("", true));
  user_->Expect("That is not a valid date. Please try again.", Icon::Exclamation);
  EXPECT_FALSE(ValidDate("2/30/2024", false));
  user_->Expect("That is not a valid date. Please try again.", Icon::Exclamation);
  EXPECT_FALSE(ValidDate(" ", false));
  user_->Expect("Year cannot be less than 1800. Please try again.", Icon::Exclamation);
  EXPECT_FALSE(ValidDate("12/31/1799", true));
}

TEST_F(GenericToolsTest, TextsAreQuotedAndStripped) {
  EXPECT_EQ(QuoteSQL("O'Neill's"), "O''Neill''s");
  EXPECT_EQ(QuoteSQL("''"), "''''");
  EXPECT_EQ(QuoteSQL(""), "");
  EXPECT_EQ(StripBrackets("[Vehicles"), "Vehicles");
  EXPECT_EQ(StripBrackets("Vehicles]"), "Vehicles");
  EXPECT_EQ(StripBrackets("[[Fuel]]"), "[Fuel]");
  EXPECT_EQ(StripBrackets("["), "");
  EXPECT_EQ(StripBrackets("[]"), "");
  EXPECT_EQ(StripBrackets(""), "");
  EXPECT_EQ(BareFileName("C:\\Data\\DW.MDB"), "DW.MDB");
  EXPECT_EQ(BareFileName("/srv/fleet\\office/DW.MDB"), "DW.MDB");
  EXPECT_EQ(BareFileName("DW.MDB"), "DW.MDB");
  EXPECT_EQ(BareFileName("/srv/fleet/"), "");
}

TEST_F(GenericToolsTest, FilesAreFoundWhateverTheirLetters) {
  const auto write = [&](const std::string& name) {
    const std::filesystem::path path = directory_.Path(name);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << "x";
    return path.string();
  };
  const std::string small = write("office/dw.mdb");
  const std::string mixed = write("office/Dw.Mdb");
  EXPECT_EQ(FindFile(directory_.Path("office"), "dw.mdb"), small);
  EXPECT_EQ(FindFile(directory_.Path("office\\"), "DW.MDB"), mixed) << "the first by its bytes";
  EXPECT_EQ(FindFile(directory_.Path(), "OFFICE/DW.mdb"), mixed);
  // A folder with this name is not the file, and a file is not the folder.
  std::filesystem::create_directory(directory_.Path("OFFICE.MDB"));
  EXPECT_EQ(FindFile(directory_.Path(), "office.mdb"), directory_.Path("office.mdb"));
  EXPECT_EQ(FindFile(directory_.Path("office"), "DW.MDB/x"), directory_.Path("office/DW.MDB/x"));
  EXPECT_EQ(FindFile("/gone/", "DW.MDB"), "/gone/DW.MDB");
}

TEST_F(GenericToolsTest, WordsBeginWithCapitalsAndKeepTheRest) {
  EXPECT_EQ(ProperCase("front left tyre"), "Front Left Tyre");
  EXPECT_EQ(ProperCase("  mcLAREN  x"), "  McLAREN  X");
  EXPECT_EQ(ProperCase("\u00e9clair \u00fcber a-b"), "\u00c9clair \u00dcber A-b");
  EXPECT_EQ(ProperCase(""), "");

  std::string text = "a\u00e9b";
  UppercaseCharAt(3, text, 3);
  UppercaseCharAt(2, text, 3);
  EXPECT_EQ(text, "a\u00c9B");
  UppercaseCharAt(0, text, 3);
  UppercaseCharAt(4, text, 3);
  UppercaseCharAt(9, text, 20);
  EXPECT_EQ(text, "a\u00c9B");
}

TEST_F(GenericToolsTest, AFileIsDeletedOnlyWhereNobodyHasItOpen) {
  const std::string path = MakeVehicles();
  {
    other_.Keep(path, OtherWorkstation::Keeps::FileShared);
    user_->Expect("The file is in use by another person and cannot be deleted.", Icon::None);
    DeleteFileChecked(path);
    EXPECT_TRUE(FileExists(path));
    other_.LetGo();
  }
  EXPECT_EQ(AssetOf(path, 3), "TRUCK 3");
  DeleteFileChecked(path);
  EXPECT_FALSE(FileExists(path));

  user_->ExpectPart("Could not delete file.\r", Icon::None);
  DeleteFileChecked(path);
  EXPECT_FALSE(FileExists(directory_.Path())) << "a folder is not a file";
}

TEST_F(GenericToolsTest, DrivesAreListedWithTheSystemsRoot) {
  const std::string drives = GetDrives();
  EXPECT_TRUE(drives.starts_with(std::string("/\0", 2)));
  EXPECT_EQ(drives.back(), '\0');
}

}  // namespace
}  // namespace dw
