#include <CoreFoundation/CoreFoundation.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include "platform/compat/CfObjects.h"

using namespace Norvik::Platform;

namespace {

/// The identifier of a type is its position in `CfValue` plus one.
template <class Value>
CFTypeID TypeIdOf() {
  return CfValue(Value()).index() + 1;
}

/// Stores a text and its NUL. False if they do not fit.
bool StoreText(const std::string& text, char* buffer, CFIndex size) {
  if (!buffer || size <= 0 || text.size() >= static_cast<std::size_t>(size)) return false;
  std::memcpy(buffer, text.c_str(), text.size() + 1);
  return true;
}

/// The number without its fraction, or the nearest one of 64 bits.
std::int64_t WholeOf(const CfNumber& number) {
  constexpr double END = 9223372036854775808.0;
  if (!number.isReal) return number.whole;
  if (std::isnan(number.real)) return 0;
  if (number.real >= END) return std::numeric_limits<std::int64_t>::max();
  return number.real < -END ? std::numeric_limits<std::int64_t>::min()
                            : static_cast<std::int64_t>(number.real);
}

}  // namespace

CFTypeRef CFRetain(CFTypeRef object) {
  RetainCfObject(object);
  return object;
}

void CFRelease(CFTypeRef object) { ReleaseCfObject(object); }

CFTypeID CFGetTypeID(CFTypeRef object) { return CfValueOf(object, "CFGetTypeID").index() + 1; }

CFTypeID CFArrayGetTypeID() { return TypeIdOf<CfArray>(); }
CFTypeID CFBooleanGetTypeID() { return TypeIdOf<bool>(); }
CFTypeID CFDataGetTypeID() { return TypeIdOf<CfData>(); }
CFTypeID CFDictionaryGetTypeID() { return TypeIdOf<CfDictionary>(); }
CFTypeID CFNumberGetTypeID() { return TypeIdOf<CfNumber>(); }
CFTypeID CFStringGetTypeID() { return TypeIdOf<std::string>(); }

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char* text, CFStringEncoding encoding) {
  if (!text || encoding != kCFStringEncodingUTF8) return nullptr;
  return static_cast<CFStringRef>(MakeCfObject(std::string(text)));
}

CFIndex CFStringGetLength(CFStringRef string) {
  CFIndex units = 0;
  for (const char byte : CfValueAs<std::string>(string, "CFStringGetLength")) {
    const auto value = static_cast<unsigned char>(byte);
    // A character of four bytes has two units. Continuation bytes count nothing.
    if ((value & 0xc0) != 0x80) units += value >= 0xf0 ? 2 : 1;
  }
  return units;
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding) { return length * 3; }

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding encoding) {
  const std::string& text = CfValueAs<std::string>(string, "CFStringGetCString");
  return encoding == kCFStringEncodingUTF8 && StoreText(text, buffer, size);
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value) {
  const CfNumber& held = CfValueAs<CfNumber>(number, "CFNumberGetValue");
  if (type != kCFNumberSInt64Type) {
    StopProgram("CFNumberGetValue: type " + std::to_string(type) + " is not known here");
  }
  const std::int64_t whole = WholeOf(held);
  std::memcpy(value, &whole, sizeof(whole));
  return !held.isReal || static_cast<double>(whole) == held.real;
}

Boolean CFNumberIsFloatType(CFNumberRef number) {
  return CfValueAs<CfNumber>(number, "CFNumberIsFloatType").isReal;
}

Boolean CFBooleanGetValue(CFBooleanRef boolean) {
  return CfValueAs<bool>(boolean, "CFBooleanGetValue");
}

CFIndex CFArrayGetCount(CFArrayRef array) {
  return static_cast<CFIndex>(CfValueAs<CfArray>(array, "CFArrayGetCount").values.size());
}

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
  const auto& values = CfValueAs<CfArray>(array, "CFArrayGetValueAtIndex").values;
  return values.at(static_cast<std::size_t>(index));
}

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex length) {
  return static_cast<CFDataRef>(MakeCfObject(CfData(bytes, bytes + length)));
}

const UInt8* CFDataGetBytePtr(CFDataRef data) {
  return CfValueAs<CfData>(data, "CFDataGetBytePtr").data();
}

CFIndex CFDataGetLength(CFDataRef data) {
  return static_cast<CFIndex>(CfValueAs<CfData>(data, "CFDataGetLength").size());
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) {
  return static_cast<CFIndex>(
      CfValueAs<CfDictionary>(dictionary, "CFDictionaryGetCount").values.size());
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
  const auto& values = CfValueAs<CfDictionary>(dictionary, "CFDictionaryGetValue").values;
  const auto found = values.find(CfValueAs<std::string>(key, "CFDictionaryGetValue"));
  return found == values.end() ? nullptr : found->second;
}

void CFDictionaryApplyFunction(CFDictionaryRef dictionary,
                               CFDictionaryApplierFunction CF_NOESCAPE applier, void* context) {
  const auto& held = CfValueAs<CfDictionary>(dictionary, "CFDictionaryApplyFunction");
  for (const auto& [key, value] : held.values) {
    const CFTypeRef name = MakeCfObject(key);
    applier(name, value, context);
    ReleaseCfObject(name);
  }
}

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef, CFStringRef path, CFURLPathStyle style,
                                       Boolean) {
  const std::string& text = CfValueAs<std::string>(path, "CFURLCreateWithFileSystemPath");
  if (style != kCFURLPOSIXPathStyle || text.empty()) return nullptr;
  return static_cast<CFURLRef>(MakeCfObject(CfUrl{text}));
}

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean, UInt8* buffer, CFIndex size) {
  const CfUrl& held = CfValueAs<CfUrl>(url, "CFURLGetFileSystemRepresentation");
  return StoreText(held.path, reinterpret_cast<char*>(buffer), size);
}

CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef, CFDataRef data, CFOptionFlags,
                                               CFPropertyListFormat*, CFErrorRef* error) {
  if (error) *error = nullptr;
  const CfData& bytes = CfValueAs<CfData>(data, "CFPropertyListCreateWithData");
  const PropertyList list =
      ReadPropertyList({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  return list ? CfFromPropertyList(list.get()) : nullptr;
}
