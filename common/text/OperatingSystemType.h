#pragma once

#include <string>

#include "common/Api.h"

namespace Norvik::Common {

/// The key of the "DATA" table that holds the operating-system type of the agent, as text.
inline constexpr char OPERATING_SYSTEM_AGENT_DATA[] = "OPERATING_SYSTEM_TYPE";

struct NORVIK_COMMON_API OperatingSystemType {
  enum Types : int { MACOS = 0, WINDOWS = 1, LINUX = 2, UNKNOWN = 3 };

  /// "macOS", "Windows", "Linux"; "Unknown" for any other value.
  static std::string ToString(Types type);
  /// The type of one of these texts, in any letter case; `UNKNOWN` for any other text.
  static Types FromString(const std::string& text);
};

}  // namespace Norvik::Common
