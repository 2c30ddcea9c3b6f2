#include <CoreFoundation/CoreFoundation.h>
#include <plist/plist.h>

#include "platform/CfText.h"
#include "platform/compat/LiveObjects.h"
#include "support/PropertyListText.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Tests;
using namespace Norvik::Platform;

CfRef<CFPropertyListRef> Read(const std::string& bytes) {
  const CfRef<CFDataRef> data(CFDataCreate(kCFAllocatorDefault,
                                           reinterpret_cast<const UInt8*>(bytes.data()),
                                           static_cast<CFIndex>(bytes.size())));
  return CfRef<CFPropertyListRef>(CFPropertyListCreateWithData(
      kCFAllocatorDefault, data.Get(), kCFPropertyListImmutable, nullptr, nullptr));
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

/// What the calls for its type return for a value; a number that is not exactly that has a mark.
std::string TextOf(CFTypeRef value) {
  const CFTypeID type = CFGetTypeID(value);
  if (type == CFStringGetTypeID()) return Utf8Of(static_cast<CFStringRef>(value));
  if (type == CFDataGetTypeID()) {
    const auto data = static_cast<CFDataRef>(value);
    return {CFDataGetBytePtr(data), CFDataGetBytePtr(data) + CFDataGetLength(data)};
  }
  if (type != CFNumberGetTypeID()) return "of another type";
  std::int64_t number = 0;
  const auto exact =
      CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt64Type, &number);
  return std::to_string(number) + (exact ? "" : "~");
}

TEST(CoreFoundation, ReadsEveryTypeOfAPropertyListInBothForms) {
  const std::string xml = PropertyListOf(R"({"text": "Größe", "whole": -5, "real": 2.5,
      "huge": {"$real": "1e30"}, "data": {"$data": "AAEC"}, "on": true,
      "date": {"$date": "2001-01-02T00:00:00Z"}, "list": ["a", false]})");
  const std::pair<const char*, std::string> values[] = {{"text", "Größe"},
                                                        {"whole", "-5"},
                                                        {"real", "2~"},
                                                        {"on", "of another type"},
                                                        {"data", {"\0\1\2", 3}},
                                                        {"huge", "9223372036854775807~"},
                                                        {"date", "of another type"},
                                                        {"list", "of another type"}};
  for (const std::string& form : {xml, Binary(xml)}) {
    auto list = Read(form);
    ASSERT_TRUE(list);
    ASSERT_EQ(CFGetTypeID(list.Get()), CFDictionaryGetTypeID());
    const auto root = static_cast<CFDictionaryRef>(list.Get());
    EXPECT_EQ(CFDictionaryGetCount(root), 8);
    const auto value = [&](const char* key) {
      return CFDictionaryGetValue(root, CfTextOf(key).Get());
    };
    for (const auto& [key, text] : values) EXPECT_EQ(TextOf(value(key)), text) << key;
    EXPECT_EQ(value("absent"), nullptr);
    char small[7];
    const auto text = static_cast<CFStringRef>(value("text"));
    EXPECT_EQ(CFStringGetLength(text), 5);
    EXPECT_FALSE(CFStringGetCString(text, small, sizeof(small), kCFStringEncodingUTF8));
    const CfRef<CFTypeRef> retained(CFRetain(text));
    list.Reset();
    EXPECT_EQ(TextOf(retained.Get()), "Größe");
    EXPECT_EQ(CountLiveObjects().coreFoundation, 1u);
  }
  EXPECT_EQ(CountLiveObjects(), LiveObjects());
}

TEST(CoreFoundationDeathTest, AFaultyUseEndsTheProgramAndNamesTheObject) {
  const auto released = [] { return CfTextOf("Serial Number").Get(); };
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
           value = CFDictionaryGetValue(static_cast<CFDictionaryRef>(root.Get()),
                                        CfTextOf("key").Get());
         }
         CFGetTypeID(value);
       },
       "CFGetTypeID: CFString \"inner\" was released already"},
      {"of another type",
       [] { CFDataGetLength(reinterpret_cast<CFDataRef>(CfTextOf("text").Release())); },
       "CFDataGetLength: does not take CFString \"text\""},
      {"null", [] { CFRelease(nullptr); }, "CFRelease: the object is null"},
  };
  for (const auto& row : cases) EXPECT_DEATH(row.use(), row.message) << row.name;
}

// A binary list stands there in three pieces: its objects, where each begins, and the trailer.
TEST(CoreFoundation, HostileListsAreNoLists) {
  for (const Json& row : DataOf("platform/hostile-lists.json")) {
    EXPECT_EQ(bool(Read(row["bytes"].get<Bytes>())), row["isList"].get<bool>()) << row["name"];
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
