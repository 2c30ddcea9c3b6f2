#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <plist/plist.h>

#include <cstdint>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "platform/ScopedHandle.h"
#include "platform/compat/LiveObjects.h"
#include "support/Cases.h"
#include "support/PropertyListText.h"

namespace {

using namespace Norvik::Tests;
using Norvik::Platform::CfRef;
using Norvik::Platform::CountLiveObjects;
using Norvik::Platform::LiveObjects;

CfRef<CFPropertyListRef> Read(const std::string& bytes) {
  const CfRef<CFDataRef> data(CFDataCreate(kCFAllocatorDefault,
                                           reinterpret_cast<const UInt8*>(bytes.data()),
                                           static_cast<CFIndex>(bytes.size())));
  return CfRef<CFPropertyListRef>(CFPropertyListCreateWithData(
      kCFAllocatorDefault, data.Get(), kCFPropertyListImmutable, nullptr, nullptr));
}

CfRef<CFStringRef> String(const char* text) {
  return CfRef<CFStringRef>(
      CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingUTF8));
}

/// The same list in the binary form.
std::string Binary(const std::string& xml) {
  plist_t list = nullptr;
  plist_from_xml(xml.data(), static_cast<std::uint32_t>(xml.size()), &list);
  char* bytes = nullptr;
  std::uint32_t length = 0;
  plist_to_bin(list, &bytes, &length);
  const std::string binary(bytes, length);
  plist_free(list);
  ::free(bytes);
  return binary;
}

TEST(CoreFoundation, ReadsEveryTypeOfAPropertyListInBothForms) {
  const std::string xml = PropertyListOf(R"({"text": "Größe", "whole": -5, "real": 2.5,
      "huge": {"$real": "1e30"}, "data": {"$data": "AAEC"}, "on": true,
      "date": {"$date": "2001-01-02T00:00:00Z"}, "list": ["a", false]})");
  for (const std::string& form : {xml, Binary(xml)}) {
    auto list = Read(form);
    ASSERT_TRUE(list);
    ASSERT_EQ(CFGetTypeID(list.Get()), CFDictionaryGetTypeID());
    const auto root = static_cast<CFDictionaryRef>(list.Get());
    EXPECT_EQ(CFDictionaryGetCount(root), 8);
    const auto value = [&](const char* key) {
      return CFDictionaryGetValue(root, String(key).Get());
    };
    for (const char* const key : {"on", "date", "list"}) {
      EXPECT_GT(CFGetTypeID(value(key)), CFNumberGetTypeID()) << key;
    }
    char text[16];
    const auto string = static_cast<CFStringRef>(value("text"));
    EXPECT_EQ(CFStringGetLength(string), 5);
    EXPECT_TRUE(CFStringGetCString(string, text, sizeof(text), kCFStringEncodingUTF8));
    EXPECT_STREQ(text, "Größe");
    EXPECT_FALSE(CFStringGetCString(string, text, 7, kCFStringEncodingUTF8));
    for (const auto& [key, stored, isExact] : {std::tuple("whole", -5LL, true),
                                               {"real", 2LL, false},
                                               {"huge", 0x7fffffffffffffffLL, false}}) {
      std::int64_t number = 0;
      EXPECT_EQ(
          CFNumberGetValue(static_cast<CFNumberRef>(value(key)), kCFNumberSInt64Type, &number),
          isExact);
      EXPECT_EQ(number, stored) << key;
    }
    const auto data = static_cast<CFDataRef>(value("data"));
    ASSERT_EQ(CFDataGetLength(data), 3);
    EXPECT_EQ(CFDataGetBytePtr(data)[2], 2);
    EXPECT_EQ(value("absent"), nullptr);
    const CfRef<CFTypeRef> retained(CFRetain(data));
    list.Reset();
    EXPECT_EQ(CFGetTypeID(retained.Get()), CFDataGetTypeID());
    EXPECT_EQ(CountLiveObjects().coreFoundation, 1u);
  }
  EXPECT_EQ(CountLiveObjects(), LiveObjects());
}

TEST(CoreFoundationDeathTest, AFaultyUseEndsTheProgramAndNamesTheObject) {
  const auto released = [] { return String("Serial Number").Get(); };
  const struct {
    const char* name;
    std::function<void()> use;
    const char* message;
  } cases[] = {
      {"released twice", [&] { CFRelease(released()); },
       "CFRelease: CFString \"Serial Number\" was released already"},
      {"used after its release", [&] { CFStringGetLength(released()); },
       "CFStringGetLength: CFString \"Serial Number\" was released already"},
      {"a value used after its dictionary",
       [] {
         const void* value = nullptr;
         {
           const auto root = Read(PropertyListOf(R"({"key": "inner"})"));
           value =
               CFDictionaryGetValue(static_cast<CFDictionaryRef>(root.Get()), String("key").Get());
         }
         CFGetTypeID(value);
       },
       "CFGetTypeID: CFString \"inner\" was released already"},
      {"of another type",
       [] { CFDataGetLength(reinterpret_cast<CFDataRef>(String("text").Release())); },
       "CFDataGetLength: does not take CFString \"text\""},
      {"null", [] { CFRelease(nullptr); }, "CFRelease: the object is null"},
  };
  for (const auto& row : cases) EXPECT_DEATH(row.use(), row.message) << row.name;
}

/// A binary list from its objects; references are of one byte, the first object is the root.
std::string BinaryOf(const std::vector<Bytes>& objects) {
  std::string bytes = "bplist00";
  std::string offsets;
  for (const auto& object : objects) {
    offsets += std::string{static_cast<char>(bytes.size() >> 8), static_cast<char>(bytes.size())};
    bytes += object;
  }
  const std::size_t table = bytes.size();
  bytes += offsets + std::string(6, '\0') + "\2\1" + std::string(7, '\0') +
           static_cast<char>(objects.size()) + std::string(8 + 6, '\0') +
           std::string{static_cast<char>(table >> 8), static_cast<char>(table)};
  return bytes;
}

/// The bytes of a row: as they stand, a value in a list, or marks repeated, then others as often.
std::string BytesOf(const Json& row) {
  if (row.contains("bytes")) return row["bytes"].get<Bytes>();
  if (row.contains("value")) return PropertyList(row["value"].get<Bytes>());
  if (row.contains("objects")) return BinaryOf(row["objects"].get<std::vector<Bytes>>());
  std::string text;
  const int times = row["times"];
  for (const char* part : {"opened", "closed"}) {
    for (int i = 0; i < times; ++i) text += row[part].get_ref<const std::string&>();
  }
  return PropertyList(text);
}

TEST(CoreFoundation, HostileListsAreNoLists) {
  for (const Json& row : DataOf("platform/hostile-lists.json")) {
    EXPECT_EQ(bool(Read(BytesOf(row))), row["isList"].get<bool>()) << row["name"];
  }
  EXPECT_EQ(CountLiveObjects(), LiveObjects());
}

TEST(CoreFoundation, AListThatIsCutOrDamagedAnywhereDoesNoHarm) {
  const std::string xml = PropertyListOf(R"({"a": ["b", 1], "c": {"$data": "AAEC"}})");
  for (const std::string& whole : {xml, Binary(xml)}) {
    for (std::size_t at = 0; at < whole.size(); ++at) {
      Read(whole.substr(0, at));
      for (const char byte : {'\0', '\x7f', '\xff', '<', '/'}) {
        std::string damaged = whole;
        damaged[at] = byte;
        Read(damaged);
      }
    }
  }
  EXPECT_EQ(CountLiveObjects(), LiveObjects());
}

}  // namespace
