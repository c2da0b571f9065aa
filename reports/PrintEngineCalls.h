// The report engine of this program behind the interface of a run.
#pragma once

#include <memory>

#include "reports/PrintCalls.h"

namespace dw {

/// Passes each call on to platform/print.
std::shared_ptr<PrintCalls> PrintEngineCalls();

}  // namespace dw
