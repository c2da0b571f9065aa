// The printers of this machine.
#pragma once

#include <memory>

#include "platform/print/job/Destinations.h"

namespace print {

/// Hands PDF files to the queues of the printing system, with copies, collation and paper.
std::shared_ptr<PrinterQueue> MakeCupsQueue();

}  // namespace print
