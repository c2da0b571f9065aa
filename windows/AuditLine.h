// The line at the foot of a record's window: who made it and when, who changed it last and when.
#pragma once

#include <deque>

#include "platform/controls/TextBox.h"

class QLayout;

namespace dw {

/// Lays out the four labels of the audit columns: Created By, Date Created, Updated By, Last Updated.
QLayout* AuditLines(std::deque<ui::BoundLabel>& labels);

}  // namespace dw
