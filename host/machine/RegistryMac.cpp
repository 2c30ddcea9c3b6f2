#include "host/machine/RegistryMac.h"

#include "platform/ScopedHandle.h"

namespace Norvik::Host {

namespace {

using Platform::CfRef;
using Platform::IoObject;

/// Null if there is no service or property.
CfRef<CFTypeRef> Property(const IoObject& service, const char* name) {
  if (!service) return {};
  const CfRef<CFStringRef> key(
      CFStringCreateWithCString(kCFAllocatorDefault, name, kCFStringEncodingUTF8));
  if (!key) return {};
  return CfRef<CFTypeRef>(
      IORegistryEntryCreateCFProperty(service.Get(), key.Get(), kCFAllocatorDefault, 0));
}

std::string TextOf(CFStringRef text) {
  const CFIndex size =
      CFStringGetMaximumSizeForEncoding(CFStringGetLength(text), kCFStringEncodingUTF8) + 1;
  std::string bytes(static_cast<std::size_t>(size), '\0');
  if (!CFStringGetCString(text, bytes.data(), size, kCFStringEncodingUTF8)) return {};
  return bytes.substr(0, bytes.find('\0'));
}

std::string BytesOf(CFDataRef data) {
  const UInt8* const begin = CFDataGetBytePtr(data);
  return std::string(begin, begin + CFDataGetLength(data));
}

}  // namespace

std::string RegistryProperty(const char* serviceClass, const char* property) {
  // The call takes over the matching dictionary. Port 0 is the default one in every release.
  const IoObject service(
      IOServiceGetMatchingService(MACH_PORT_NULL, IOServiceMatching(serviceClass)));
  const auto value = Property(service, property);
  if (!value) return {};
  const CFTypeID type = CFGetTypeID(value.Get());
  if (type == CFStringGetTypeID()) return TextOf(static_cast<CFStringRef>(value.Get()));
  if (type == CFDataGetTypeID()) return BytesOf(static_cast<CFDataRef>(value.Get()));
  return {};
}

}  // namespace Norvik::Host
