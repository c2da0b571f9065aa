#ifdef DROVEWRIGHT_SANE
#include "platform/scan/SaneLibrary.h"

#include <dlfcn.h>

#include <optional>

namespace sys {
namespace {

std::optional<SaneLibrary> LoadLibrary() {
  // The library stays loaded: drivers may leave threads behind.
  void* handle = dlopen("libsane.so.1", RTLD_NOW | RTLD_LOCAL);
  if (!handle) return std::nullopt;
  SaneLibrary library;
  bool complete = true;
  const auto find = [&](auto& function, const char* name) {
    function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(dlsym(handle, name));
    if (!function) complete = false;
  };
  find(library.init, "sane_init");
  find(library.exit, "sane_exit");
  find(library.getDevices, "sane_get_devices");
  find(library.open, "sane_open");
  find(library.close, "sane_close");
  find(library.getOptionDescriptor, "sane_get_option_descriptor");
  find(library.controlOption, "sane_control_option");
  find(library.getParameters, "sane_get_parameters");
  find(library.start, "sane_start");
  find(library.read, "sane_read");
  find(library.cancel, "sane_cancel");
  find(library.strstatus, "sane_strstatus");
  if (!complete) return std::nullopt;
  return library;
}

}  // namespace

const SaneLibrary* SaneLibrary::Load() {
  static const std::optional<SaneLibrary> library = LoadLibrary();
  return library ? &*library : nullptr;
}

}  // namespace sys
#endif
