#include "common/LibraryVersion.h"

namespace Norvik::Common {

const char* LibraryVersion() { return BUILD_VERSION; }

}  // namespace Norvik::Common
