#include "host/PropertyListJson.h"

#include <boost/algorithm/string/predicate.hpp>
#include <cstdint>

#include "platform/CfText.h"
#include "platform/ScopedHandle.h"

namespace Norvik::Host {

namespace {

using Json = nlohmann::json;
using Platform::CfRef;
using Platform::Utf8Of;

Json ValueOf(CFTypeRef value);

void AddEntry(const void* key, const void* value, void* object) {
  (*static_cast<Json*>(object))[Utf8Of(static_cast<CFStringRef>(key))] = ValueOf(value);
}

Json ObjectOf(CFDictionaryRef dictionary) {
  Json object = Json::object();
  CFDictionaryApplyFunction(dictionary, &AddEntry, &object);
  return object;
}

Json ListOf(CFArrayRef array) {
  Json list = Json::array();
  for (CFIndex i = 0; i < CFArrayGetCount(array); ++i) {
    list.push_back(ValueOf(CFArrayGetValueAtIndex(array, i)));
  }
  return list;
}

Json DataOf(CFDataRef data) {
  const UInt8* const bytes = CFDataGetBytePtr(data);
  return Json::binary({bytes, bytes + CFDataGetLength(data)});
}

Json NumberOf(CFNumberRef number) {
  std::int64_t whole = 0;
  const bool fits = CFNumberGetValue(number, kCFNumberSInt64Type, &whole);
  return fits && !CFNumberIsFloatType(number) ? Json(whole) : Json();
}

Json ValueOf(CFTypeRef value) {
  const CFTypeID type = CFGetTypeID(value);
  if (type == CFDictionaryGetTypeID()) return ObjectOf(static_cast<CFDictionaryRef>(value));
  if (type == CFArrayGetTypeID()) return ListOf(static_cast<CFArrayRef>(value));
  if (type == CFStringGetTypeID()) return Utf8Of(static_cast<CFStringRef>(value));
  if (type == CFNumberGetTypeID()) return NumberOf(static_cast<CFNumberRef>(value));
  if (type == CFDataGetTypeID()) return DataOf(static_cast<CFDataRef>(value));
  if (type != CFBooleanGetTypeID()) return nullptr;
  return CFBooleanGetValue(static_cast<CFBooleanRef>(value)) != 0;
}

/// Null for bytes that are no property list.
CfRef<CFPropertyListRef> PropertyListFrom(const std::string& bytes) {
  const CfRef<CFDataRef> data(CFDataCreate(kCFAllocatorDefault,
                                           reinterpret_cast<const UInt8*>(bytes.data()),
                                           static_cast<CFIndex>(bytes.size())));
  if (!data) return {};
  return CfRef<CFPropertyListRef>(CFPropertyListCreateWithData(
      kCFAllocatorDefault, data.Get(), kCFPropertyListImmutable, nullptr, nullptr));
}

}  // namespace

bool IsPropertyList(const std::string& bytes) {
  constexpr std::size_t PROLOGUE = 512;
  return boost::starts_with(bytes, "bplist") ||
         bytes.substr(0, PROLOGUE).find("<plist") != std::string::npos;
}

std::optional<Json> JsonOfPropertyList(const std::string& bytes) {
  const CfRef<CFPropertyListRef> list = PropertyListFrom(bytes);
  if (!list) return {};
  return ValueOf(list.Get());
}

}  // namespace Norvik::Host
