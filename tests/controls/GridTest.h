// The data file of the tests of lists: assets and lines.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/controls/DataGrid.h"
#include "support/ScreenScript.h"
#include "support/SmallFile.h"
#include "support/TempDirectory.h"
#include "support/desktop/FormDriver.h"

namespace test {

class GridTest : public testing::Test {
 protected:
  /// Assets 1 to `count`, with codes K001, K002 …, plus the effects of Change.
  void MakeAssets(int count) {
    MakeSmallFile(path);
    other = OpenSmallFile(path);
    other->BeginTrans();
    for (int i = 1; i <= count; ++i) {
      const std::string number = std::to_string(1000 + i).substr(1);
      Change("INSERT INTO Assets (Code, [Year], Cost, Miles, Bought, Active) VALUES ('K" + number + "', " +
             std::to_string(1990 + i % 30) + ", " + std::to_string(i * 7 - 100) + ".5, " +
             std::to_string(i * 3) + ".25, #" + std::to_string(1 + i % 12) + "/" +
             std::to_string(1 + i % 28) + "/" + std::to_string(2000 + i % 26) + "#, " +
             (i % 2 == 0 ? "TRUE" : "FALSE") + ")");
    }
    other->CommitTrans();
  }
  /// A change by another user.
  void Change(const std::string& sql) { other->Execute(sql); }
  std::string Connect() const {
    return "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path + ";Persist Security Info=False";
  }
  void Bind(ui::Adodc& control, const std::string& source) const {
    ui::AdoBindDataControl(control, Connect(), source, ado::adLockOptimistic, 10);
  }
  static void Show(QWidget& widget, int width = 700, int height = 400) {
    widget.resize(width, height);
    widget.show();
    widget.activateWindow();
    Settle();
  }

  ScreenScript screen;
  TempDirectory directory;
  std::string path = directory.Path("DW.MDB");
  std::shared_ptr<store::Connection> other;
};

}  // namespace test
