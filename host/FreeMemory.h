#pragma once

namespace Norvik::Host {

/// Returns memory to the system that this process has freed but the allocator keeps.
void ReleaseFreeMemory();

}  // namespace Norvik::Host
