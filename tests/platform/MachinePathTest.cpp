#include "platform/MachinePath.h"

#include <gtest/gtest.h>

namespace {

using Norvik::Platform::MachinePath;
using Norvik::Platform::SetMachineRoot;

TEST(MachinePath, IsTheIdentityWithoutARecording) {
  EXPECT_EQ(MachinePath("/etc/hosts"), "/etc/hosts");
  EXPECT_EQ(MachinePath("/etc/../etc/hosts"), "/etc/../etc/hosts");
}

TEST(MachinePath, StaysBelowTheRecordingThatIsInForce) {
  SetMachineRoot("/recordings/mini");
  const std::string plain = MachinePath("/etc/cups/printers.conf");
  const std::string climbing = MachinePath("/../../etc/hosts");
  const std::string relative = MachinePath("work/file");
  SetMachineRoot("");
  EXPECT_EQ(plain, "/recordings/mini/etc/cups/printers.conf");
  EXPECT_EQ(climbing, "/recordings/mini/etc/hosts");
  EXPECT_EQ(relative, "work/file");
  EXPECT_EQ(MachinePath("/etc/hosts"), "/etc/hosts");
}

}  // namespace
