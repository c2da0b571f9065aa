// What the tests of lists and their windows share.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/runtime/Clock.h"
#include "support/ScreenScript.h"
#include "support/SmallFleet.h"
#include "support/desktop/FormDriver.h"
#include "windows/ListForm.h"

namespace test {

/// An empty fleet, the user "TESTER" on 3/1/2026 at 14:05, and a screen that expects no box.
class ListTest : public testing::Test {
 protected:
  static constexpr const char* kDateRequired = "A date is required for this field.";
  static constexpr const char* kOwnWindow =
      "This record is open in another window of this program. Close that window and try again.";
  static constexpr const char* kNoDate = "That is not a valid date. Please try again.";

  /// Opens the list or brings it to the front, and makes a row current.
  template <class List>
  List& OpenList(int row = 0) {
    List& list = ui::The<List>();
    list.ShowForm();
    Settle();
    list.Grid().SetRow(row);
    return list;
  }
  /// The window that Insert opens on the list.
  template <class Detail, class List>
  Detail& Add() {
    return Opened<Detail, List>(Qt::Key_Insert, 0);
  }
  /// The window that Space opens on a row of the list.
  template <class Detail, class List>
  Detail& Show(int row = 0) {
    return Opened<Detail, List>(Qt::Key_Space, row);
  }
  /// The cells of a row of the open list, from the second column on, with '|' between them.
  template <class List>
  std::string Shown(int columns, int row = 0) {
    ui::DataGrid& grid = OpenList<List>(row).Grid();
    std::string text;
    for (int column = 1; column <= columns; ++column) text += (column > 1 ? "|" : "") + grid.CellText(column);
    return text;
  }
  /// Types into the fields in this order, then clicks the button if it has a name.
  void Fill(QWidget& window, const std::vector<std::pair<const char*, const char*>>& texts,
            const char* button = nullptr) {
    for (const auto& [field, text] : texts) Type(window, field, text);
    if (button) Click(window, button);
  }
  template <class List>
  void PressDelete() {
    Press(OpenList<List>().Grid(), Qt::Key_Delete);
  }
  void ExpectSure(screen::Answer answer) {
    screen_->Expect("Are you sure you want to delete this record?", screen::Icon::Question,
                    screen::Buttons::YesNo, answer);
  }
  /// If a record is deleted between the list and the window, a box with this text comes, and no window.
  template <class List>
  void ExpectVanished(const std::string& table, const std::string& words, const Row& row) {
    if (ui::Existing<List>()) ui::Existing<List>()->Unload();
    fleet_.Run("DELETE * FROM [" + table + "]");
    const std::int32_t id = fleet_.Add(table, row);
    List& list = OpenList<List>();
    fleet_.Run("DELETE * FROM [" + table + "]");
    screen_->Expect("Internal Error. Unable to re-read " + words + std::to_string(id) + "'s record.",
                    screen::Icon::None);
    Press(list.Grid(), Qt::Key_Space);
    EXPECT_EQ(ui::ActiveForm(), &list);
    list.Unload();
    Settle();
  }
  std::string Count(const std::string& table) { return fleet_.Ask("SELECT COUNT(*) FROM [" + table + "]"); }
  /// A column of the only row.
  std::string Only(const std::string& table, const std::string& column) {
    return fleet_.Ask("SELECT [" + column + "] FROM [" + table + "]");
  }

  SmallFleet fleet_;
  rt::FixedClock clock_{rt::DateTime(2026, 3, 1, 14, 5)};
  ScreenScript screen_;
  FormsEnd end_;

 private:
  template <class Detail, class List>
  Detail& Opened(Qt::Key key, int row) {
    Press(OpenList<List>(row).Grid(), key);
    return dynamic_cast<Detail&>(Open(Detail::kName));
  }
};

}  // namespace test
