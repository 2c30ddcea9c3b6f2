#include "common/apple/AppleFundation.h"

#include <IOKit/IOKitLib.h>
#include <limits.h>

#include <cstdint>
#include <string>
#include <system_error>

#include "common/text/Text.h"
#include "platform/CfText.h"
#include "platform/FileSystem.h"
#include "platform/ScopedHandle.h"

namespace Norvik::Common {

namespace {

using Platform::CfRef;
using Platform::IoObject;

/// The entry of a port with a device. The driver of the device is its child.
constexpr char DEVICE_CLASS[] = "IOAHCIDevice";

/// Null if the key is missing or holds another type. The dictionary owns the value.
CFTypeRef ValueOf(CFDictionaryRef dictionary, const char* key, CFTypeID type) {
  const CfRef<CFStringRef> name = Platform::CfTextOf(key);
  if (!dictionary || !name) return nullptr;
  const CFTypeRef value = CFDictionaryGetValue(dictionary, name.Get());
  return value && CFGetTypeID(value) == type ? value : nullptr;
}

std::string PathOf(CFURLRef url) {
  UInt8 path[PATH_MAX] = {};
  if (!url || !CFURLGetFileSystemRepresentation(url, true, path, sizeof(path))) return {};
  return reinterpret_cast<const char*>(path);
}

/// Empty if the file cannot be read.
std::string ContentOf(const std::string& path) {
  std::string content;
  char buffer[65536];
  try {
    const Platform::FileDescriptor file = Platform::OpenRegularFile(path);
    while (const std::size_t length = Platform::ReadFull(file, buffer, sizeof(buffer))) {
      content.append(buffer, length);
    }
  } catch (const std::system_error&) {
    return {};
  }
  return content;
}

}  // namespace

unsigned int AppleFundation::FindRecursiveChildren(unsigned int& entry, const char* className) {
  if (entry == IO_OBJECT_NULL) return IO_OBJECT_NULL;
  IoObject below;
  if (IORegistryEntryCreateIterator(entry, kIOServicePlane, kIORegistryIterateRecursively,
                                    below.Out()) != KERN_SUCCESS) {
    return IO_OBJECT_NULL;
  }
  while (IoObject child{IOIteratorNext(below.Get())}) {
    if (IOObjectConformsTo(child.Get(), className)) return child.Release();
  }
  return IO_OBJECT_NULL;
}

wxString AppleFundation::GetCFDictionaryStringProperty(CFDictionaryRef& dict, const char* key) {
  const CFTypeRef value = ValueOf(dict, key, CFStringGetTypeID());
  return value ? WxStringFromStdString(Platform::Utf8Of(static_cast<CFStringRef>(value)))
               : wxString();
}

unsigned long long AppleFundation::GetCFDictionaryIntergerProperty(CFDictionaryRef& dict,
                                                                   const char* key) {
  std::int64_t number = 0;
  const CFTypeRef value = ValueOf(dict, key, CFNumberGetTypeID());
  if (value) CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt64Type, &number);
  return static_cast<unsigned long long>(number);
}

CFPropertyListRef AppleFundation::CreateMyPropertyListFromFile(CFURLRef url) {
  const std::string content = ContentOf(PathOf(url));
  const CfRef<CFDataRef> data(CFDataCreate(kCFAllocatorDefault,
                                           reinterpret_cast<const UInt8*>(content.data()),
                                           static_cast<CFIndex>(content.size())));
  if (!data) return nullptr;
  return CFPropertyListCreateWithData(kCFAllocatorDefault, data.Get(), kCFPropertyListImmutable,
                                      nullptr, nullptr);
}

void SataInfo::GetSataDevicesEntry(unsigned int& controller, std::list<unsigned int>& entries) {
  if (controller == IO_OBJECT_NULL) return;
  IoObject below;
  if (IORegistryEntryCreateIterator(controller, kIOServicePlane, kIORegistryIterateRecursively,
                                    below.Out()) != KERN_SUCCESS) {
    return;
  }
  while (IoObject entry{IOIteratorNext(below.Get())}) {
    if (IOObjectConformsTo(entry.Get(), DEVICE_CLASS)) entries.push_back(entry.Release());
  }
}

}  // namespace Norvik::Common
