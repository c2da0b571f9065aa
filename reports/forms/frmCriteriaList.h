// The stored select and sort definitions of a report's primary table.
#pragma once

#include <string>

#include "windows/ListForm.h"

namespace dw {

class frmCriteriaList : public ListForm {
 public:
  static constexpr const char* kName = "frmCriteriaList";
  frmCriteriaList();

  std::string ReportID;  ///< the primary table of the report, or a comma list of tables
  QPushButton* useButton;

  void DeleteItem() override;

 protected:
  void OnLoad() override;
  void OpenDetail(bool add, std::int32_t id) override;
  std::string Query() const override;

 private:
  void Use();
};

}  // namespace dw
