#include "host/configuration/ManagedPreferences.h"

#include <boost/filesystem/operations.hpp>
#include <cstdint>
#include <iterator>
#include <stdexcept>

#include "common/files/TextFile.h"
#include "platform/CfText.h"
#include "platform/MachinePath.h"
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

void LeaveOutProfileKeys(Json& values) {
  if (!values.is_object()) return;
  for (auto item = values.begin(); item != values.end();) {
    item = item.key().rfind("Payload", 0) == 0 ? values.erase(item) : std::next(item);
  }
}

}  // namespace

Json ReadManagedPreferences() {
  const std::string file = Platform::MachinePath(MANAGED_PREFERENCES);
  boost::system::error_code unknown;
  if (boost::filesystem::status(file, unknown).type() == boost::filesystem::file_not_found) {
    return Json::object();
  }
  std::string bytes;
  try {
    bytes = Common::ReadTextFile(file);
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(std::string("cannot read the managed preferences ") + error.what());
  }
  const CfRef<CFPropertyListRef> list = PropertyListFrom(bytes);
  if (!list)
    throw std::runtime_error("managed preferences " + file + ": they are no property list");
  Json values = ValueOf(list.Get());
  LeaveOutProfileKeys(values);
  try {
    values.dump();
  } catch (const Json::type_error&) {
    throw std::runtime_error("managed preferences " + file + ": a text is not UTF-8");
  }
  return values;
}

std::string StateOfManagedPreferences() {
  try {
    return ReadManagedPreferences().dump();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

}  // namespace Norvik::Host
