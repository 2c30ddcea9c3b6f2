#pragma once

#include <cstddef>

namespace Norvik::Platform {

/// What callers hold of the edge to the operating system and have to give back.
struct LiveObjects {
  std::size_t coreFoundation = 0;  ///< Core Foundation objects, those inside of others among them
  std::size_t ioHandles = 0;       ///< references to I/O registry entries and iterators
};

inline bool operator==(const LiveObjects& left, const LiveObjects& right) {
  return left.coreFoundation == right.coreFoundation && left.ioHandles == right.ioHandles;
}

/// For tests: what is held now. All zero when a collector has ended. Giving back too often and
/// using what was given back need no look here: both end the program, naming the object.
LiveObjects CountLiveObjects();

}  // namespace Norvik::Platform
