// What the tests of the report windows share.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "data/BrackenfelGlobals.h"
#include "platform/runtime/Clock.h"
#include "platform/system/Settings.h"
#include "reports/DWGlobals.h"
#include "reports/forms/Launch.h"
#include "reports/forms/ReportForm.h"
#include "support/FakeEngine.h"
#include "support/ScreenScript.h"
#include "support/SmallFleet.h"
#include "support/desktop/FormDriver.h"

namespace test {

/// An empty fleet with definitions, a fake engine, the user "TESTER" on 3/1/2026 at 14:05, and a screen that
/// expects no box.
class ReportsTest : public testing::Test {
 protected:
  static constexpr const char* kSands = "DW_SANDS.MDB";

  ReportsTest() {
    sys::UseSettingsFile(fleet_.Path("settings"));
    dw::RptTitle = dw::RptSelection = dw::RptSort = {};
    dw::RptQueryID = 0;
  }
  ~ReportsTest() override { sys::UseSettingsFile({}); }

  /// Launches a report from its menu entry.
  dw::ReportForm& LaunchReport(const char* menuItem) {
    dw::LaunchFromMenu(dw::ReportOf(menuItem));
    Settle();
    return *ui::Existing<dw::ReportForm>();
  }
  static bool IsOpen(const char* form) { return ui::FindForm(form) != nullptr; }
  std::int32_t Definition(const char* name, bool kept, const char* table = "Vehicles") {
    return fleet_.Add("Select and Sort Queries",
                      {{"Description", name}, {"Primary Table", table}, {"Permanent", kept}}, kSands);
  }
  std::int32_t Condition(std::int32_t query, const Row& row) {
    Row all{{"Query ID", query}};
    all.insert(all.end(), row.begin(), row.end());
    return fleet_.Add("Selection Criteria", all, kSands);
  }
  std::string Sands(const std::string& sql) { return fleet_.Ask(sql, kSands); }

  SmallFleet fleet_{kSands};
  rt::FixedClock clock_{rt::DateTime(2026, 3, 1, 14, 5)};
  ScreenScript screen_;
  EngineScript engine_;
  FormsEnd end_;
};

}  // namespace test
