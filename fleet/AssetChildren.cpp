#include "fleet/AssetChildren.h"

#include <string>

#include "data/BrackenfelGlobals.h"
#include "data/GenericDAO.h"
#include "data/MainConnection.h"
#include "platform/screen/Screen.h"

namespace dw {
namespace {

constexpr const char* kRemove = "Are you sure you want to remove this entry?";
constexpr const char* kDelete = "Are you sure you want to delete this record?";

bool Agreed(const char* question) {
  return screen::MessageBox(question, screen::Icon::Question, screen::Buttons::YesNo) == screen::Answer::Yes;
}

/// Whether no scheduled work was done in the transaction; such work has to be removed before it. Reports any
/// that was. A check that fails prevents the delete as well.
bool NothingPerformedIn(const MainConnection& main, const std::string& id) {
  const auto performed = main.Finds("SELECT * FROM Maintenance_Performed WHERE Maintenance_Entry_ID = " + id);
  if (!performed) return false;
  if (*performed)
    screen::MessageBox(
        "That Maintenance Entry has recurring maintenance entries which must be removed first.",
        screen::Icon::Information);
  return !*performed;
}

bool DeleteRow(const MainConnection& main, const std::string& query) {
  AdoRecordsetPtr row = main.Edit(query);
  if (!row) return false;
  bool gone = true;
  if (row->AtEnd())
    screen::MessageBox("That ID is no longer on file.", screen::Icon::Exclamation);
  else
    gone = AdoDeleteRS(*row, false, false);
  CloseObject(row);
  AdoRefreshCache(main.Connection(), UseAccess);
  return gone;
}

bool AskAndDelete(const char* question, const std::string& query) {
  if (!Agreed(question)) return false;
  const MainConnection main;
  return main.IsOpen() && DeleteRow(main, query);
}

}  // namespace

bool RemoveTransaction(std::int32_t id) {
  const std::string number = std::to_string(id);
  const MainConnection main;
  return main.IsOpen() && NothingPerformedIn(main, number) && Agreed(kRemove) &&
         DeleteRow(main, "SELECT * FROM [Maintenance Transactions] WHERE ID = " + number);
}

bool RemoveReading(std::int32_t id) {
  return AskAndDelete(kRemove, "SELECT * FROM [Odometer Entries] WHERE [ID] = " + std::to_string(id));
}

bool DeleteScheduleLine(std::int32_t id) {
  return AskAndDelete(kDelete, "SELECT * FROM [Maintenance Schedule] WHERE [ID] = " + std::to_string(id));
}

}  // namespace dw
