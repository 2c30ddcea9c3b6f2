#include "module/Inventory/GeoLocation.h"

#include "module/Inventory/GeoLocationCommon.h"
#include "support/FakeWaitClock.h"
#include "support/MacRecording.h"

namespace {

using namespace Norvik::Tests;
using namespace Norvik::KOB;

const std::map<std::string, void (*)(std::size_t)> EVENTS = {
    {"nothing", [](std::size_t) {}},
    {"a delay", [](std::size_t) { std::this_thread::sleep_for(milliseconds(30)); }},
    {"a fault", [](std::size_t) { throw std::runtime_error("no time"); }}};

TEST(GeoLocation, AwaitsAPositionForFiveSeconds) {
  for (const Json& row : DataOf("module/Inventory/locations.json")) {
    SCOPED_TRACE(row["name"]);
    MacRecording recording;
    recording.Add("location.json", row["recorded"]).PutInForce();
    FakeWaitClock clock;
    clock.meanwhile = EVENTS.at(row.value("each wait", "nothing"));
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
