#include "platform/system/Machine.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "support/TempDirectory.h"

namespace sys {
namespace {

/// Waits up to ten seconds for the output of another process.
std::string FirstLine(const std::string& path) {
  std::string line;
  for (int attempt = 0; attempt < 1000 && line.empty(); ++attempt) {
    std::ifstream file(path);
    if (!std::getline(file, line)) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return line;
}

TEST(Drives, AreKnownByTheirFileSystems) {
  EXPECT_EQ(KindOfDrive("/", "overlay", "overlay"), DriveKind::Fixed);
  EXPECT_EQ(KindOfDrive("/home", "/dev/sda2", "ext4"), DriveKind::Fixed);
  EXPECT_EQ(KindOfDrive("/srv/fleet", "office:/fleet", "nfs4"), DriveKind::Remote);
  EXPECT_EQ(KindOfDrive("/mnt/share", "//office/fleet", "cifs"), DriveKind::Remote);
  EXPECT_EQ(KindOfDrive("/media/cdrom", "/dev/sr0", "iso9660"), DriveKind::RemovableDisc);
  EXPECT_EQ(KindOfDrive("/proc", "proc", "proc"), std::nullopt);
  EXPECT_EQ(KindOfDrive("/run", "tmpfs", "tmpfs"), std::nullopt);
  EXPECT_EQ(KindOfDrive("/snap/core/1", "/dev/loop0", "squashfs"), std::nullopt);
}

TEST(Drives, TheSystemsRootComesFirst) {
  const auto drives = Drives();
  ASSERT_FALSE(drives.empty());
  EXPECT_EQ(drives.front().root, "/");
  for (std::size_t i = 1; i < drives.size(); ++i) {
    EXPECT_LT(drives[i - 1].root, drives[i].root);
    EXPECT_TRUE(std::filesystem::is_directory(drives[i].root)) << drives[i].root;
  }
}

TEST(Machine, KnowsItsNameAndWhereTheProgramIs) {
  EXPECT_FALSE(HostName().empty());
  const std::string directory = ProgramDirectory();
  EXPECT_TRUE(std::filesystem::is_directory(directory));
  EXPECT_NE(directory.back(), '/');
}

TEST(StartViewer, ShowsAFileWithoutWaiting) {
  const test::TempDirectory folder;
  const std::string viewer = folder.Path("my viewer");
  // The viewer writes down its argument, then runs for a minute like an open window.
  std::ofstream(viewer) << "#!/bin/sh\necho \"$1\" > \"" << folder.Path("seen.part") << "\"\nmv \""
                        << folder.Path("seen.part") << "\" \"" << folder.Path("seen") << "\"\necho $$ > \""
                        << folder.Path("pid") << "\"\nexec sleep 60\n";
  chmod(viewer.c_str(), 0755);
  setenv("DROVEWRIGHT_VIEWER", viewer.c_str(), 1);
  EXPECT_TRUE(StartViewer(folder.Path("Maintenance Report.Log")));
  EXPECT_EQ(FirstLine(folder.Path("seen")), folder.Path("Maintenance Report.Log"));
  const int pid = std::atoi(FirstLine(folder.Path("pid")).c_str());
  ASSERT_GT(pid, 1);
  EXPECT_EQ(kill(pid, SIGKILL), 0) << "the viewer still runs";

  // The desktop's own viewer, when it finds a program for the file and when it finds none.
  unsetenv("DROVEWRIGHT_VIEWER");
  const std::string searched = std::getenv("PATH");
  for (const int result : {0, 3}) {
    std::ofstream(folder.Path("xdg-open")) << "#!/bin/sh\nexit " << result << "\n";
    chmod(folder.Path("xdg-open").c_str(), 0755);
    setenv("PATH", (folder.Path() + ":" + searched).c_str(), 1);
    EXPECT_EQ(StartViewer(folder.Path("x")), result == 0);
  }
  setenv("PATH", searched.c_str(), 1);

  setenv("DROVEWRIGHT_VIEWER", folder.Path("missing").c_str(), 1);
  EXPECT_FALSE(StartViewer(folder.Path("x")));
  unsetenv("DROVEWRIGHT_VIEWER");
  EXPECT_FALSE(StartProgram("", {}));
}

}  // namespace
}  // namespace sys
