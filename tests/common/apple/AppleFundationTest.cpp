#include "common/apple/AppleFundation.h"

#include "common/text/Text.h"
#include "platform/CfText.h"
#include "platform/compat/LiveObjects.h"
#include "support/MacRecording.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Tests;
using namespace Norvik::Platform;
using Norvik::Common::AppleFundation;
using Norvik::Common::ToUtf8;

CfRef<CFPropertyListRef> ReadFile(const fs::path& path) {
  const CfRef<CFURLRef> url(CFURLCreateWithFileSystemPath(
      kCFAllocatorDefault, CfTextOf(path.c_str()).Get(), kCFURLPOSIXPathStyle, false));
  return CfRef<CFPropertyListRef>(AppleFundation::CreateMyPropertyListFromFile(url.Get()));
}

TEST(AppleFundation, ReadsTextsAndNumbersOfAFile) {
  MacRecording files;
  files.Add("a.plist", PropertyListOf(R"({"Größe": "groß", "size": 8000000000, "below": -1,
      "real": 2.5, "data": {"$data": "AAEC"}, "on": true})"));
  {
    const auto list = ReadFile(files.Path() / "a.plist");
    ASSERT_TRUE(list);
    auto root = static_cast<CFDictionaryRef>(list.Get());
    CFDictionaryRef none = nullptr;
    const std::tuple<CFDictionaryRef, const char*, const char*, unsigned long long> cases[] = {
        {root, "Größe", "groß", 0}, {root, "size", "", 8000000000}, {root, "below", "", ~0ULL},
        {root, "real", "", 2},      {root, "data", "", 0},          {root, "on", "", 0},
        {root, "absent", "", 0},    {none, "size", "", 0},
    };
    for (auto [dictionary, key, text, number] : cases) {
      EXPECT_EQ(ToUtf8(AppleFundation::GetCFDictionaryStringProperty(dictionary, key)), text)
          << key;
      EXPECT_EQ(AppleFundation::GetCFDictionaryIntergerProperty(dictionary, key), number) << key;
    }
  }
  for (const char* const name : {"absent.plist", ".", "empty.plist"}) {
    EXPECT_FALSE(ReadFile(files.Add("empty.plist", "").Path() / name)) << name;
  }
  EXPECT_FALSE(AppleFundation::CreateMyPropertyListFromFile(nullptr));
  EXPECT_EQ(CountLiveObjects(), LiveObjects());
}

TEST(AppleFundation, FindsTheFirstOfAClassBelowAnEntry) {
  MacRecording recording;
  recording.AddRegistry(Json::parse(R"(["Root", {}, ["A", {}, ["B", {}, ["Wanted", {"n": "1"}]]],
      ["Wanted"], ["C", {}, ["Derived", {"IORegistryEntryName": "third",
                                          "IOObjectInherits": ["Wanted"]}]]])"));
  recording.PutInForce();
  const auto found = [](const char* below, const char* className) -> std::string {
    IoObject entry(IOServiceGetMatchingService(MACH_PORT_NULL, IOServiceMatching(below)));
    const IoObject child(AppleFundation::FindRecursiveChildren(entry.Ref(), className));
    if (!child) return "none";
    IoObject parent;
    IORegistryEntryGetParentEntry(child.Get(), kIOServicePlane, parent.Out());
    io_name_t name = "";
    IORegistryEntryGetName(parent.Get(), name);
    return name;
  };
  EXPECT_EQ(found("Root", "Wanted"), "B");
  EXPECT_EQ(found("C", "Wanted"), "C");
  EXPECT_EQ(found("B", "A"), "none");
  EXPECT_EQ(found("Wanted", "Wanted"), "none");
  EXPECT_EQ(found("Nowhere", "Wanted"), "none");
  recording.End();
  EXPECT_EQ(CountLiveObjects(), LiveObjects());
}

}  // namespace
