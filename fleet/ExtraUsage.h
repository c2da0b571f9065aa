// How far ahead the analysis of what is due looks by default: two weeks.
#pragma once

#include <string>

namespace dw {

/// The usage expected of the asset in two weeks, in the units of its meter, as the text of a whole number:
/// twice the weekly usage by its latest readings and transactions. "0" if nothing is on file, if the figure
/// is too large, and after the message about data that cannot be read.
std::string DefaultExtraUsage(const std::string& assetID);
/// The date two weeks from today, as a short date.
std::string DefaultDueBy();

}  // namespace dw
