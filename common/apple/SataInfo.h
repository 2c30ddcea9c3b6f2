#pragma once

#include <list>

#include "common/Api.h"

namespace Norvik::Common {

struct NORVIK_COMMON_API SataInfo {
  /// Appends the I/O registry entries of the SATA devices at any depth below a controller, in the
  /// order of the registry. The caller owns the handles.
  static void GetSataDevicesEntry(unsigned int& controller, std::list<unsigned int>& entries);
};

}  // namespace Norvik::Common
