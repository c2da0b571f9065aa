// Pages and values as compact bytes, and back.
#pragma once

#include <string>
#include <string_view>

#include "platform/print/pages/Page.h"

namespace print {

/// The bytes of a page; they are for this run of the program only.
void PackPage(const Page& page, std::string* bytes);
/// Throws PrintError if the bytes are not those of a page.
Page UnpackPage(std::string_view bytes);

std::string PackSlot(const SlotValue& value);
SlotValue UnpackSlot(std::string_view bytes);

}  // namespace print
