#include "host/machine/RegistryMac.h"

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>

#include <memory>
#include <type_traits>

namespace Norvik::Host {

namespace {

struct Releaser {
  void operator()(const void* object) const { CFRelease(object); }
};
template <class Reference>
using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, Releaser>;

class Service {
 public:
  /// The call takes over the matching dictionary. Port 0 is the default one in every release.
  explicit Service(const char* serviceClass)
      : object_(IOServiceGetMatchingService(MACH_PORT_NULL, IOServiceMatching(serviceClass))) {}
  Service(const Service&) = delete;
  Service& operator=(const Service&) = delete;
  ~Service() {
    if (object_ != IO_OBJECT_NULL) IOObjectRelease(object_);
  }

  /// Null if there is no service or property.
  Owned<CFTypeRef> Property(const char* name) const {
    if (object_ == IO_OBJECT_NULL) return nullptr;
    const Owned<CFStringRef> key(
        CFStringCreateWithCString(kCFAllocatorDefault, name, kCFStringEncodingUTF8));
    if (!key) return nullptr;
    return Owned<CFTypeRef>(
        IORegistryEntryCreateCFProperty(object_, key.get(), kCFAllocatorDefault, 0));
  }

 private:
  const io_service_t object_;
};

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
  const auto value = Service(serviceClass).Property(property);
  if (!value) return {};
  const CFTypeID type = CFGetTypeID(value.get());
  if (type == CFStringGetTypeID()) return TextOf(static_cast<CFStringRef>(value.get()));
  if (type == CFDataGetTypeID()) return BytesOf(static_cast<CFDataRef>(value.get()));
  return {};
}

}  // namespace Norvik::Host
