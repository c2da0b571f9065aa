// Fiscal years of twelve periods.
#pragma once

#include <cstdint>

#include "platform/runtime/DateTime.h"

namespace dw {

/// Adds the twelve periods of a fiscal year to `Fiscal Periods`, each from the running date to a month later
/// less a day; existing periods stay as they are. The ADO operations show failures; what was written stays.
void GenerateFiscalYear(std::int16_t fiscalYear, const rt::DateTime& start);
/// One month later less one day: the end of a period that starts on `start`.
rt::DateTime PeriodEnd(const rt::DateTime& start);

}  // namespace dw
