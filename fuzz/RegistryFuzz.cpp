#include <string_view>

#include "Fuzz.h"
#include "platform/compat/CfObjects.h"
#include "platform/compat/Registry.h"

/// Reads the input as a recorded I/O registry. For any input: every child has its entry as parent,
/// its properties convert to objects, and no object is left after their release.
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
