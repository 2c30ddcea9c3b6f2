#include <IOKit/IOKitLib.h>

#include "platform/CfText.h"
#include "platform/compat/LiveObjects.h"
#include "support/MacRecording.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Tests;
using namespace Norvik::Platform;

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

TextList NamesIn(const IoObject& iterator) {
  TextList names;
  while (const IoObject entry{IOIteratorNext(iterator.Get())}) names.push_back(NameOf(entry));
  return names;
}

IoObject Service(const char* className) {
  return IoObject(IOServiceGetMatchingService(MACH_PORT_NULL, IOServiceMatching(className)));
}

TextList Services(const char* className) {
  IoObject iterator;
  IOServiceGetMatchingServices(MACH_PORT_NULL, IOServiceMatching(className), iterator.Out());
  return NamesIn(iterator);
}

TextList Below(const char* className, const char* plane, IOOptionBits options) {
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
  EXPECT_EQ(NameOf(Service("Chip")), "first");
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

  const auto step = [](auto call, const char* from, const char* plane) {
    IoObject found;
    const bool isFound = call(Service(from).Get(), plane, found.Out()) == 0;
    EXPECT_EQ(bool(found), isFound) << from;
    return isFound ? NameOf(found) : "none";
  };
  EXPECT_EQ(step(IORegistryEntryGetChildEntry, "Bridge", "IOService"), "first");
  EXPECT_EQ(step(IORegistryEntryGetChildEntry, "Port", "IOService"), "none");
  EXPECT_EQ(step(IORegistryEntryGetParentEntry, "Chip", "IOService"), "bridge");
  EXPECT_EQ(step(IORegistryEntryGetParentEntry, "Chip", "IODeviceTree"), "Root");
  EXPECT_EQ(step(IORegistryEntryGetParentEntry, "Root", "IOService"), "none");
}

TEST_F(RegistryTest, PropertiesAreThoseOfTheEntryAndNotOfTheTree) {
  Use({"Disk", {{"Model", "M1"}, {"IORegistryEntryID", 4}}, {"Part", Json::object()}});
  const IoObject disk = Service("Disk");
  CfRef<CFMutableDictionaryRef> properties;
  IORegistryEntryCreateCFProperties(disk.Get(), properties.Out(), kCFAllocatorDefault, 0);
  EXPECT_EQ(CFDictionaryGetCount(properties.Get()), 1);
  for (const char* const key : {"Model", "Serial", "IORegistryEntryChildren"}) {
    const CfRef<CFTypeRef> value(
        IORegistryEntryCreateCFProperty(disk.Get(), CfTextOf(key).Get(), kCFAllocatorDefault, 0));
    EXPECT_EQ(bool(value), key == std::string("Model")) << key;
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
  const io_registry_entry_t released = Service("Port").Get();
  EXPECT_DEATH(IOObjectRelease(released),
               "IOObjectRelease: the entry \"port\" of class Port was released already");
  io_name_t name;
  EXPECT_DEATH(IORegistryEntryGetName(released, name),
               "IORegistryEntryGetName: the entry \"port\"");
  EXPECT_DEATH(IOIteratorNext(Service("Port").Release()), "does not take the entry");
  EXPECT_DEATH(IOObjectRelease(77), "the handle does not exist");
}

}  // namespace
