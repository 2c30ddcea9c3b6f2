#include "module/Inventory/VideoSection.h"

#include <gtest/gtest.h>

#include "platform/ScopedHandle.h"
#include "platform/compat/LiveObjects.h"
#include "support/LogCapture.h"
#include "support/MacRecording.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

TEST(VideoSection, TheAidsListAndShowEveryAccelerator) {
  MacRecording recording;
  recording.AddRegistry(Json::parse(R"(["Root", {},
      ["A", {"IOObjectInherits": ["IOAccelerator"], "PerformanceStatistics": {
          "GPU Core Utilization": 125000000, "vramFreeBytes": 3000, "vramUsedBytes": 1000}}],
      ["A", {"IOObjectInherits": ["IOAccelerator"], "PerformanceStatistics": {
          "GPU Core Utilization": 5, "vramFreeBytes": "none"}}],
      ["A", {"IOObjectInherits": ["IOAccelerator"]}], ["P"]])"));
  recording.PutInForce();
  LogCapture log;
  testing::internal::CaptureStderr();
  unsigned int parent = IO_OBJECT_NULL;
  std::list<unsigned int> handles;
  GetGPUList(parent, handles);
  EXPECT_EQ(handles.size(), 3u);
  for (const unsigned int handle : handles) IOObjectRelease(handle);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "GPU: 12.500% VRAM: 25.000%\n");
  EXPECT_TRUE(log.Holds(7, ">>"));
  EXPECT_EQ(Platform::CountLiveObjects(), Platform::LiveObjects());
}

}  // namespace
}  // namespace Norvik::KOB
