// How far ahead the analysis of what is due looks unless the user says otherwise: two weeks.
#pragma once

#include <string>

namespace dw {

/// The usage that the asset is expected to have in two weeks, in the units of its meter, as a whole number's
/// text: twice what its latest readings and transactions make of a week. "0" where nothing is on file, where
/// the figure is beyond all numbers, and after the message of data that cannot be read.
std::string DefaultExtraUsage(const std::string& assetID);
/// Today in two weeks, as a short date.
std::string DefaultDueBy();

}  // namespace dw
