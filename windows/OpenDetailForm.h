// From a row of a list to the window with its record.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/controls/DataGrid.h"
#include "platform/controls/Form.h"

namespace dw {

/// "There are no records for which to display detail."
void ReportNoRecords();
/// The ID in the grid's row. Empty if another user deleted the row before it was read: that is reported, and
/// `refresh` reads the grid again.
std::optional<std::int32_t> RowNumber(ui::DataGrid& grid, const std::function<void()>& refresh);

namespace detail {
/// Whether a window for this form may be opened now; reports why not.
bool MayOpenDetail(const char* form, ui::DataGrid& grid, bool add, std::int32_t& currentRow, bool hasRows);
}  // namespace detail

/// Opens the detail form F on the record `id`, or for adding. Only one window of each class can be open: a
/// second one is refused with a message, and the first stays as it is. `hand` sets what else the form must
/// know before it is shown. Sets `currentRow` to the grid's row.
template <class F>
void OpenDetailForm(ui::DataGrid& grid, bool add, std::int32_t id, std::int32_t& currentRow, bool hasRows,
                    const std::function<void(F&)>& hand = {}) {
  if (!detail::MayOpenDetail(F::kName, grid, add, currentRow, hasRows)) return;
  const screen::Hourglass hourglass;
  F& form = ui::The<F>();
  // The load runs before the form knows its record.
  form.LoadForm();
  form.DataID = add ? -1 : id;
  form.AddMode = add;
  if (hand) hand(form);
  form.ShowForm();
}

/// The same for a form that belongs to an asset; an empty `assetID` lets the user choose one.
template <class F>
void OpenAssetDetailForm(ui::DataGrid& grid, bool add, std::int32_t id, const std::string& assetID,
                         std::int32_t& currentRow, bool hasRows) {
  OpenDetailForm<F>(grid, add, id, currentRow, hasRows, [&](F& form) { form.AssetID = assetID; });
}

}  // namespace dw
