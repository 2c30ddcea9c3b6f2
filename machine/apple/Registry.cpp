#include "machine/apple/Registry.h"

#include "platform/CfText.h"
#include "platform/ScopedHandle.h"

namespace Norvik::Machine::Mac {

namespace {

using Platform::CfRef;
using Platform::IoObject;

/// Null if the service or the property does not exist.
CfRef<CFTypeRef> Property(const IoObject& service, const char* name) {
  if (!service) return {};
  return CfRef<CFTypeRef>(IORegistryEntryCreateCFProperty(
      service.Get(), Platform::CfTextOf(name).Get(), kCFAllocatorDefault, 0));
}

std::string BytesOf(CFDataRef data) {
  const UInt8* const begin = CFDataGetBytePtr(data);
  return std::string(begin, begin + CFDataGetLength(data));
}

}  // namespace

std::string RegistryProperty(const char* serviceClass, const char* property) {
  // The call takes ownership of the matching dictionary. Port 0 is the default in every release.
  const IoObject service(
      IOServiceGetMatchingService(MACH_PORT_NULL, IOServiceMatching(serviceClass)));
  const auto value = Property(service, property);
  if (!value) return {};
  const CFTypeID type = CFGetTypeID(value.Get());
  if (type == CFStringGetTypeID()) return Platform::Utf8Of(static_cast<CFStringRef>(value.Get()));
  if (type == CFDataGetTypeID()) return BytesOf(static_cast<CFDataRef>(value.Get()));
  return {};
}

}  // namespace Norvik::Machine::Mac
