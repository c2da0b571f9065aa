// The window of one line of an asset's maintenance schedule, opened as the asset's window opens it.
#include "fleet/forms/frmSchedMaintAsset.h"

#include <gtest/gtest.h>

#include "platform/runtime/Clock.h"
#include "support/ScreenScript.h"
#include "support/SmallFleet.h"
#include "support/desktop/FormDriver.h"
#include "windows/OpenDetailForm.h"

namespace {

using dw::frmSchedMaintAsset;
using screen::Icon;

class frmSchedMaintAssetTest : public testing::Test {
 protected:
  frmSchedMaintAssetTest() {
    oil_ = fleet_.Add("Maintenance Types", {{"Description", "Oil"}});
    brakes_ = fleet_.Add("Maintenance Types", {{"Description", "Brakes"}});
  }
  frmSchedMaintAsset& Add(const char* asset) { return OpenWindow(true, -1, asset); }
  frmSchedMaintAsset& Show(std::int32_t id, const char* asset = "V1") { return OpenWindow(false, id, asset); }
  frmSchedMaintAsset& OpenWindow(bool add, std::int32_t id, const char* asset) {
    dw::OpenAssetDetailForm<frmSchedMaintAsset>(grid_, add, id, asset, row_, true);
    test::Settle();
    return *ui::Existing<frmSchedMaintAsset>();
  }
  std::int32_t Line(const char* asset, int lineItem) {
    return fleet_.Add("Maintenance Schedule", {{"Asset ID", asset}, {"Line Item", lineItem}, {"Type ID", 0}});
  }
  std::string Ask(std::int32_t id, const std::string& column) {
    return fleet_.Ask("SELECT [" + column +
                      "] FROM [Maintenance Schedule] WHERE [ID] = " + std::to_string(id));
  }
  void ExpectWrong(frmSchedMaintAsset& window, const char* words, ui::TextBox& field) {
    screen_->Expect(words, Icon::Critical);
    test::Click(window, "OKButton");
    ASSERT_EQ(ui::FindForm("frmSchedMaintAsset"), &window);
    EXPECT_TRUE(field.hasFocus()) << words;
  }

