#pragma once

#include "common/Api.h"

namespace Norvik::Common {

struct NORVIK_COMMON_API VerifyAgent {
  /// Whether the agent of the sibling product is installed: its setup leaves the script that
  /// removes it. Raises `boost::filesystem::filesystem_error` if that cannot be found out.
  static bool Verify();
};

}  // namespace Norvik::Common
