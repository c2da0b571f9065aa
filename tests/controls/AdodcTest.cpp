#include "platform/controls/Adodc.h"

#include "controls/GridTest.h"
#include "platform/controls/Format.h"
#include "platform/controls/GridSearch.h"
#include "platform/runtime/Text.h"
#include "platform/store/QueryClauses.h"

namespace {

using AdodcTest = test::GridTest;

std::string First(ui::Adodc& control) { return control.Recordset()->Get("Code").AsText(); }

TEST_F(AdodcTest, ListensAndStandsEmptyAfterAFailure) {
  MakeAssets(3);
  ui::Adodc control("adoAssets");
  QObject listener;
  int told = 0;
  control.AddListener(listener, [&] { ++told; });
  Bind(control, "SELECT * FROM Assets WHERE ID = -1");
  EXPECT_FALSE(control.Recordset());
  control.Refresh();
  EXPECT_FALSE(control.HasRows());
  EXPECT_EQ(control.Recordset()->Fields().size(), 8u);
  control.RecordSource = "Assets";
  control.Refresh();
  EXPECT_EQ(control.RecordCount(), 3);
  EXPECT_EQ(told, 2);

  control.RecordSource = "SELECT * FROM Nowhere";
  screen->ExpectPart("Nowhere", screen::Icon::Critical);
  control.Refresh();
  EXPECT_FALSE(control.Recordset());
  EXPECT_FALSE(control.HasRows());
  int number = 0;
  control.onError = [&](int error, const std::string&, bool& cancel) {
    number = error;
    cancel = true;
  };
  control.Requery();
  EXPECT_EQ(number, ado::kNoTable);
  control.ConnectionString = "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + directory.Path("none.mdb");
  control.Refresh();
  EXPECT_EQ(number, ado::kUnspecified);
  Bind(control, "SELECT * FROM Assets WHERE ID > 1");
  control.Refresh();
  EXPECT_EQ(control.RecordCount(), 2);
  EXPECT_EQ(told, 6);
  // After Close, the file is free again for others.
  control.Close();
  other.reset();
  EXPECT_NO_THROW(store::Connection::Open({path, store::Share::Exclusive}));
}

TEST_F(AdodcTest, ASortOutlivesTheRecordSource) {
  MakeAssets(5);
  ui::Adodc control;
  Bind(control, "SELECT * FROM Assets ORDER BY Code");
  control.Refresh();
  const auto code = control.Recordset()->Fields()[1];
  control.SortBy(code, false);
  control.Refresh();
  EXPECT_EQ(First(control), "K005");
  control.RecordSource = "SELECT * FROM Assets WHERE ID < 4 ORDER BY [Year], Code;";
  control.Refresh();
  EXPECT_EQ(First(control), "K003");
  control.RecordSource = "SELECT * FROM Lines";
  control.Refresh();
  EXPECT_FALSE(control.Sorted());
  EXPECT_TRUE(control.Recordset());
  control.RecordSource = "SELECT TOP 2 * FROM Assets ORDER BY Code";
  control.Refresh();
  EXPECT_FALSE(control.CanSort());
}

// The store must find exactly the rows whose shown text begins with the typed text.
TEST_F(AdodcTest, WhatBeginsWithATextIsWhatIsShown) {
  MakeAssets(400);
  Change("UPDATE Assets SET Notes = 'Ünder' WHERE ID = 7");
  Change("UPDATE Assets SET Notes = 'it''s [a] * test', Cost = 0, Miles = 2.675 WHERE ID = 9");
  Change("UPDATE Assets SET Bought = #2/29/2000# WHERE ID = 11");
  Change("UPDATE Assets SET Cost = -12.25, Miles = NULL, Bought = NULL WHERE ID = 10");
  ui::Adodc control;
  Bind(control, "SELECT Assets.*, Lines.Asset FROM Assets LEFT JOIN Lines ON Assets.ID = Lines.Asset");
  control.Refresh();
  ui::Adodc up;
  ui::Adodc down;
  Bind(up, "SELECT * FROM Assets");
  Bind(down, "SELECT * FROM Assets");
  auto& rows = *control.Recordset();
  const std::vector<std::pair<std::string, std::vector<std::string>>> cases = {
      {"ID", {"1", "12", "400", "4000", "0", "01", "x", "1.", "-"}},
      {"Code", {"k", "K1", "K399", "L", "'"}},
      {"Notes", {"Ü", "ü", "IT'S [", "it's [a] *", "%"}},
      {"Cost", {"1", "12.", "-", "-1", "-12.2", "0", "0.", "2,", ".5", "93.5"}},
      {"Miles", {"2", "2.6", "2.675", "2.676", "12.2", "1200", ".", "0"}},
      {"Year", {"19", "199", "2", "2019"}},
      {"Bought",
       {"1", "12", "3/", "3/1", "10/2/20", "2/3/2027", "13", "1/1/1/1", "2/29", "1/31", "12/2", "5/5/1"}},
      {"Active", {"y", "No", "Yesterday"}},
      {"Asset", {"1"}}};
  int found = 0;
  for (const auto& [name, texts] : cases) {
    const int field = rows.FieldIndex(name);
    const auto& info = rows.Fields()[static_cast<std::size_t>(field)];
    for (const auto& typed : texts) {
      std::string sought = rt::LowerCase(typed);
      std::erase(sought, ',');
      if (sought[0] == '.') sought = "0" + sought;
      std::vector<std::int32_t> expected;
      for (rows.MoveFirst(); !rows.AtEnd(); rows.MoveNext()) {
        // A shown whole number does not have the point that the user may type after it.
        std::string shown = rt::LowerCase(ui::Format(rows.Get(field), ""));
        if (name != "Bought" && !shown.empty() && rt::IsNumeric(shown) &&
            shown.find('.') == std::string::npos)
          shown += ".";
        if (!shown.empty() && shown.starts_with(sought)) expected.push_back(rows.Get("ID").AsLong());
      }
      std::vector<std::int32_t> actual;
      const ui::Beginning beginning(info, typed);
      const std::string& condition = beginning.Condition();
      if (!condition.empty()) {
        ado::Recordset hits;
        hits.Open(store::QueryClauses(control.RecordSource).First(1000, condition), rows.ActiveConnection());
        for (; !hits.AtEnd(); hits.MoveNext()) actual.push_back(hits.Get("ID").AsLong());
      }
      EXPECT_EQ(actual, expected) << name << ' ' << typed << ": " << condition;
      found += static_cast<int>(actual.size());
      if (name == "Asset") continue;
      // Both a binary search and a query must find the first of them, in either order of the column.
      for (ui::Adodc* list : {&up, &down}) {
        list->SortBy(info, list == &up);
        list->Refresh();
        const auto first = ui::FirstRowThatBegins(*list, info, beginning);
        EXPECT_EQ(first, condition.empty() ? std::nullopt : ui::FirstRowWhere(*list, condition))
            << name << ' ' << typed << (list == &up ? " up" : " down");
        EXPECT_EQ(first.has_value(), !actual.empty());
      }
    }
  }
  EXPECT_GT(found, 1000);  // there was something to find
}

}  // namespace
