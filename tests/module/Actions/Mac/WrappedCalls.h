#pragma once

#include <string>
#include <vector>

namespace Norvik::Tests {

/// What the module's calls of `kill` and `settimeofday` do in this program: they are recorded, and
/// refused but for what a test allows. The clock is never set.
struct WrappedCalls {
  std::vector<std::string> made;  ///< "kill 7 9", "settimeofday 1767225600.000000"
  int killable = 0;               ///< a child of the test's own, which really gets the signal
  bool clockCanBeSet = false;
};

WrappedCalls& TheWrappedCalls();

}  // namespace Norvik::Tests
