// One select and sort definition: its name, its conditions and its order.
#pragma once

#include <cstdint>
#include <string>

#include "platform/controls/CheckBox.h"
#include "windows/RecordForm.h"

class QLabel;

namespace dw {

/// Beside the grids stands in plain words what will be asked, how many rows the report has with it now, and
/// why the engine would refuse it.
class frmCriteriaMaint : public RecordForm {
 public:
  static constexpr const char* kName = "frmCriteriaMaint";
  frmCriteriaMaint();

  std::string ReportID;  ///< the primary table of the report

  ui::TextBox description{"Text1"};   ///< `Description`
  ui::TextBox recordNumber{"Text2"};  ///< `ID`
  ui::CheckBox permanent{"Check1", "Keep this Query Permanently"};
  QLabel* meaning;      ///< the selection and the order in words
  QLabel* matchCount;   ///< how many rows the report has with it
  QLabel* engineFault;  ///< what the engine would say to it

  ui::DataGrid& SelectGrid() { return select_.grid; }
  ui::DataGrid& SortGrid() { return sort_.grid; }
  /// These open the window of the grid's row, and delete it.
  void UpdateSelect();
  void UpdateSort();
  void RemoveItSelect();
  void RemoveItSort();

 protected:
  void FillPlaceholder() override;
  void ReportVanished() override;
  bool StaysUnheld() const override { return true; }
  bool Refreshed() override;

 private:
  void LayOutAll();
  void OpenSelect(bool add, std::int32_t id);
  void OpenSort(bool add, std::int32_t id);
  void Update(InnerGrid& lines, void (frmCriteriaMaint::*open)(bool, std::int32_t));
  void Remove(InnerGrid& lines, const char* table);
  void ShowMeaning();
  void CountLater(const std::string& formula);

  InnerGrid& select_;
  InnerGrid& sort_;
  int counts_ = 0;  ///< how many counts were begun; only the latest one is done
};

}  // namespace dw
