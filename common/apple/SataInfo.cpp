#include "common/apple/SataInfo.h"

#include "platform/ScopedHandle.h"

namespace Norvik::Common {

namespace {

/// The entry of a port with a device. The driver of the device is its child.
constexpr char DEVICE_CLASS[] = "IOAHCIDevice";

}  // namespace

void SataInfo::GetSataDevicesEntry(unsigned int& controller, std::list<unsigned int>& entries) {
  if (controller == IO_OBJECT_NULL) return;
  Platform::IoObject below;
  if (IORegistryEntryCreateIterator(controller, kIOServicePlane, kIORegistryIterateRecursively,
                                    below.Out()) != KERN_SUCCESS) {
    return;
  }
  while (Platform::IoObject entry{IOIteratorNext(below.Get())}) {
    if (IOObjectConformsTo(entry.Get(), DEVICE_CLASS)) entries.push_back(entry.Release());
  }
}

}  // namespace Norvik::Common
