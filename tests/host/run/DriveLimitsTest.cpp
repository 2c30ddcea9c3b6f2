#include "host/run/DriveLimits.h"

#include "support/Test.h"

namespace {

using namespace Norvik::Host;
using namespace Norvik::Tests;

TEST(DriveLimits, AreOfOneUserAndOfAllUntilAnyUserHasTheDrivesRemoved) {
  DriveLimits limits;
  const auto report = [&](uid_t user, const std::string& archive = "x") {
    return limits.ReasonToDrop(user, {1, 32001, "getNetworkDrives", archive});
  };
  EXPECT_EQ(report(1, std::string(8193, 'x')), "it has 8193 bytes, where at most 8192 are allowed");
  for (std::size_t i = 0; i < DriveLimits::DRIVES_OF_USER; ++i) ASSERT_EQ(report(1), "") << i;
  EXPECT_EQ(report(1), "at most 512 of one user are stored");
  for (uid_t i = 0; i < 3584; ++i) ASSERT_EQ(report(2 + i % 100), "") << i;
  EXPECT_EQ(report(200), "at most 4096 of all users are stored");
  EXPECT_EQ(limits.ReasonToDrop(200, {1, 1066, "truncateNetDrivesTable", ""}), "");
  EXPECT_EQ(report(1), "");
}

}  // namespace
