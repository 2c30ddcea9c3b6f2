#include "module/Inventory/GeoLocation.h"

#include "module/Inventory/GeoLocationCommon.h"
#include "platform/WaitClock.h"
#include "support/MacRecording.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Tests;
using namespace Norvik::KOB;

/// A clock that advances only during a wait.
class DrivenClock : public Norvik::Platform::WaitClock {
 public:
  explicit DrivenClock(void (*onSleep)()) : onSleep_(onSleep) {}
  TimePoint Now() override { return TimePoint() + waited.load(); }
  void SleepFor(milliseconds duration) override {
    onSleep_();
    waited = waited.load() + duration;
  }

  std::atomic<milliseconds> waited{milliseconds(0)};

 private:
  void (*const onSleep_)();
};

const std::map<std::string, void (*)()> EVENTS = {
    {"nothing", [] {}},
    {"a delay", [] { std::this_thread::sleep_for(milliseconds(30)); }},
    {"a fault", [] { throw std::runtime_error("no time"); }}};

TEST(GeoLocation, AwaitsAPositionForFiveSeconds) {
  for (const Json& row : DataOf("module/Inventory/locations.json")) {
    SCOPED_TRACE(row["name"]);
    MacRecording recording;
    recording.Add("location.json", row["recorded"]).PutInForce();
    DrivenClock clock(EVENTS.at(row.value("each wait", "nothing")));
    const Norvik::Platform::WaitClockScope inForce(clock);
    const LogCapture log;
    const bool isImpatient = row.value("impatient", false);
    const GeoLocationPoint point =
        (isImpatient ? GeoLocationCommon(milliseconds(1)) : GeoLocationCommon()).GetLocation();
    EXPECT_EQ(Json({point.latitude, point.longitude, point.height, point.acceleration}),
              row.value("position", Json({0.0, 0.0, 0.0, 0.0})));
    EXPECT_EQ(point.IsZero(), !row.contains("position"));
    if (!isImpatient) {
      EXPECT_EQ(clock.waited.load(), seconds(row.value("seconds", 0)));
    }
    EXPECT_EQ(Json(log.Texts(2)), row.value("errors", Json::array()));
    EXPECT_EQ(Json(log.Texts(3)), row.value("warnings", Json::array()));
    EXPECT_EQ(Json(log.Texts(5)), row.value("details", Json::array()));
  }
}

}  // namespace
