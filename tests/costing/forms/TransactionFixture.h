// A small fleet with prices and a calendar, and the windows for transactions.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "costing/CostCheck.h"
#include "costing/forms/frmTransactionList.h"
#include "costing/forms/frmTransactionMaint.h"
#include "data/BrackenfelGlobals.h"
#include "platform/runtime/Clock.h"
#include "support/ScreenScript.h"
#include "support/SmallFleet.h"
#include "support/desktop/FormDriver.h"

namespace test {

/// Today is 3/5/2026. Asset TRK-1 burns fuel of type 4 at 2.50; an hour costs 40, a unit of oil 3. The fiscal
/// periods are January to March, and transactions begin with 2/1/2026.
class TransactionTest : public testing::Test {
 protected:
  TransactionTest() {
    using rt::DateTime;
    dw::CurrentUserName = "Clerk";
    fleet_.Add(
        "Parameters",
        {{"ID", 1}, {"Internal_Fuel_Available", true}, {"Transaction Close Out Date", DateTime(2026, 2, 1)}});
    for (int month = 1; month <= 3; ++month)
      fleet_.Add("Fiscal Periods", {{"Fiscal Year", 2026},
                                    {"Period", month},
                                    {"Start Date", DateTime(2026, month, 1)},
                                    {"End Date", DateTime(2026, month, 28)}});
    fleet_.Add("Internal Fuel Pricing Log",
               {{"Fuel Type", 4}, {"Effective Date", DateTime(2026, 1, 1)}, {"Fuel Price", Money(2.5)}});
    fleet_.Add(
        "Internal Pricing Log",
        {{"Effective Date", DateTime(2026, 12, 31)}, {"Hourly Rate", Money(40)}, {"Oil Price", Money(3)}});
    fleet_.AddAsset("TRK-1", 4, {{"VIN/Serial Number", "VIN 1"}});
  }

  dw::frmTransactionList& List() {
    auto& list = ui::The<dw::frmTransactionList>();
    list.ShowForm();
    Settle();
    list.Grid().SetRow(0);
    return list;
  }
  dw::frmTransactionMaint& Window() {
    return dynamic_cast<dw::frmTransactionMaint&>(Open("frmTransactionMaint"));
  }
  dw::frmTransactionMaint& OpenNew() {
    Press(List().Grid(), Qt::Key_Insert);
    return Window();
  }
  dw::frmTransactionMaint& OpenFirst() {
    Press(List().Grid(), Qt::Key_Space);
    return Window();
  }
  static bool IsOpen(const char* form) { return ui::FindForm(form) != nullptr; }
  std::string Rows(const std::string& table) { return fleet_.Ask("SELECT COUNT(*) FROM [" + table + "]"); }
  /// Whether the cost tables equal the sums of the posted transactions.
  static bool InStep() {
    return dw::CheckCosts(*store::Connection::Open({.path = dw::DataFile, .readOnly = true})).empty();
  }
  void Expect(const std::string& words, screen::Icon icon = screen::Icon::Critical) {
    screen_->Expect(words, icon);
  }

  SmallFleet fleet_;
  rt::FixedClock clock_{rt::DateTime(2026, 3, 5, 14, 5, 9)};
  ScreenScript screen_;
  FormsEnd end_;
};

}  // namespace test
