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

TEST(CoreFoundation, AValueOutlivesItsListIfItIsRetainedAndATextFillsNoSmallerBuffer) {
  const std::string xml = PropertyListOf(R"({"text": "Größe", "huge": {"$real": "1e30"}})");
  for (const std::string& form : {xml, Binary(xml)}) {
    auto list = Read(form);
    ASSERT_TRUE(list);
    const auto value = [&](const char* key) {
      return CFDictionaryGetValue(static_cast<CFDictionaryRef>(list.Get()), CfTextOf(key).Get());
    };
    std::int64_t number = 0;
    EXPECT_FALSE(
        CFNumberGetValue(static_cast<CFNumberRef>(value("huge")), kCFNumberSInt64Type, &number));
    const auto text = static_cast<CFStringRef>(value("text"));
    const CfRef<CFTypeRef> retained(CFRetain(text));
    list.Reset();
    EXPECT_EQ(Utf8Of(text), "Größe");
    char small[7];
    EXPECT_FALSE(CFStringGetCString(text, small, sizeof(small), kCFStringEncodingUTF8));
    EXPECT_EQ(CountLiveObjects().coreFoundation, 1u);
  }
  EXPECT_EQ(CountLiveObjects(), LiveObjects());
}

TEST(CoreFoundationDeathTest, AFaultyUseEndsTheProgramAndNamesTheObject) {
  const auto released = [] { return CfTextOf("Serial Number").Get(); };
  const std::string message = ": CFString \"Serial Number\" was released already";
  EXPECT_DEATH(CFRelease(released()), "CFRelease" + message);
  EXPECT_DEATH(CFStringGetLength(released()), "CFStringGetLength" + message);
  const auto valueOfReleased = [] {
    const auto root = Read(PropertyListOf(R"({"key": "inner"})"));
    return CFDictionaryGetValue(static_cast<CFDictionaryRef>(root.Get()), CfTextOf("key").Get());
  };
  EXPECT_DEATH(CFGetTypeID(valueOfReleased()), "CFGetTypeID: CFString \"inner\" was released");
  EXPECT_DEATH(CFDataGetLength(reinterpret_cast<CFDataRef>(CfTextOf("text").Release())),
               "CFDataGetLength: does not take CFString \"text\"");
  EXPECT_DEATH(CFRelease(nullptr), "CFRelease: the object is null");
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
