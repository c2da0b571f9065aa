#include "platform/print/view/Printers.h"

#include <cups/cups.h>

#include <algorithm>

namespace print {

std::vector<Printer> Printers() {
  cups_dest_t* destinations = nullptr;
  const int count = cupsGetDests(&destinations);
  std::vector<Printer> printers;
  for (int i = 0; i < count; ++i) {
    const cups_dest_t& one = destinations[i];
    const char* description = cupsGetOption("printer-info", one.num_options, one.options);
    std::string name = one.name;
    if (one.instance) name += std::string("/") + one.instance;
    printers.push_back({name, description ? description : "", one.is_default != 0});
  }
  cupsFreeDests(count, destinations);
  std::sort(printers.begin(), printers.end(),
            [](const Printer& one, const Printer& other) { return one.name < other.name; });
  return printers;
}

}  // namespace print
