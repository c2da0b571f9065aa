// The printers that this computer can print on.
#pragma once

#include <string>
#include <vector>

namespace print {

struct Printer {
  std::string name;         ///< of its queue
  std::string description;  ///< what people call it; may be empty
  bool isDefault = false;
};

/// All printers by name; empty where there are none or the printing system does not run.
std::vector<Printer> Printers();

}  // namespace print
