// Deleting a list's record through the object model that holds records.
#pragma once

#include <string>
#include <vector>

#include "platform/screen/Screen.h"

namespace dw {

/// A delete is refused if the query finds rows.
struct InUseCheck {
  std::string query;
  std::string words;
  screen::Icon icon = screen::Icon::Information;
};

/// Asks the user first, and only then makes the checks, in their order. True if the record is gone.
bool DaoDeleteFromList(const std::string& recordQuery, const std::vector<InUseCheck>& checks = {});

}  // namespace dw
