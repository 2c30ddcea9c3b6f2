#include "module/Inventory/GeoLocation.h"

#include <chrono>
#include <optional>

#include "common/log/Logger.h"
#include "platform/Location.h"
#include "platform/WaitClock.h"

namespace Norvik::KOB {

namespace {

constexpr int ROUNDS = 5;
constexpr std::chrono::seconds ROUND{1};

std::optional<Platform::LocationFix> WaitForFix(const Platform::LocationService& service) {
  auto fix = service.CurrentFix();
  for (int round = 0; !fix && round < ROUNDS; ++round) {
    Platform::WaitClock::Current().SleepFor(ROUND);
    fix = service.CurrentFix();
  }
  return fix;
}

GeoLocationPoint PointFrom(const Platform::LocationFix& fix) {
  GeoLocationPoint point;
  point.height = fix.altitude;
  // Deliberately the speed: the server shows it from this field.
  point.acceleration = fix.speed;
  point.latitude = fix.latitude;
  point.longitude = fix.longitude;
  return point;
}

}  // namespace

GeoLocationPoint GeoLocation::GetLocation() {
  if (!Platform::LocationService::IsEnabled()) {
    NORVIK_ERROR("Location Services of this device are disabled");
    return {};
  }
  Platform::LocationService service;
  service.Start();
  const auto fix = WaitForFix(service);
  if (!fix) {
    // Deliberately no call of Stop: the destructor of the service ends the search.
    NORVIK_WARNING("The agent can't find the location of this device.");
    NORVIK_WARNING(
        "Please check if your device has at least the WiFi on and the permissions are set "
        "correctly");
    return {};
  }
  GeoLocationPoint point = PointFrom(*fix);
  service.Stop();
  return point;
}

}  // namespace Norvik::KOB
