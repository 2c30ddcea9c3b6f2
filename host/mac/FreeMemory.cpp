#include "host/FreeMemory.h"

#include <malloc/malloc.h>

namespace Norvik::Host {

void ReleaseFreeMemory() { ::malloc_zone_pressure_relief(nullptr, 0); }

}  // namespace Norvik::Host