  test::SmallFleet fleet_;
  rt::FixedClock clock_{rt::DateTime(2026, 3, 1, 14, 5)};
  test::ScreenScript screen_;
  ui::DataGrid grid_;
  std::int32_t row_ = 0;
  std::int32_t oil_ = 0;
  std::int32_t brakes_ = 0;
  test::FormsEnd end_;
};

TEST_F(frmSchedMaintAssetTest, ALineIsAddedWithTheNextNumber) {
  Line("O'BRIEN", 4);
  auto& window = Add("O'BRIEN");
  const std::int32_t id = window.DataID;
  EXPECT_EQ(window.windowTitle(), "Scheduled Maintenance Line Item");
  EXPECT_EQ(Ask(id, "Asset ID") + Ask(id, "Line Item") + Ask(id, "Type ID"), "O'BRIEN50")
      << "there at once, without a type";
  EXPECT_EQ(window.lineItem.Text(), "5");
  EXPECT_EQ(window.maintenanceType.Text(), "");
  EXPECT_EQ(window.maintenanceType.itemText(0), "Brakes") << "by description";

  test::Type(window, "Text2", "oil and filter");
  EXPECT_EQ(window.description.Text(), "Oil And Filter");
  window.description.setCursorPosition(4);
  QTest::keyClicks(&window.description, "new ");
  EXPECT_EQ(window.description.Text(), "Oil New And Filter");
  EXPECT_EQ(window.description.cursorPosition(), 8) << "the caret stays after the typed text";
  test::Enter(window, "DBCombo1");
  QTest::keyClicks(&window.maintenanceType, "Oil");

  test::Enter(window, "Text10");
  EXPECT_EQ(window.monthlyFrequency.selectedText(), "0");
  QTest::keyClicks(&window.monthlyFrequency, "1x.2");
  EXPECT_EQ(window.monthlyFrequency.Text(), "12") << "digits alone";
  test::Enter(window, "MaskEdBox1");
  EXPECT_EQ(window.estimatedCost.selectedText(), "0.00");
  QTest::keyClicks(&window.estimatedCost, "1049.5");
  test::Enter(window, "Text9");
  EXPECT_EQ(window.estimatedCost.text(), "$1,049.50");
  test::Click(window, "OKButton");

  EXPECT_EQ(ui::FindForm("frmSchedMaintAsset"), nullptr);
  EXPECT_EQ(Ask(id, "Description"), "Oil New And Filter");
  EXPECT_EQ(Ask(id, "Type ID"), std::to_string(oil_));
  EXPECT_EQ(Ask(id, "Monthly Frequently"), "12");
  EXPECT_EQ(Ask(id, "Usage Frequency"), "0") << "left empty";
  EXPECT_EQ(Ask(id, "Estimated Cost"), "1049.5");
  EXPECT_EQ(Ask(id, "Created By"), "TESTER");
  EXPECT_EQ(Ask(id, "Updated By"), "Null");
}

TEST_F(frmSchedMaintAssetTest, ANumberInUseIsReplacedAndTheWindowStays) {
  Line("V1", 1);
  Line("V1", 7);
  Line("V2", 3);
  const std::int32_t id = Line("V1", 2);
  {
    auto& window = Show(id);
    test::Click(window, "OKButton");
    EXPECT_EQ(ui::FindForm("frmSchedMaintAsset"), nullptr) << "its own number is not another line's";
  }
  {
    auto& window = Show(id);
    test::Type(window, "Text8", "3");
    test::Click(window, "OKButton");
    EXPECT_EQ(Ask(id, "Line Item"), "3") << "another asset's";
  }
  auto& window = Show(id);
  test::Type(window, "Text8", "1");
  screen_->Expect("That line item is already in use. Assigning new line item number.", Icon::Information);
  test::Click(window, "OKButton");
  ASSERT_EQ(ui::FindForm("frmSchedMaintAsset"), &window);
  EXPECT_TRUE(window.lineItem.hasFocus());
  EXPECT_EQ(window.lineItem.Text(), "8");
  EXPECT_EQ(Ask(id, "Line Item"), "3") << "nothing is written yet";
  test::Press(window.lineItem, Qt::Key_Return);
  EXPECT_EQ(Ask(id, "Line Item"), "8");
  EXPECT_EQ(Ask(id, "Updated By"), "TESTER");
}

TEST_F(frmSchedMaintAssetTest, WhatIsNoNumberIsToldInItsOrder) {
  const std::int32_t id = Line("V1", 2);
  auto& window = Show(id);
  window.lineItem.SetText("two");
  window.usageFrequency.SetText("often");
  window.monthlyFrequency.SetText("monthly");
  ExpectWrong(window, "The Line Number is not numeric. Please check.", window.lineItem);
  window.lineItem.SetText("");
  ExpectWrong(window, "The Line Number cannot be blank. Please check.", window.lineItem);
  window.lineItem.SetText("9999999999");
  ExpectWrong(window, "The Usage Frequency is not numeric. Please check.", window.usageFrequency);
  window.usageFrequency.SetText("5000");
  ExpectWrong(window, "The Monthly Frequency is not numeric. Please check.", window.monthlyFrequency);
  window.monthlyFrequency.SetText("");
  ExpectWrong(window, "'9999999999' is too large or too small for \"Line Item Number\".", window.lineItem);
  window.lineItem.SetText("2");
  test::Press(window, Qt::Key_Escape);
  EXPECT_EQ(Ask(id, "Usage Frequency"), "Null");
}

TEST_F(frmSchedMaintAssetTest, AVanishedLineIsCalledATransaction) {
  screen_->Expect("Internal Error. Unable to re-read Transaction #77's record.", Icon::None);
  dw::OpenAssetDetailForm<frmSchedMaintAsset>(grid_, false, 77, "V1", row_, true);
  EXPECT_EQ(ui::FindForm("frmSchedMaintAsset"), nullptr);
}

}  // namespace
