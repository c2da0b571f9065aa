// Each rule of the transaction window, at its own moment.
#include <QGroupBox>
#include <QLabel>

#include "costing/forms/TransactionFixture.h"

namespace {

using screen::Icon;

class TransactionRules : public test::TransactionTest {
 protected:
  /// Sets a field without moving the focus there.
  static void Put(dw::frmTransactionMaint& window, const char* field, const std::string& text) {
    test::Find<QLineEdit>(window, field);
    dynamic_cast<ui::TextBox&>(test::Find(window, field)).SetText(text);
  }
  static std::string Text(dw::frmTransactionMaint& window, const char* field) {
    return dynamic_cast<ui::TextBox&>(test::Find(window, field)).Text();
  }
};

constexpr const char* kNotACost = "That is not a valid cost.";
constexpr const char* kOutsideCalendar =
    "That date is not in a valid fiscal period. If you need to set up fiscal periods, go to Administration, "
    "Auxiliary Tables, and Fiscal Periods.";

TEST_F(TransactionRules, UnitsArePricedOnceAndNeverAgainstACost) {
  auto& window = OpenNew();
  Put(window, "txtAssetID", "TRK-1");
  struct Case {
    const char *field, *costField, *units, *cost, *unitsAfter, *costAfter;
  };
  const Case cases[] = {{"MaskedEdit5", "edtUnleadedCost", "10", "0.00", "10", "25"},
                        {"MaskedEdit5", "edtUnleadedCost", "10", "", "10", "25"},
                        {"MaskedEdit5", "edtUnleadedCost", "10", "5.00", "10", "5.00"},
                        {"MaskedEdit5", "edtUnleadedCost", "0", "5.00", "0", "5.00"},
                        {"MaskedEdit5", "edtUnleadedCost", "", "", "0", "0.00"},
                        {"MaskedEdit5", "edtUnleadedCost", "1.2.3", "0", "1.2.3", "0"},
                        {"MaskEdBox2", "MaskEdBox1", "1.5", "0", "1.5", "60"},
                        {"txtOilUnits", "MaskedEdit9", "2", "0.00", "2", "6"}};
  for (const Case& c : cases) {
    Put(window, c.costField, c.cost);
    test::Type(window, c.field, c.units);
    test::Enter(window, "Text9");
    EXPECT_EQ(Text(window, c.field), c.unitsAfter) << c.field << c.units;
    EXPECT_EQ(Text(window, c.costField), c.costAfter) << c.field << c.units;
  }
  EXPECT_EQ(window.internalOilCost.text(), "$6.00") << "as it is shown";
  // A failed look-up shows the reason, and the cost is zero.
  Put(window, "txtAssetID", "NONE");
  Put(window, "edtUnleadedCost", "0");
  Expect("Asset ID 'NONE' is not on file.");
  Expect(
      "You have no internal pricing set up for that type yet.\rGo to Options and click Internal Pricing "
      "button to set up.");
  test::Type(window, "MaskedEdit5", "10");
  test::Enter(window, "Text9");
  EXPECT_EQ(Text(window, "edtUnleadedCost"), "0");
  // Enter leaves the field and closes the window at once.
  Put(window, "txtAssetID", "TRK-1");
  test::Type(window, "MaskedEdit5", "4");
  test::Press(window.internalFuelUnits, Qt::Key_Return);
  EXPECT_FALSE(IsOpen("frmTransactionMaint"));
  EXPECT_EQ(fleet_.Ask("SELECT [Internal Fuel Cost] FROM [Maintenance Transactions]"), "10");
}

TEST_F(TransactionRules, AnEmptyPriceLeavesTheCostAndIsReported) {
  fleet_.Run("UPDATE [Internal Fuel Pricing Log] SET [Fuel Price] = Null");
  fleet_.Run("UPDATE [Internal Pricing Log] SET [Hourly Rate] = Null, [Oil Price] = Null");
  auto& window = OpenNew();
  Put(window, "txtAssetID", "TRK-1");
  struct Case {
    const char *field, *costField, *cost;
  };
  for (const Case& c : {Case{"MaskedEdit5", "edtUnleadedCost", "0.00"}, Case{"MaskEdBox2", "MaskEdBox1", ""},
                        Case{"txtOilUnits", "MaskedEdit9", "0"}}) {
    Put(window, c.costField, c.cost);
    Expect("Invalid use of Null");
    test::Type(window, c.field, "10");
    window.workOrder.setFocus();
    EXPECT_EQ(Text(window, c.costField), c.cost) << c.field;
    Put(window, c.field, "0");
    Put(window, c.costField, "0");
  }
  test::Click(window, "CancelButton");
}

TEST_F(TransactionRules, DatesAreCheckedAndFillTheFiscalPeriod) {
  fleet_.AddTransaction("TRK-1", 2026, 3);
  struct Case {
    const char* date;
    const char* words;
    bool adding;
    Icon icon = Icon::Critical;
  };
  const Case cases[] = {
      {"", "A date is required for this field.", true},
      {"soon", "That is not a valid date. Please try again.", true, Icon::Exclamation},
      {"12/31/1799", "Year cannot be less than 1800. Please try again.", true, Icon::Exclamation},
      {"1/31/2026", "That date is before the transaction close out date.", true},
      {"2/1/2026", "", true},
      {"1/1/2026", "", false},
      {"3/28/2026", "", false},
      {"3/29/2026", kOutsideCalendar, false, Icon::Information}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.date);
    auto& window = c.adding ? OpenNew() : OpenFirst();
    Put(window, "txtAssetID", "TRK-1");
    const std::string words = c.words;
    test::Type(window, "Text8", c.date);
    if (!words.empty()) Expect(words, c.icon);
    test::Press(window.transactionDate, Qt::Key_Tab);
    EXPECT_EQ(window.transactionDate.hasFocus(), !words.empty());
    if (words.empty()) {
      EXPECT_EQ(window.fiscalYear.Text(), "2026");
      EXPECT_EQ(window.fiscalPeriod.Text(), std::string(1, c.date[0]));
      EXPECT_FALSE(window.fiscalYear.isEnabled() || window.fiscalPeriod.isEnabled());
      EXPECT_TRUE(window.workOrder.hasFocus()) << "skips the fields that are disabled now";
    } else {
      EXPECT_TRUE(window.fiscalYear.isEnabled() && window.fiscalPeriod.isEnabled());
      // OK cannot leave the window either.
      Expect(words, c.icon);
      window.okButton->click();
      EXPECT_TRUE(window.transactionDate.hasFocus());
    }
    test::Click(window, "CancelButton");
    EXPECT_FALSE(IsOpen("frmTransactionMaint"));
  }
}

