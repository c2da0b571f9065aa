// The report of a failed step for which no other message is prescribed.
#pragma once

#include <functional>
#include <string>

#include "data/Attempt.h"

namespace dw {

/// A critical box with the number and text of the failure, and what was not done because of it.
void ReportFailure(const Failure& failure, const std::string& consequence = {});
/// Runs a step and reports its failure. True if it was done.
bool Done(const std::function<void()>& step, const std::string& consequence = {});

}  // namespace dw
