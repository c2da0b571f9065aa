#include <gtest/gtest.h>

#include <QTest>
#include <filesystem>
#include <fstream>

#include "platform/controls/DirListBox.h"
#include "platform/controls/DriveListBox.h"
#include "platform/controls/FileListBox.h"
#include "support/ScreenScript.h"
#include "support/TempDirectory.h"
#include "support/desktop/FormDriver.h"

namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;
using screen::Icon;
using sys::DriveKind;

class FilePickersTest : public testing::Test {
 protected:
  FilePickersTest() {
    for (const char* directory : {"Fleet/Old", "Fleet/new", "Fleet/.hidden", "usb/data"})
      fs::create_directories(path_ + '/' + directory);
    for (const char* file : {"Fleet/dw.mdb", "Fleet/DW_USERS.MDB", "Fleet/b.bmp", "Fleet/a.Bmp",
                             "Fleet/x.jpg", "Fleet/.dw.mdb", "Fleet/dwxmdb"})
      std::ofstream(path_ + '/' + file);
  }
  static Names FilesOf(const ui::FileListBox& list) {
    Names names;
    for (int i = 0; i < list.count(); ++i) names.push_back(list.item(i)->text().toStdString());
    return names;
  }
  static QTreeWidgetItem* ItemOf(ui::DirListBox& list, const char* name) {
    return list.findItems(name, Qt::MatchExactly | Qt::MatchRecursive).value(0);
  }

  test::TempDirectory directory_;
  std::string path_ = directory_.Path("mnt");
  test::ScreenScript user_;
};

TEST_F(FilePickersTest, ADriveIsTheOneThatHoldsThePath) {
  std::vector<sys::Drive> drives{{"/", DriveKind::Fixed},
                                 {path_ + "/usb", DriveKind::RemovableDisc},
                                 {path_ + "/Fleet", DriveKind::Remote}};
  ui::DriveListBox list("Drive1", [&] { return drives; });
  int changes = 0;
  list.onChange = [&] { ++changes; };
  EXPECT_EQ(list.Drive(), "/");
  EXPECT_TRUE(list.SetDrive(path_ + "/usb/data/"));
  EXPECT_EQ(list.Drive(), path_ + "/usb");
  EXPECT_TRUE(list.SetDrive(path_ + "/usbstick"));
  EXPECT_EQ(list.Drive(), "/");
  EXPECT_EQ(changes, 2);

  // Opening reads the list again. The choice stays, or becomes the first drive.
  list.SetDrive(path_ + "/Fleet");
  drives.erase(drives.begin() + 1);
  list.showPopup();
  EXPECT_EQ(list.Drive(), path_ + "/Fleet");
  EXPECT_EQ(changes, 3);
  drives.pop_back();
  list.showPopup();
  EXPECT_EQ(list.Drive(), "/");
  EXPECT_EQ(changes, 4);
}

TEST_F(FilePickersTest, DirectoriesAreEnteredByDoubleClickAndEnter) {
  ui::DirListBox list("Dir1");
  int changes = 0;
  list.onChange = [&] { ++changes; };
  ASSERT_TRUE(list.SetPath(path_ + "/Fleet/"));
  EXPECT_EQ(list.Path(), path_ + "/Fleet");
  EXPECT_EQ(ItemOf(list, "Fleet")->child(0)->text(0), "new");
  EXPECT_EQ(ItemOf(list, "Fleet")->childCount(), 2) << "no hidden ones";
  list.resize(400, 400);
  list.show();
  test::Settle();
  QTreeWidgetItem* old = ItemOf(list, "Old");
  // One click only marks the directory.
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(old).center());
  EXPECT_EQ(list.Path(), path_ + "/Fleet");
  test::Press(list, Qt::Key_Return);
  EXPECT_EQ(list.Path(), path_ + "/Fleet/Old");
  QTreeWidgetItem* up = ItemOf(list, "mnt");
  list.setCurrentItem(up);
  const QPoint there = list.visualItemRect(up).center();
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, there);
  QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, there);
  test::Settle();
  EXPECT_EQ(list.Path(), path_);
  EXPECT_EQ(changes, 3);
}

TEST_F(FilePickersTest, WhatCannotBeReadLeavesTheOldPlace) {
  ui::DirListBox directories("Dir1");
  ui::FileListBox files("File1", "*.mdb");
  ASSERT_TRUE(directories.SetPath(path_));
  ASSERT_TRUE(files.SetPath(path_ + "/Fleet"));
  fs::remove_all(path_ + "/usb");
  const std::string box =
      "Device unavailable\r\r" + path_ + "/usb cannot be read: No such file or directory.";
  QTreeWidgetItem* vanished = ItemOf(directories, "usb");
  directories.setCurrentItem(vanished);
  user_->Expect(box, Icon::Critical);
  test::Press(directories, Qt::Key_Return);
  EXPECT_EQ(directories.Path(), path_);
  user_->Expect(box, Icon::Critical);
  EXPECT_FALSE(files.SetPath(path_ + "/usb"));
  EXPECT_EQ(files.Path(), path_ + "/Fleet");
  EXPECT_EQ(files.count(), 2);
}

TEST_F(FilePickersTest, FilesFitThePatternWhateverTheirLetters) {
  ui::FileListBox list("File1", "DW.Mdb");
  int changes = 0;
  list.onChange = [&] { ++changes; };
  ASSERT_TRUE(list.SetPath(path_ + "/Fleet"));
  EXPECT_EQ(FilesOf(list), Names{"dw.mdb"});
  list.SetPattern("*.bmp; *.JPG");
  EXPECT_EQ(FilesOf(list), (Names{"a.Bmp", "b.bmp", "x.jpg"}));
  list.SetPattern("?.[jb]*");
  EXPECT_TRUE(FilesOf(list).empty());
  list.SetPattern("dw?mdb");
  EXPECT_EQ(FilesOf(list), (Names{"dw.mdb", "dwxmdb"}));
  EXPECT_EQ(changes, 4);
  EXPECT_EQ(list.FileName(), "");
  list.setCurrentRow(1);
  EXPECT_EQ(list.FileName(), "dwxmdb");
}

}  // namespace
