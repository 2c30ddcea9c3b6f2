#include "host/FreeMemory.h"

#include <malloc.h>

namespace Norvik::Host {

void ReleaseFreeMemory() { ::malloc_trim(0); }

}  // namespace Norvik::Host
