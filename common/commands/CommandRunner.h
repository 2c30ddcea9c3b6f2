#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "common/Api.h"

namespace Norvik::Common {

/// Runs lines through `sh -c` and waits for their end (see `Platform::RunChild`). The child has no
/// standard input and none of this process's other descriptors. Its standard output is returned
/// whole and unchanged, its standard error goes to the log at level 5. A tool that fails or is
/// missing throws nothing: the output is what it printed before, mostly nothing. A line that
/// reaches a limit is ended with a warning, and its output is empty. All members may be called on
/// any thread.
struct NORVIK_COMMON_API CommandRunner {
  struct ChangeResult {
    std::string output;
    bool onlyNoted = false;  ///< by a rehearsal, which did not run the line
  };

  /// Bytes that a line may print.
  static constexpr std::size_t MAX_OUTPUT = 64 << 20;

  /// How long a query may run; 0 is unlimited, as it is at first.
  static void SetQueryLimit(std::chrono::seconds limit);

  /// For a line that only queries the machine: a rehearsal runs it as well.
  static std::string ExecCommand(const std::string& command);
  /// For a line that changes the machine.
  static ChangeResult ExecChange(const std::string& command);
};

}  // namespace Norvik::Common
