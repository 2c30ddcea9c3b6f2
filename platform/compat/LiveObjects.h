#pragma once

#include <cstddef>

namespace Norvik::Platform {

/// Objects that callers own and have to release.
struct LiveObjects {
  std::size_t coreFoundation = 0;  ///< Core Foundation objects, including those inside collections
  std::size_t ioHandles = 0;       ///< references to I/O registry entries and iterators
};

inline bool operator==(const LiveObjects& left, const LiveObjects& right) {
  return left.coreFoundation == right.coreFoundation && left.ioHandles == right.ioHandles;
}

/// For tests: what is owned now. All zero after a collector has ended. Releasing too often, and
/// using what was released, need no check: both end the program with a message that names the
/// object.
LiveObjects CountLiveObjects();

}  // namespace Norvik::Platform
