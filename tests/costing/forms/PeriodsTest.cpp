// Fiscal periods: the list, the window of one, and the window that sets up a year.
#include <QApplication>

#include "costing/forms/frmFiscalYearSetup.h"
#include "costing/forms/frmPeriodsList.h"
#include "costing/forms/frmPeriodsMaint.h"
#include "platform/controls/Later.h"
#include "support/desktop/ListTest.h"

namespace {

using dw::frmFiscalYearSetup;
using dw::frmPeriodsList;
using dw::frmPeriodsMaint;
using screen::Icon;

class PeriodsTest : public test::ListTest {
 protected:
  /// Opens the window that sets up a year from the list, and works in it until it closes.
  void SetUpYear(const std::function<void(frmFiscalYearSetup&)>& work) {
    auto& list = OpenList<frmPeriodsList>();
    ui::Later(*qApp, [&] {
      auto* window = ui::Existing<frmFiscalYearSetup>();
      ASSERT_NE(window, nullptr);
      test::Settle();
      EXPECT_TRUE(window->fiscalYear.hasFocus());
      work(*window);
      if (ui::Existing<frmFiscalYearSetup>()) window->Unload();
    });
    test::Click(list, "SSCommand1");
    test::Settle();
  }
  void GenerateYear(const char* year, const char* start) {
    SetUpYear([&](frmFiscalYearSetup& window) {
      Fill(window, {{"Text1", year}, {"Text2", start}}, "cmdProceed");
      EXPECT_EQ(ui::Existing<frmFiscalYearSetup>(), nullptr);
    });
  }
};

TEST_F(PeriodsTest, AYearIsSetUpFromTheList) {
  fleet_.Add("Fiscal Periods",
             {{"Fiscal Year", 2026}, {"Period", 3}, {"Start Date", rt::DateTime(2026, 3, 5)}});
  GenerateYear("2026", "1/31/2026");
  EXPECT_EQ(OpenList<frmPeriodsList>().Grid().RecordCount(), 12) << "the list was read again";
  EXPECT_EQ(Shown<frmPeriodsList>(6, 0), "2026|1|1/31/2026|2/27/2026|3/1/2026 2:05:00 PM|TESTER");
  EXPECT_EQ(Shown<frmPeriodsList>(5, 2), "2026|3|3/5/2026||") << "what was there stays";
  EXPECT_EQ(Shown<frmPeriodsList>(4, 3), "2026|4|4/28/2026|5/27/2026");
  const std::string before = fleet_.Everything("Fiscal Periods");
  GenerateYear("2026", "1/1/2026");
  EXPECT_EQ(fleet_.Everything("Fiscal Periods"), before) << "an existing year stays unchanged, without a box";
}

TEST_F(PeriodsTest, TheYearsWindowMindsItsFieldsOnLeaving) {
  SetUpYear([&](frmFiscalYearSetup& window) {
    Fill(window, {{"Text1", "a20b2"}});
    EXPECT_EQ(window.fiscalYear.Text(), "202");
    screen_->Expect("Year must be four digits long. Please re-enter.", Icon::Information);
    test::Enter(window, "Text2");
    EXPECT_TRUE(window.fiscalYear.hasFocus());
    screen_->Expect("Year must be a four digit number. Please re-enter.", Icon::Information);
    Fill(window, {{"Text1", ""}});
    test::Enter(window, "Text2");
    EXPECT_TRUE(window.fiscalYear.hasFocus());
    screen_->Expect(kDateRequired, Icon::Critical);
    Fill(window, {{"Text1", "2026"}, {"Text2", ""}}, "cmdCancel");
    EXPECT_TRUE(window.firstDay.hasFocus()) << "the date ignores Cancel";
  });
  SetUpYear([&](frmFiscalYearSetup& window) {
    test::Click(window, "cmdCancel");
    EXPECT_EQ(ui::Existing<frmFiscalYearSetup>(), nullptr) << "the year has";
  });
}

TEST_F(PeriodsTest, ProceedChecksInItsOwnWords) {
  SetUpYear([&](frmFiscalYearSetup& window) {
    const auto proceed = [&](const char* year, const char* start, const char* words, ui::TextBox& focused) {
      window.fiscalYear.SetText(year);
      window.firstDay.SetText(start);
      screen_->Expect(words, Icon::Critical);
      // Enter keeps the focus in the field.
      QTest::keyClick(window.focusWidget(), Qt::Key_Return);
      EXPECT_TRUE(focused.hasFocus()) << year << " " << start;
    };
    proceed("", "", "The fiscal year must be numeric. Please check", window.fiscalYear);
    proceed("1E99", "", "The fiscal year must be numeric. Please check", window.fiscalYear);
    proceed("202", "", "The fiscal year must be 4 digits long. Please check.", window.fiscalYear);
    proceed("2026", "2/30/2026", "The start date is not a real date. Please check", window.firstDay);
    proceed("2026", "6/1/9999", "The start date is not a real date. Please check", window.firstDay);
  });
  EXPECT_EQ(Count("Fiscal Periods"), "0");
}

TEST_F(PeriodsTest, APeriodIsTypedByHand) {
  {
    auto& window = Add<frmPeriodsMaint, frmPeriodsList>();
    Fill(window, {{"Text3", "x2026"}, {"Text8", "-13"}, {"Text1", "1/31/2027"}});
    test::Enter(window, "Text2");
    EXPECT_EQ(window.endDate.Text(), "2/27/2027") << "a month later less a day";
    Fill(window, {{"Text1", "12/31/2026"}}, "OkButton");
  }
  EXPECT_EQ(Shown<frmPeriodsList>(4), "2026|13|12/31/2026|2/27/2027") << "an existing end stays";
  {
    auto& window = Show<frmPeriodsMaint, frmPeriodsList>();
    EXPECT_EQ(window.fiscalYear.selectedText(), "2026");
    screen_->Expect("'99999' is too large or too small for \"Period\".", Icon::Critical);
    Fill(window, {{"Text1", "3/1/2027"}, {"Text3", ""}, {"Text8", "99999"}}, "OkButton");
    EXPECT_TRUE(window.period.hasFocus());
    Fill(window, {{"Text8", ""}}, "OkButton");
  }
  EXPECT_EQ(Shown<frmPeriodsList>(4), "||3/1/2027|2/27/2027")
      << "neither the numbers nor the order of the dates matter";
  screen_->Expect("This function not yet implemented.", Icon::Critical);
  PressDelete<frmPeriodsList>();
  EXPECT_EQ(Count("Fiscal Periods"), "1");
}

TEST_F(PeriodsTest, APeriodNeedsBothDates) {
  auto& window = Add<frmPeriodsMaint, frmPeriodsList>();
  screen_->Expect(kDateRequired, Icon::Critical);
  test::Press(window.fiscalYear, Qt::Key_Return);
  EXPECT_TRUE(window.startDate.hasFocus());
  screen_->Expect("Year cannot be less than 1800. Please try again.", Icon::Exclamation);
  Fill(window, {{"Text1", "12/31/1799"}});
  test::Enter(window, "Text2");
  EXPECT_TRUE(window.startDate.hasFocus());
  EXPECT_EQ(window.endDate.Text(), "");
  screen_->Expect(kNoDate, Icon::Exclamation);
  Fill(window, {{"Text1", "1/1/2026"}, {"Text2", "soon"}}, "OkButton");
  EXPECT_TRUE(window.endDate.hasFocus());
  test::Press(window.endDate, Qt::Key_Escape);
  EXPECT_EQ(Count("Fiscal Periods"), "0");
  ExpectVanished<frmPeriodsList>("Fiscal Periods", "Inventory #", {{"Period", 1}});
}

}  // namespace
