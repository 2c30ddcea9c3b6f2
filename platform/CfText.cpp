#include "platform/CfText.h"

#include <cstddef>

namespace Norvik::Platform {

CfRef<CFStringRef> CfTextOf(const char* utf8) {
  return CfRef<CFStringRef>(
      CFStringCreateWithCString(kCFAllocatorDefault, utf8, kCFStringEncodingUTF8));
}

std::string Utf8Of(CFStringRef text) {
  const CFIndex size =
      CFStringGetMaximumSizeForEncoding(CFStringGetLength(text), kCFStringEncodingUTF8) + 1;
  std::string bytes(static_cast<std::size_t>(size), '\0');
  if (!CFStringGetCString(text, bytes.data(), size, kCFStringEncodingUTF8)) return {};
  return bytes.substr(0, bytes.find('\0'));
}

}  // namespace Norvik::Platform
