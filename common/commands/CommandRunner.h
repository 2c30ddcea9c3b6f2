#pragma once

#include <string>

#include "common/Api.h"

namespace Norvik::Common {

struct NORVIK_COMMON_API CommandRunner {
  /// Runs a line through `sh -c`, waits for it, and returns its standard output whole and
  /// unchanged; the error channel goes to the log at level 5. Never raises for a tool that fails
  /// or is missing: what it printed is the answer, mostly nothing. The child has no standard input
  /// and none of this process's other descriptors. Under a rehearsal the line is taken to only ask,
  /// and runs; whoever has one that changes the machine looks at `Platform::IsRehearsed` first.
  static std::string ExecCommand(const std::string& command);
};

}  // namespace Norvik::Common
