#include "windows/EditHold.h"

#include <utility>

#include "data/BrackenfelGlobals.h"
#include "data/GenericDAO.h"
#include "platform/screen/Screen.h"

namespace dw {

void ReportHeldElsewhere() {
  screen::MessageBox(
      "This record is currently being updated elsewhere.\rYou will not be able to change this record now.",
      screen::Icon::Exclamation);
}

EditHold::EditHold(ui::Form& form, RecordSource source)
    : source_(std::move(source)), data_(form, source_.data) {}

void EditHold::Bind(ui::BoundControl& control, std::string column, std::string label) {
  data_.Bind(control, std::move(column), std::move(label));
}

rt::Value EditHold::Get(const std::string& column) {
  return HasRow() ? data_.Recordset()->Get(column) : rt::Value();
}

void EditHold::Set(const std::string& column, const rt::Value& value) {
  data_.Recordset()->Set(column, value);
}

void EditHold::OpenBlank(const AroundRecord& around) {
  // A window that has not been activated yet has the number 0, which no record has either.
  Read(-1, 0, around);
}

void EditHold::Read(std::int32_t id, std::int32_t own, const AroundRecord& around) {
  data_.DatabaseName = DataFile;
  around.openLists();
  data_.RecordSource = source_.Query(id);
  data_.Refresh();
  around.refreshGrids();
  // Once more, by the window's own number: at load it differs from the number that was asked for.
  data_.RecordSource = source_.Query(own);
  data_.Refresh();
}

std::optional<std::int32_t> EditHold::AddRow(const std::function<void()>& fill) {
  if (!data_.Recordset()) return std::nullopt;
  dao::Recordset& record = *data_.Recordset();
  DaoAddRecord(record);
  if (!record.Editing()) return std::nullopt;
  fill();
  const std::int32_t id = record.Get("ID").AsLong();
  DaoUpdateRecord(record);
  return id;
}

Taken EditHold::Take() {
  if (DaoGetRecord(*data_.Recordset()) == 0) return Taken::Held;
  ReportHeldElsewhere();
  return Taken::HeldElsewhere;
}

bool EditHold::Store() {
  DaoUpdateRecord(*data_.Recordset());
  // A failed store has been reported, and the record is still being edited.
  return !Held();
}

void EditHold::RemoveRow() {
  if (data_.Recordset()) DaoDeleteRecord(*data_.Recordset());
}

void EditHold::GiveBack() {
  if (Held()) data_.Recordset()->CancelUpdate();
}

}  // namespace dw
