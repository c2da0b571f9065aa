// Deleting a list's record through the object model that holds records.
#pragma once

#include <string>
#include <vector>

#include "platform/screen/Screen.h"

namespace dw {

/// Rows that the query finds stand in the way of a delete.
struct InUseCheck {
  std::string query;
  std::string words;
  screen::Icon icon = screen::Icon::Information;
};

/// Asks whether the record is to go, and only then makes the checks, in their order. True if it is gone.
bool DaoDeleteFromList(const std::string& recordQuery, const std::vector<InUseCheck>& checks = {});

}  // namespace dw
