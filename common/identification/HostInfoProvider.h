#pragma once

#include <string>

#include "common/Api.h"

// The machine's name, and the agents that are installed on it.

namespace Norvik::Common {

struct NORVIK_COMMON_API HostInfoProvider {
  /// The machine's host name in UTF-8; empty if the system has none.
  static std::string GetHostName();
};

/// The version of this agent, as the caller was compiled. Not `inline`: the loader would give the
/// whole process one copy.
constexpr char AGENT_VERSION[] = "9.24.2.0";
/// The version of the library that is in use, which should be the same.
NORVIK_COMMON_API std::string GetAgentVersion();

struct NORVIK_COMMON_API VerifyAgent {
  /// Whether the agent of the sibling product is installed. The sign of it is the script that
  /// removes it. Throws `boost::filesystem::filesystem_error` if the file system gives no answer.
  static bool Verify();
};

}  // namespace Norvik::Common
