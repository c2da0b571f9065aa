// The hold by a transaction on the window's own connection.
#pragma once

#include "platform/controls/Adodc.h"
#include "platform/controls/Bindings.h"
#include "windows/RecordHold.h"

namespace dw {

/// Holds the record from its loading to OK or Cancel. Storing ends the transaction and releases the record;
/// what was stored then stays, whatever happens later.
class TransactionHold : public RecordHold {
 public:
  /// `lockField` is the column that is read and written back to find out whether the record is free.
  TransactionHold(ui::Form& form, RecordSource source, const char* lockField);

  ui::Adodc& Data() { return data_; }

  void Bind(ui::BoundControl& control, std::string column, std::string label) override;
  bool HasRow() const override { return data_.Recordset() && !data_.Recordset()->AtEnd(); }
  rt::Value Get(const std::string& column) override;
  void Set(const std::string& column, const rt::Value& value) override;
  void OpenBlank(const AroundRecord& around) override;
  void Read(std::int32_t id, std::int32_t own, const AroundRecord& around) override;
  void Show() override;
  std::optional<std::int32_t> AddRow(const std::function<void()>& fill) override;
  Taken Take() override;
  void KeepHeld() override;
  bool Held() const override { return held_; }
  void StoreControls() override;
  bool Store() override;
  void RemoveRow() override;
  void GiveBack() override;

 private:
  ado::Recordset& Record() { return *data_.Recordset(); }
  void LetGo();

  ui::Form& form_;
  RecordSource source_;
  const char* lockField_;
  ui::Adodc data_;
  ui::Bindings bindings_;
  bool taken_ = false;  ///< the record was free when it was taken
  bool held_ = false;   ///< the transaction has begun
};

}  // namespace dw
