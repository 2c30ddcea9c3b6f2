#include "common/LibraryVersion.h"

namespace Norvik::Common {

template <>
const char LibraryOf<CONTRACT, LAYOUT>::present = 1;

const char* LibraryVersion() { return BUILD_VERSION; }

}  // namespace Norvik::Common
