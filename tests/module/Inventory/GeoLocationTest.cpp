#include "module/Inventory/GeoLocation.h"

#include <gmock/gmock.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>

#include "module/Inventory/GeoLocationCommon.h"
#include "platform/WaitClock.h"
#include "support/LogCapture.h"
#include "support/MacRecording.h"

namespace {

using namespace Norvik::Tests;
using namespace Norvik::KOB;
using testing::ElementsAre;
using testing::IsEmpty;

/// Time that passes only while somebody waits.
class DrivenClock : public Norvik::Platform::WaitClock {
 public:
  TimePoint Now() override { return TimePoint() + waited.load(); }
  void SleepFor(std::chrono::milliseconds duration) override { waited = waited.load() + duration; }

  std::atomic<std::chrono::milliseconds> waited{std::chrono::milliseconds(0)};
};

const std::vector<std::string> NOT_FOUND = {
    "The agent can't find the location of this device.",
    "Please check if your device has at least the WiFi on and the permissions are set correctly"};

std::string Fix(double after) {
  return R"({"afterSeconds": )" + std::to_string(after) +
         R"(, "latitude": 40.5, "longitude": -3.5, "altitude": 650.0, "speed": 1.5})";
}

TEST(GeoLocation, AwaitsAPositionForFiveSeconds) {
  const std::vector<std::string> disabled = {"Location Services of this device are disabled"};
  const struct {
    const char* name;
    std::string recorded;
    int seconds;
    bool isFound;
    std::vector<std::string> errors;
    std::vector<std::string> warnings;
  } cases[] = {
      {"at once", R"({"enabled": true, "fixes": [)" + Fix(0) + "]}", 0, true, {}, {}},
      {"in the third second", R"({"enabled": true, "fixes": [)" + Fix(2.5) + "]}", 3, true, {}, {}},
      {"at the end", R"({"enabled": true, "fixes": [)" + Fix(5) + "]}", 5, true, {}, {}},
      {"too late", R"({"enabled": true, "fixes": [)" + Fix(5.5) + "]}", 5, false, {}, NOT_FOUND},
      {"never", R"({"enabled": true})", 5, false, {}, NOT_FOUND},
      {"turned off", R"({"enabled": false, "fixes": [)" + Fix(0) + "]}", 0, false, disabled, {}},
      {"no file", "", 0, false, disabled, {}},
      {"damaged", R"({"enabled": 1, "fixes": [)", 0, false, disabled, {}},
      {"no positions", R"({"enabled": true, "fixes": ["x"]})", 5, false, {}, NOT_FOUND},
  };
  for (const auto& row : cases) {
    MacRecording recording;
    recording.Add("location.json", row.recorded);
    recording.PutInForce();
    DrivenClock clock;
    const Norvik::Platform::WaitClockScope inForce(clock);
    LogCapture log;
    const GeoLocationPoint point = GeoLocationCommon().GetLocation();
    EXPECT_EQ(point.IsZero(), !row.isFound) << row.name;
    EXPECT_EQ(point.latitude, row.isFound ? 40.5 : 0) << row.name;
    EXPECT_EQ(point.longitude, row.isFound ? -3.5 : 0) << row.name;
    EXPECT_EQ(point.height, row.isFound ? 650.0 : 0) << row.name;
    EXPECT_EQ(point.acceleration, row.isFound ? 1.5 : 0) << row.name;
    EXPECT_EQ(clock.waited.load(), std::chrono::seconds(row.seconds)) << row.name;
    EXPECT_EQ(log.Texts(2), row.errors) << row.name;
    EXPECT_EQ(log.Texts(3), row.warnings) << row.name;
  }
}

TEST(GeoLocation, TheGuardEndsAWaitThatDoesNotEnd) {
  class SlowClock : public DrivenClock {
    void SleepFor(std::chrono::milliseconds duration) override {
      std::this_thread::sleep_for(std::chrono::milliseconds(30));
      DrivenClock::SleepFor(duration);
    }
  } clock;
  MacRecording recording;
  recording.Add("location.json", R"({"enabled": true, "fixes": [)" + Fix(1) + "]}");
  recording.PutInForce();
  const Norvik::Platform::WaitClockScope inForce(clock);
  LogCapture log;
  // The answer comes after the limit and is not taken any more.
  EXPECT_TRUE(GeoLocationCommon(std::chrono::milliseconds(1)).GetLocation().IsZero());
  EXPECT_THAT(log.Texts(2), ElementsAre("Unable to get location information"));
  EXPECT_THAT(log.Texts(5), ElementsAre("possible memory leak"));
}

TEST(GeoLocation, WhatIsRaisedStaysInside) {
  class FaultyClock : public DrivenClock {
    void SleepFor(std::chrono::milliseconds) override { throw std::runtime_error("no time"); }
  } clock;
  MacRecording recording;
  recording.Add("location.json", R"({"enabled": true})");
  recording.PutInForce();
  const Norvik::Platform::WaitClockScope inForce(clock);
  LogCapture log;
  EXPECT_TRUE(GeoLocationCommon().GetLocation().IsZero());
  EXPECT_THAT(log.Texts(2), ElementsAre("Unable to get location information unknown ex"));
  EXPECT_THAT(log.Texts(5), IsEmpty());
}

}  // namespace
