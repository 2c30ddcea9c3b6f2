#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Norvik::Tests {

/// What the module's calls of `kill`, `settimeofday` and `geteuid` do in this program: they are
/// recorded, and refused but for what a test allows. The clock is never set.
struct WrappedCalls {
  std::vector<std::string> made;  ///< "kill 7 9", "settimeofday 1767225600.000000"
  int killable = 0;               ///< a child of the test's own, which really gets the signal
  bool clockCanBeSet = false;
  std::optional<unsigned int> user;  ///< answers for the one that this process runs as
};

WrappedCalls& TheWrappedCalls();

}  // namespace Norvik::Tests
