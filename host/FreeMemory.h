#pragma once

namespace Norvik::Host {

/// Returns memory to the system that this process may not need: what it has freed but the allocator
/// keeps, and off macOS the pages of its code, which come back when they are used. A debugger's
/// breakpoints are lost with them. Any thread may call it.
void ReleaseFreeMemory();

}  // namespace Norvik::Host
