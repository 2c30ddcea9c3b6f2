#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/compat/CfObjects.h"
#include "platform/compat/Registry.h"

/// A recording of an I/O registry. Whatever it holds, every entry is found again from its parent,
/// its properties become objects, and giving them back leaves none.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace Norvik::Platform;
  const Registry registry({reinterpret_cast<const char*>(data), size});
  for (const RegistryEntry* entry : registry.OfClass("Device")) {
    for (const RegistryEntry* child : Registry::Below(*entry, "IOService", false)) {
      if (Registry::ParentOf(*child, "IOService") != entry) std::abort();
    }
    const CFTypeRef properties = CfFromPropertyList(entry->properties);
    if (CFGetTypeID(properties) != CFDictionaryGetTypeID()) std::abort();
    CFRelease(properties);
  }
  if (CountCfObjects() != 0) std::abort();
  return 0;
}
