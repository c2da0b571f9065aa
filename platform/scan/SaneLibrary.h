// The system's library of scanner drivers, loaded only when somebody uses a scanner.
#pragma once

#include <sane/sane.h>

namespace sys {

/// The library's functions. A program that never scans does not load it and works without it.
struct SaneLibrary {
  decltype(&sane_init) init = nullptr;
  decltype(&sane_exit) exit = nullptr;
  decltype(&sane_get_devices) getDevices = nullptr;
  decltype(&sane_open) open = nullptr;
  decltype(&sane_close) close = nullptr;
  decltype(&sane_get_option_descriptor) getOptionDescriptor = nullptr;
  decltype(&sane_control_option) controlOption = nullptr;
  decltype(&sane_get_parameters) getParameters = nullptr;
  decltype(&sane_start) start = nullptr;
  decltype(&sane_read) read = nullptr;
  decltype(&sane_cancel) cancel = nullptr;
  decltype(&sane_strstatus) strstatus = nullptr;

  /// Null on a machine without the library.
  static const SaneLibrary* Load();
};

}  // namespace sys
