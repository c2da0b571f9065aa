// Types of scheduled maintenance: the list and the window.
#include "fleet/forms/frmScheduleTypeMaint.h"
#include "fleet/forms/frmScheduleTypesList.h"
#include "support/desktop/ListTest.h"

namespace {

using dw::frmScheduleTypeMaint;
using dw::frmScheduleTypesList;
using screen::Answer;
using screen::Icon;

class ScheduleTypesTest : public test::ListTest {};

TEST_F(ScheduleTypesTest, ATypeIsAddedAndChanged) {
  auto& window = Add<frmScheduleTypeMaint, frmScheduleTypesList>();
  EXPECT_EQ(Only("Maintenance Types", "Description"), "Null") << "nothing is set in the empty row";
  Fill(window, {{"Text1", "Oil change"}}, "OkButton");
  Fill(Show<frmScheduleTypeMaint, frmScheduleTypesList>(), {{"Text3", "every autumn"}}, "OkButton");
  EXPECT_EQ(Shown<frmScheduleTypesList>(5), "Oil change|every autumn|TESTER|3/1/2026 2:05:00 PM|TESTER");
  ExpectVanished<frmScheduleTypesList>("Maintenance Types", "Maintenance Type #", {{"Notes", "x"}});
}

TEST_F(ScheduleTypesTest, ADeleteAsksFirstAndThenLooksForUses) {
  const std::int32_t id = fleet_.Add("Maintenance Types", {{"Description", "Brakes"}});
  fleet_.Add("Maintenance Schedule", {{"Asset ID", "TRK-1"}, {"Type ID", id}});
  fleet_.AddTransaction("TRK-1", 2026, 3);
  fleet_.Run("UPDATE [Maintenance Transactions] SET [Type_ID] = " + std::to_string(id));
  ExpectSure(Answer::No);
  PressDelete<frmScheduleTypesList>();
  ExpectSure(Answer::Yes);
  screen_->Expect("This maintenance type is in use in Maintenance Schedule items.", Icon::Information);
  PressDelete<frmScheduleTypesList>();
  fleet_.Run("DELETE * FROM [Maintenance Schedule]");
  ExpectSure(Answer::Yes);
  screen_->Expect("This type is in use in Maintenance Transactions.", Icon::Information);
  PressDelete<frmScheduleTypesList>();
  EXPECT_EQ(Count("Maintenance Types"), "1");
  fleet_.Run("DELETE * FROM [Maintenance Transactions]");
  ExpectSure(Answer::Yes);
  PressDelete<frmScheduleTypesList>();
  EXPECT_EQ(Count("Maintenance Types"), "0");
  screen_->Expect("There are no records for which to display detail.", Icon::None);
  PressDelete<frmScheduleTypesList>();
}

}  // namespace
