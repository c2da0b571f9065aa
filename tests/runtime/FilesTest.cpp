#include "platform/system/Files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "support/TempDirectory.h"

namespace sys {
namespace {

void Write(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

std::string Content(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::size_t Entries(const std::string& folder) {
  const auto entries = std::filesystem::directory_iterator(folder);
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

/// Removes the question at the end of a test.
class Confirming {
 public:
  explicit Confirming(ReplaceConfirm confirm) : earlier_(InstallReplaceConfirm(std::move(confirm))) {}
  ~Confirming() { InstallReplaceConfirm(earlier_); }
  Confirming(const Confirming&) = delete;
  Confirming& operator=(const Confirming&) = delete;

 private:
  ReplaceConfirm earlier_;
};

TEST(Files, ReadOnlyFilesFromADiscBecomeWritable) {
  const test::TempDirectory folder;
  const std::string path = folder.Path(".hidden.MDB");
  EXPECT_FALSE(FileExists(path));
  EXPECT_FALSE(ClearReadOnly(path));
  EXPECT_FALSE(FileExists(folder.Path())) << "a folder is not a file";
  EXPECT_FALSE(ClearReadOnly(folder.Path()));
  Write(path, "x");
  chmod(path.c_str(), 0444);
  EXPECT_TRUE(FileExists(path));
  EXPECT_TRUE(ClearReadOnly(path));
  struct stat state {};
  ASSERT_EQ(stat(path.c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 0777, 0644U);
}

TEST(Files, TemporaryNamesAreFreeAndMakeNoFile) {
  const test::TempDirectory folder;
  const std::string first = TemporaryFileName(folder.Path(), "DW");
  const std::string second = TemporaryFileName(folder.Path(), "DW");
  EXPECT_NE(first, second);
  EXPECT_EQ(Entries(folder.Path()), 0U);
  const std::string name = std::filesystem::path(first).filename().string();
  EXPECT_TRUE(name.starts_with("DW") && name.ends_with(".TMP")) << name;
  EXPECT_EQ(TemporaryFileName(folder.Path("missing"), "DW"), "");
}

TEST(Files, RenameReplacesAndTellsWhyItCannot) {
  const test::TempDirectory folder;
  Write(folder.Path("new"), "new");
  Write(folder.Path("old"), "old");
  EXPECT_TRUE(RenameOver(folder.Path("new"), folder.Path("old")).Done());
  EXPECT_EQ(Content(folder.Path("old")), "new");
  EXPECT_EQ(Entries(folder.Path()), 1U);

  const FileResult missing = RenameOver(folder.Path("none"), folder.Path("old"));
  EXPECT_EQ(missing.number, 53);
  EXPECT_EQ(missing.text, "Could not rename '" + folder.Path("none") + "' to '" + folder.Path("old") +
                              "': there is no such file or folder.");
  EXPECT_EQ(Content(folder.Path("old")), "new");

  // A memory file system is another disk here, where a plain rename does not work.
  if (!std::filesystem::is_directory("/dev/shm") || access("/dev/shm", W_OK) != 0) return;
  const std::string far = TemporaryFileName("/dev/shm", "DWT");
  ASSERT_TRUE(RenameOver(folder.Path("old"), far).Done());
  EXPECT_EQ(Content(far), "new");
  EXPECT_FALSE(FileExists(folder.Path("old")));
  EXPECT_TRUE(DeleteFile(far).Done());
}

TEST(Files, DeletionOfNothingIsAFault) {
  const test::TempDirectory folder;
  Write(folder.Path("a"), "a");
  EXPECT_TRUE(DeleteFile(folder.Path("a")).Done());
  EXPECT_EQ(DeleteFile(folder.Path("a")).number, 53);
  EXPECT_EQ(DeleteFile(folder.Path()).number, 75);
  EXPECT_EQ(ShellDelete(folder.Path("a")), 2);
}

TEST(Files, APlainCopyReplacesButNeverDamagesItsTarget) {
  const test::TempDirectory folder;
  const std::string big(700'000, 'b');
  Write(folder.Path("a"), big);
  Write(folder.Path("b"), "earlier");
  EXPECT_TRUE(CopyFile(folder.Path("a"), folder.Path("b")).Done());
  EXPECT_EQ(Content(folder.Path("b")), big);
  EXPECT_EQ(CopyFile(folder.Path("none"), folder.Path("b")).number, 53);
  EXPECT_EQ(CopyFile(folder.Path(), folder.Path("b")).number, 75);
  EXPECT_EQ(CopyFile(folder.Path("a"), folder.Path("./a")).number, 75);
  EXPECT_EQ(CopyFile(folder.Path("a"), folder.Path("missing/b")).number, 53);
  EXPECT_EQ(Content(folder.Path("a")), big);
  EXPECT_EQ(Content(folder.Path("b")), big);
  EXPECT_EQ(Entries(folder.Path()), 2U) << "no partial copies remain";

  std::filesystem::create_directory(folder.Path("c"));
  EXPECT_NE(CopyFile(folder.Path("a"), folder.Path("c")).number, 0) << "a folder is not replaced";
  EXPECT_EQ(Entries(folder.Path()), 3U);
}

TEST(Files, TheShellCopyAsksBeforeItReplaces) {
  const test::TempDirectory folder;
  const std::string from = folder.Path("DW.MDB");
  const std::string to = folder.Path("new/deep/DW.MDB");
  Write(from, "1");
  int asked = 0;
  bool allow = false;
  const Confirming confirming([&](const std::string& target) {
    ++asked;
    EXPECT_EQ(target, to);
    return allow;
  });
  EXPECT_EQ(ShellCopy(from, to), kShellDone);
  EXPECT_EQ(asked, 0) << "nothing to replace, nothing to ask";
  Write(from, "2");
  EXPECT_EQ(ShellCopy(from, to), kShellCanceled);
  EXPECT_EQ(Content(to), "1");
  allow = true;
  EXPECT_EQ(ShellCopy(from, to), kShellDone);
  EXPECT_EQ(Content(to), "2");
  EXPECT_EQ(asked, 2);
  EXPECT_EQ(ShellCopy(folder.Path("none"), to), 2);
  EXPECT_EQ(ShellCopy(from, from), 113);
  EXPECT_EQ(asked, 2) << "an impossible copy asks nothing";
  EXPECT_EQ(ShellCopy(from, folder.Path("DW.MDB/x")), 3) << "a file is in the place of the folder";
  const Confirming nobody({});
  Write(from, "3");
  EXPECT_EQ(ShellCopy(from, to), kShellDone);
  EXPECT_EQ(Content(to), "3");
  EXPECT_EQ(ShellDelete(to), kShellDone);
}

}  // namespace
}  // namespace sys