TEST_F(TransactionRules, AFieldIsNotLeftWithRubbishButCancelIsAlwaysFree) {
  struct Case {
    const char *field, *text, *words;
  };
  const Case cases[] = {{"txtAssetID", "", "You must specify an Asset ID"},
                        {"Text10", "", "Period must be a number between 1 and 13. Please check."},
                        {"Text10", "0", "Period must be between 1 and 13. Please check."},
                        {"Text10", "14", "Period must be between 1 and 13. Please check."},
                        {"edtUnleadedCost", "", kNotACost},
                        {"MaskEdBox1", "1.2.3", kNotACost},
                        {"MaskedEdit1", "1.2.3", kNotACost},
                        {"MaskedEdit9", "1.2.3", kNotACost}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.field);
    auto& window = OpenNew();
    test::Type(window, "txtAssetID", "TRK-1");
    test::Type(window, c.field, c.text);
    Expect(c.words);
    QWidget& field = test::Find(window, c.field);
    test::Press(field, Qt::Key_Tab);
    EXPECT_TRUE(field.hasFocus());
    Expect(c.words);
    test::Click(window, "OkButton");
    EXPECT_TRUE(field.hasFocus()) << "the click is forgotten";
    test::Click(window, "CancelButton");
    EXPECT_FALSE(IsOpen("frmTransactionMaint"));
  }
  EXPECT_EQ(Rows("Maintenance Transactions"), "0");
}

