#pragma once

#include <string>

#include "common/Api.h"

namespace Norvik::Common {

struct NORVIK_COMMON_API HostInfoProvider {
  /// The machine's host name in UTF-8; empty if the system does not tell.
  static std::string GetHostName();
};

}  // namespace Norvik::Common
