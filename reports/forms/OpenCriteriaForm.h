// Opens the windows of select and sort definitions.
#pragma once

#include <QWindow>
#include <cstdint>
#include <functional>
#include <string>

#include "platform/controls/Form.h"
#include "platform/screen/Screen.h"

namespace dw {

/// Shows the form F on a record, or for adding. It belongs to `opener`: where only that takes input, this
/// form does too. A window of this class that is open already comes forward and keeps its record. `hand` sets
/// what else the form must know.
template <class F>
void OpenBelonging(ui::Form& opener, bool add, std::int32_t id, const std::function<void(F&)>& hand) {
  const screen::Hourglass hourglass;
  F& form = ui::The<F>();
  if (!form.Loaded()) {
    // The load runs before the form knows its record.
    form.LoadForm();
    form.DataID = add ? -1 : id;
    form.AddMode = add;
    hand(form);
    // Only a window that exists can have the opener's as its parent.
    form.winId();
    form.windowHandle()->setTransientParent(opener.windowHandle());
  }
  form.ShowForm();
}

/// Opens a definition of the report's primary table.
template <class F>
void OpenReportCriteriaForm(ui::Form& opener, bool add, std::int32_t id, const std::string& reportID) {
  OpenBelonging<F>(opener, add, id, [&](F& form) { form.ReportID = reportID; });
}

/// Opens a line of the definition `queryID`.
template <class F>
void OpenReportQueryLineForm(ui::Form& opener, bool add, std::int32_t id, std::int32_t queryID,
                             const std::string& reportID) {
  OpenBelonging<F>(opener, add, id, [&](F& form) {
    form.QueryID = queryID;
    form.ReportID = reportID;
  });
}

}  // namespace dw
