#include <IOKit/IOKitLib.h>
#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/ScopedHandle.h"
#include "platform/compat/LiveObjects.h"
#include "support/MacRecording.h"

namespace {

using namespace Norvik::Tests;
using Norvik::Platform::CfRef;
using Norvik::Platform::CountLiveObjects;
using Norvik::Platform::IoObject;
using Norvik::Platform::LiveObjects;
using testing::ElementsAre;
using testing::IsEmpty;

const Json TREE = Json::parse(R"(
    ["Root", {"IORegistryEntryPlanes": ["IOService", "IODeviceTree"]},
      ["Bridge", {"IORegistryEntryName": "bridge"},
        ["Chip", {"IORegistryEntryName": "first",
                  "IORegistryEntryPlanes": ["IOService", "IODeviceTree"]},
          ["Fast", {"IORegistryEntryName": "f", "IOObjectInherits": ["Engine"]}]],
        ["Chip", {"IORegistryEntryName": "second"}, ["Engine", {"IORegistryEntryName": "e"}]]],
      ["Port", {"IORegistryEntryName": "port",
                "IORegistryEntryPlanes": ["IOService", "IODeviceTree"]}]])");

std::string NameOf(const IoObject& entry) {
  io_name_t name = "";
  IORegistryEntryGetName(entry.Get(), name);
  return name;
}

std::vector<std::string> NamesIn(const IoObject& iterator) {
  std::vector<std::string> names;
  while (const IoObject entry{IOIteratorNext(iterator.Get())}) names.push_back(NameOf(entry));
  return names;
}

IoObject Service(const char* className) {
  return IoObject(IOServiceGetMatchingService(kIOMasterPortDefault, IOServiceMatching(className)));
}

std::vector<std::string> Services(const char* className) {
  IoObject iterator;
  IOServiceGetMatchingServices(kIOMasterPortDefault, IOServiceMatching(className), iterator.Out());
  return NamesIn(iterator);
}

std::vector<std::string> Below(const char* className, const char* plane, IOOptionBits options) {
  IoObject iterator;
  IORegistryEntryCreateIterator(Service(className).Get(), plane, options, iterator.Out());
  return NamesIn(iterator);
}

class RegistryTest : public testing::Test {
 protected:
  ~RegistryTest() override {
    recording.End();
    EXPECT_EQ(CountLiveObjects(), LiveObjects());
  }

  void Use(const Json& root) {
    recording.AddRegistry(root);
    recording.PutInForce();
  }

  MacRecording recording;
};

TEST_F(RegistryTest, MatchesAClassAndWhatInheritsFromIt) {
  Use(TREE);
  EXPECT_THAT(Services("Engine"), ElementsAre("f", "e"));
  EXPECT_THAT(Services("Fast"), ElementsAre("f"));
  EXPECT_THAT(Services("None"), IsEmpty());
  EXPECT_EQ(NameOf(Service("Chip")), "first");
  EXPECT_TRUE(IOObjectConformsTo(Service("Fast").Get(), "Engine"));
  EXPECT_FALSE(IOObjectConformsTo(Service("Chip").Get(), "Fast"));
}

TEST_F(RegistryTest, WalksUpAndDownInAPlane) {
  Use(TREE);
  EXPECT_THAT(Below("Root", "IOService", 0), ElementsAre("bridge", "port"));
  EXPECT_THAT(Below("Root", "IOService", kIORegistryIterateRecursively),
              ElementsAre("bridge", "first", "f", "second", "e", "port"));
  // What is not in the plane gives its place to what stands below it.
  EXPECT_THAT(Below("Root", "IODeviceTree", 0), ElementsAre("first", "port"));
  EXPECT_THAT(Below("Bridge", "IODeviceTree", 0), IsEmpty());
  EXPECT_THAT(Below("Root", "IOPower", 0), IsEmpty());

  IoObject child;
  EXPECT_EQ(IORegistryEntryGetChildEntry(Service("Bridge").Get(), "IOService", child.Out()), 0);
  EXPECT_EQ(NameOf(child), "first");
  IoObject parent;
  EXPECT_EQ(IORegistryEntryGetParentEntry(child.Get(), "IOService", parent.Out()), 0);
  EXPECT_EQ(NameOf(parent), "bridge");
  EXPECT_EQ(IORegistryEntryGetParentEntry(child.Get(), "IODeviceTree", parent.Out()), 0);
  EXPECT_EQ(NameOf(parent), "Root");
  EXPECT_NE(IORegistryEntryGetParentEntry(parent.Get(), "IOService", child.Out()), 0);
  EXPECT_NE(IORegistryEntryGetChildEntry(Service("Port").Get(), "IOService", child.Out()), 0);
  EXPECT_FALSE(child);
}

TEST_F(RegistryTest, PropertiesAreThoseOfTheEntryAndNotOfTheTree) {
  Use({"Disk", {{"Model", "M1"}, {"IORegistryEntryID", 4}}, {"Part", Json::object()}});
  const IoObject disk = Service("Disk");
  CFMutableDictionaryRef stored = nullptr;
  ASSERT_EQ(IORegistryEntryCreateCFProperties(disk.Get(), &stored, kCFAllocatorDefault, 0), 0);
  const CfRef<CFDictionaryRef> properties(stored);
  EXPECT_EQ(CFDictionaryGetCount(properties.Get()), 1);
  for (const auto& [key, exists] : {std::pair("Model", true), std::pair("Serial", false),
                                    std::pair("IORegistryEntryChildren", false)}) {
    const CfRef<CFStringRef> name(
        CFStringCreateWithCString(kCFAllocatorDefault, key, kCFStringEncodingUTF8));
    const CfRef<CFTypeRef> value(
        IORegistryEntryCreateCFProperty(disk.Get(), name.Get(), kCFAllocatorDefault, 0));
    EXPECT_EQ(bool(value), exists) << key;
  }
}

TEST_F(RegistryTest, WhatIsNoRegistryIsEmpty) {
  for (const std::string& content :
       {std::string(), std::string("garbage"), PropertyListOf("\"Engine\""),
        PropertyListOf(RegistryEntry(TREE)).substr(0, 900),
        PropertyListOf(R"({"IOObjectClass": ["Engine"], "IORegistryEntryChildren": "Engine"})")}) {
    recording.Add("ioregistry.plist", content);
    recording.PutInForce();
    EXPECT_THAT(Services("Engine"), IsEmpty()) << content.substr(0, 300);
    recording.End();
  }
  EXPECT_EQ(IOIteratorNext(IO_OBJECT_NULL), IO_OBJECT_NULL);
}

TEST_F(RegistryTest, AFaultyUseEndsTheProgramAndNamesTheEntry) {
  Use(TREE);
  const struct {
    std::function<void()> use;
    const char* message;
  } cases[] = {
      {[] { IOObjectRelease(Service("Port").Get()); },
       "IOObjectRelease: the entry \"port\" of class Port was released already"},
      {[] {
         const io_registry_entry_t released = Service("Port").Get();
         io_name_t name;
         IORegistryEntryGetName(released, name);
       },
       "IORegistryEntryGetName: the entry \"port\" of class Port was released already"},
      {[] { IOIteratorNext(Service("Port").Release()); },
       "IOIteratorNext: does not take the entry"},
      {[] { IOObjectRelease(77); }, "the handle does not exist"},
  };
  for (const auto& row : cases) EXPECT_DEATH(row.use(), row.message) << row.message;
}

}  // namespace
