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

/// The answer of a machine with a recorded location, while a clock drives the wait.
GeoLocationPoint LocationOf(const std::string& recorded, DrivenClock& clock,
                            GeoLocationCommon location = GeoLocationCommon()) {
  MacRecording recording;
  recording.Add("location.json", recorded).PutInForce();
  const Norvik::Platform::WaitClockScope inForce(clock);
  return location.GetLocation();
}

TEST(GeoLocation, AwaitsAPositionForFiveSeconds) {
  for (const Json& row : DataOf("module/Inventory/locations.json")) {
    SCOPED_TRACE(row["name"]);
    DrivenClock clock;
    const LogCapture log;
    const GeoLocationPoint point = LocationOf(row["recorded"], clock);
    EXPECT_EQ(Json({point.latitude, point.longitude, point.height, point.acceleration}),
              row.value("position", Json({0.0, 0.0, 0.0, 0.0})));
    EXPECT_EQ(point.IsZero(), !row.contains("position"));
    EXPECT_EQ(clock.waited.load(), std::chrono::seconds(row["seconds"].get<int>()));
    EXPECT_EQ(Json(log.Texts(2)), row.value("errors", Json::array()));
    EXPECT_EQ(Json(log.Texts(3)), row.value("warnings", Json::array()));
  }
}

TEST(GeoLocation, TheGuardEndsAWaitThatDoesNotEnd) {
  class SlowClock : public DrivenClock {
    void SleepFor(std::chrono::milliseconds duration) override {
      std::this_thread::sleep_for(std::chrono::milliseconds(30));
      DrivenClock::SleepFor(duration);
    }
  } clock;
  const LogCapture log;
  // The answer comes after the limit and is not taken any more.
  const std::string fix = R"({"enabled": true, "fixes": [{"afterSeconds": 1, "latitude": 40.5}]})";
  const GeoLocationCommon impatient(std::chrono::milliseconds(1));
  EXPECT_TRUE(LocationOf(fix, clock, impatient).IsZero());
  EXPECT_THAT(log.Texts(2), ElementsAre("Unable to get location information"));
  EXPECT_THAT(log.Texts(5), ElementsAre("possible memory leak"));
}

TEST(GeoLocation, WhatIsRaisedStaysInside) {
  class FaultyClock : public DrivenClock {
    void SleepFor(std::chrono::milliseconds) override { throw std::runtime_error("no time"); }
  } clock;
  const LogCapture log;
  EXPECT_TRUE(LocationOf(R"({"enabled": true})", clock).IsZero());
  EXPECT_THAT(log.Texts(2), ElementsAre("Unable to get location information unknown ex"));
  EXPECT_THAT(log.Texts(5), IsEmpty());
}

}  // namespace
