#include "module/Inventory/HardwareSection.h"

#include <gtest/gtest.h>

#include "support/LogCapture.h"
#include "support/MacRecording.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

class HardwareSectionTest : public testing::TestWithParam<const char*> {};

TEST_P(HardwareSectionTest, ReadsNoReportThatRepeatsItselfWithoutMeasure) {
  std::string report = "<plist>";
  for (int i = 0; i < 200000; ++i) report += GetParam();
  report += "</plist>";
  MacRecording recording;
  recording.AddAnswer("system_profiler -xml SPUSBDataType", report).PutInForce();
  const auto previous = boost::filesystem::current_path();
  boost::filesystem::current_path(recording.Path());
  const LogCapture log;
  std::list<HardwareInfo> devices;
  HardwareSection().GetInfo(devices);
  boost::filesystem::current_path(previous);
  EXPECT_TRUE(log.Holds(2, "Attempt to read SPUSBDataType failed"));
}

INSTANTIATE_TEST_SUITE_P(Repeated, HardwareSectionTest, testing::Values("<a>", "a line\n"));

}  // namespace
}  // namespace Norvik::KOB
