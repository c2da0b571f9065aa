// The hold of the object model with edit locks.
#pragma once

#include "platform/controls/DataControl.h"
#include "windows/RecordHold.h"

namespace dw {

/// Another user holds the record that the window wants to change.
void ReportHeldElsewhere();

/// Holds the record by an edit. It outlives any number of activations and ends at OK, Cancel or unload.
class EditHold : public RecordHold {
 public:
  EditHold(ui::Form& form, RecordSource source);

  ui::DataControl& Data() { return data_; }

  void Bind(ui::BoundControl& control, std::string column, std::string label) override;
  bool HasRow() const override { return data_.HasRow(); }
  rt::Value Get(const std::string& column) override;
  void Set(const std::string& column, const rt::Value& value) override;
  void OpenBlank(const AroundRecord& around) override;
  void Read(std::int32_t id, std::int32_t own, const AroundRecord& around) override;
  void Show() override { data_.ShowRecord(); }
  std::optional<std::int32_t> AddRow(const std::function<void()>& fill) override;
  Taken Take() override;
  bool Held() const override { return data_.Recordset() && data_.Recordset()->Editing(); }
  void StoreControls() override { data_.StoreControls(); }
  bool Store() override;
  void RemoveRow() override;
  void GiveBack() override;

 private:
  RecordSource source_;
  ui::DataControl data_;
};

}  // namespace dw
