// The window that asks how far ahead the report of due maintenance looks.
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "fleet/forms/frmMaintenanceDueReport.h"
#include "platform/runtime/Clock.h"
#include "platform/system/Machine.h"
#include "support/DueFleet.h"
#include "support/ScreenScript.h"
#include "support/desktop/FormDriver.h"

namespace {

using screen::Icon;

/// The log is beside the program, which is the test itself.
class MaintenanceDueReport : public testing::Test {
 protected:
  MaintenanceDueReport() {
    std::filesystem::remove(log_);
    std::ofstream(viewer_) << "#!/bin/sh\ncp \"$1\" '" << folder_.Path("part") << "'; mv '"
                           << folder_.Path("part") << "' '" << folder_.Path("seen") << "'\n";
    chmod(viewer_.c_str(), 0755);
    setenv("DROVEWRIGHT_VIEWER", viewer_.c_str(), 1);
  }
  ~MaintenanceDueReport() override {
    unsetenv("DROVEWRIGHT_VIEWER");
    std::filesystem::remove(log_);
  }
  static dw::frmMaintenanceDueReport& Shown() {
    auto& form = ui::The<dw::frmMaintenanceDueReport>();
    form.ShowForm();
    test::Settle();
    return form;
  }
  static bool IsOpen() { return ui::FindForm("frmMaintenanceDueReport") != nullptr; }
  static std::string Content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  test::DueFleet fleet_;
  test::TempDirectory folder_;
  std::string log_ = sys::ProgramDirectory() + "/Maintenance Report.Log";
  std::string viewer_ = folder_.Path("viewer");
  rt::FixedClock clock_{rt::DateTime(2026, 3, 15, 10, 30, 0)};
  test::ScreenScript screen_;
  test::FormsEnd end_;
};

// One test, because there is only one place for the log, and tests may run side by side.
TEST_F(MaintenanceDueReport, IsWrittenAndShownOrToldWhyNot) {
  screen_->Expect("There are no assets in service to report.", Icon::Information);
  test::Click(Shown(), "cmdProceed");
  EXPECT_FALSE(IsOpen());
  EXPECT_FALSE(std::filesystem::exists(log_));

  fleet_.Type(1, "Inspection");
  fleet_.Asset("V1", "#2/1/2025#");
  fleet_.Line("V1", "1", "12", "100");
  auto& form = Shown();
  EXPECT_EQ(form.usage.Text(), "500");
  EXPECT_EQ(form.dueBy.Text(), "3/29/2026");
  EXPECT_EQ(form.dueBy.selectedText(), "3/29/2026") << "marked when the focus comes in";
  test::Type(form, "Text1", "");
  test::Type(form, "txtUsage", "-7x.5");
  EXPECT_EQ(form.usage.Text(), "7.5");
  test::Enter(form, "Text1");
  EXPECT_EQ(form.dueBy.selectedText(), "3/15/2026") << "an empty one is today";
  test::Press(form.dueBy, Qt::Key_Return);
  EXPECT_FALSE(IsOpen());
  EXPECT_NE(Content(log_).find("Items due in the next 7.5 mile(s) or by 3/15/2026\r\n"), std::string::npos);
  EXPECT_NE(Content(log_).find("Inspection due on 2/1/2026\r\n"), std::string::npos);
  ASSERT_TRUE(QTest::qWaitFor([&] { return std::filesystem::exists(folder_.Path("seen")); }, 20000));
  EXPECT_EQ(Content(folder_.Path("seen")), Content(log_));

  // A viewer that does not exist, and one that finds no program for the file.
  for (const std::string& viewer : {folder_.Path("missing"), std::string("false")}) {
    setenv("DROVEWRIGHT_VIEWER", viewer.c_str(), 1);
    screen_->Expect(
        "The report was written, but no program could be started to show it.\rYou find it in '" + log_ + "'.",
        Icon::Exclamation);
    test::Click(Shown(), "cmdProceed");
    EXPECT_FALSE(IsOpen());
  }

  const std::string earlier = Content(log_);
  auto& again = Shown();
  const std::pair<const char*, const char*> cases[] = {
      {"soon", "500"}, {"3/29/2026", ""}, {"3/29/2026", "1.2.3"}};
  for (const auto& [date, usage] : cases) {
    test::Type(again, "Text1", date);
    test::Type(again, "txtUsage", usage);
    screen_->ExpectPart("No maintenance report was written.", Icon::Critical);
    test::Click(again, "cmdProceed");
    ASSERT_TRUE(IsOpen()) << date << usage;
    EXPECT_TRUE(again.proceedButton->isEnabled() && again.cancelButton->isEnabled());
    EXPECT_EQ(Content(log_), earlier) << "only a finished report replaces it";
  }
  test::Press(again, Qt::Key_Escape);
  EXPECT_FALSE(IsOpen());
}

}  // namespace