TEST_F(TransactionRules, EveryNumberIsCheckedBeforeItIsSaved) {
  auto& window = OpenNew();
  Expect("You must specify an Asset ID");
  window.Ok();
  EXPECT_TRUE(window.assetCode.hasFocus());
  Put(window, "txtAssetID", "TRK-1");
  const std::pair<const char*, const char*> cases[] = {
      {"MaskedEdit1", "The outside fuel cost is not numeric. Please check."},
      {"MaskedEdit5", "The unleaded gas units are not numeric. Please check."},
      {"MaskedEdit9", "The oil cost is not numeric. Please check."},
      {"MaskedEdit18", "The outside costs are not numeric. Please check."}};
  // All fields are wrong at first, which shows the order of the checks.
  for (const auto& [field, words] : cases) Put(window, field, "1.2.3");
  for (const auto& [field, words] : cases) {
    Expect(words);
    EXPECT_FALSE(window.ValidData());
    EXPECT_TRUE(test::Find(window, field).hasFocus()) << field;
    Put(window, field, field == std::string("MaskedEdit18") ? "1" : "");
  }
  // No rule checks this field, but OK still refuses what is not a number.
  test::Enter(window, "Text9");
  Put(window, "MaskEdBox3", "1.2.3");
  Expect("'1.2.3' is not a number. Please check \"Mileage\".");
  window.Ok();
  EXPECT_TRUE(window.mileage.hasFocus());
  Put(window, "MaskEdBox3", "77.5");
  window.Ok();
  EXPECT_EQ(fleet_.Ask("SELECT [Mileage] FROM [Maintenance Transactions]"), "77.5");
  EXPECT_EQ(fleet_.Ask("SELECT [Oil Cost] FROM [Maintenance Transactions]"), "Null");
}

TEST_F(TransactionRules, WhatEnteringAndTypingDoes) {
  auto& window = OpenNew();
  EXPECT_TRUE(window.assetCode.hasFocus()) << "the first field";
  const std::pair<const char*, std::pair<const char*, const char*>> typed[] = {
      {"txtAssetID", {"trk-1", "TRK-1"}}, {"Text10", {"-3x", "3"}},        {"Text11", {"20.26", "2026"}},
      {"txtOilUnits", {"1.5", "15"}},     {"txtOutsideOil", {"-2", "2"}},  {"MaskedEdit5", {"-1.x5", "1.5"}},
      {"MaskEdBox3", {"4e2,.5", "42.5"}}, {"edtUnleadedCost", {"$7", "7"}}};
  for (const auto& [field, keys] : typed) {
    test::Type(window, field, keys.first);
    EXPECT_EQ(Text(window, field), keys.second) << field;
  }
  const std::pair<const char*, const char*> filled[] = {
      {"MaskedEdit1", "0.00"}, {"MaskedEdit18", "0.00"},  {"MaskedEdit2", "0.00"}, {"MaskedEdit3", "0.00"},
      {"MaskedEdit16", "0.0"}, {"txtOutsideOil", "0.00"}, {"MaskEdBox3", ""}};
  for (const auto& [field, text] : filled) {
    test::Enter(window, "Text9");
    Put(window, field, "");
    test::Enter(window, field);
    EXPECT_EQ(Text(window, field), text) << field;
    EXPECT_EQ(test::Find<QLineEdit>(window, field).selectedText().toStdString(), text) << "marked whole";
  }
  fleet_.AddAsset("O'HARA", 4);
  const std::pair<const char*, const char*> serials[] = {{"TRK-1", "VIN 1"},
                                                         {"o'hara", "No VIN/Serial Number on file."},
                                                         {"TRK-2", "ERROR: Reached End of File"}};
  for (const auto& [asset, serial] : serials) {
    test::Type(window, "txtAssetID", asset);
    test::Enter(window, "Text9");
    EXPECT_EQ(window.assetSerial->text().toStdString(), serial);
  }
  // Enter makes a new line in the notes.
  test::Enter(window, "Text2");
  EXPECT_EQ(window.Default(), nullptr);
  test::Enter(window, "Text9");
  EXPECT_EQ(window.Default(), window.okButton);
}

TEST_F(TransactionRules, WithoutFuelOfItsOwnTheInternalSideIsGone) {
  const auto id = fleet_.AddTransaction("TRK-1", 2026, 3, {{"Parts Cost", test::Money(9)}});
  const int left = OpenFirst().costGroups[1]->x();
  test::Click(Window(), "CancelButton");
  fleet_.Run("UPDATE [Parameters] SET [Internal_Fuel_Available] = FALSE");
  auto& window = OpenFirst();
  test::Settle();
  EXPECT_FALSE(window.costGroups[1]->isVisible());
  EXPECT_EQ(window.costGroups[0]->x(), left);
  EXPECT_EQ(test::Find(window, "Frame1").x(), left);
  test::Click(window, "OkButton");
  EXPECT_EQ(fleet_.OfTransaction(id, "Parts Cost"), "9");
  EXPECT_EQ(fleet_.OfTransaction(id, "Updated By"), "Clerk");
}

}  // namespace
