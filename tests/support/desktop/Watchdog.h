// Ends a test program in which one test hangs.
#pragma once

namespace test {

/// From now on a test that takes longer than `seconds` ends the process, with the test's name and the stack
/// of its main thread on standard error. Call it once, before the tests run.
void WatchTests(int seconds);

}  // namespace test
