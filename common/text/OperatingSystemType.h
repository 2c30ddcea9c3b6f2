#pragma once

#include <string>

#include "common/Api.h"

namespace Norvik::Common {

/// Key of the "DATA" table under which the agent's operating-system type stands as text.
inline constexpr char OPERATING_SYSTEM_AGENT_DATA[] = "OPERATING_SYSTEM_TYPE";

struct NORVIK_COMMON_API OperatingSystemType {
  enum Types : int { MACOS = 0, WINDOWS = 1, LINUX = 2, UNKNOWN = 3 };

  /// "macOS", "Windows", "Linux"; "Unknown" for any other value.
  static std::string ToString(Types type);
  /// The type of a text, letter case ignored; `UNKNOWN` for any other text.
  static Types FromString(const std::string& text);
};

}  // namespace Norvik::Common
