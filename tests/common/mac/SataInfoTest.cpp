#include "common/mac/SataInfo.h"

#include <gmock/gmock.h>

#include "platform/ScopedHandle.h"
#include "platform/compat/LiveObjects.h"
#include "support/MacRecording.h"

namespace {

using namespace Norvik::Tests;
using namespace Norvik::Platform;

TEST(SataInfo, AppendsTheDevicesOfAllPortsInOrder) {
  MacRecording recording;
  const auto device = [](const char* name) {
    return Entry("IOAHCIDevice", {{"IORegistryEntryName", Text(name)}});
  };
  recording.AddRegistry(
      Entry("AppleACPIPCI", {},
            {Entry("AppleAHCI", {}, {Entry("Port", {}, {device("disk")}), Entry("Port", {})}),
             Entry("AppleAHCI", {}, {Entry("Port", {}, {device("drive")})})}));
  recording.PutInForce();
  std::list<unsigned int> handles = {IO_OBJECT_NULL};
  IoObject bus(
      IOServiceGetMatchingService(kIOMasterPortDefault, IOServiceMatching("AppleACPIPCI")));
  Norvik::Common::SataInfo::GetSataDevicesEntry(bus.Ref(), handles);
  std::vector<std::string> names;
  for (const unsigned int handle : handles) {
    const IoObject owner(handle);
    io_name_t name = "none";
    IORegistryEntryGetName(handle, name);
    names.push_back(name);
  }
  EXPECT_THAT(names, testing::ElementsAre("none", "disk", "drive"));
  bus.Reset();
  Norvik::Common::SataInfo::GetSataDevicesEntry(bus.Ref(), handles);
  EXPECT_EQ(handles.size(), 3u);
  EXPECT_EQ(CountLiveObjects(), LiveObjects());
}

}  // namespace
