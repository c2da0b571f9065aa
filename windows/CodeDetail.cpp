#include "windows/CodeDetail.h"

#include <QGroupBox>
#include <QVBoxLayout>
#include <utility>

#include "data/GenericTools.h"
#include "platform/controls/Layout.h"

namespace dw {

std::function<std::string(RecordHold&)> AssetsWithCode(std::string column) {
  return [column = std::move(column)](RecordHold& record) {
    return "SELECT * FROM Vehicles WHERE [" + column + "] = '" + QuoteSQL(record.Get(column).Shown()) + "'";
  };
}

QWidget* AssetsGroup(ui::DataGrid& grid) {
  auto* inside = new QVBoxLayout;
  inside->addWidget(&grid);
  grid.setAccessibleName("Assets");
  grid.setMinimumHeight(grid.fontMetrics().lineSpacing() * 8);
  return ui::Group("Assets", inside);
}

}  // namespace dw
