#include "platform/Location.h"

#include "platform/WaitClock.h"
#include "platform/compat/Recording.h"

namespace Norvik::Platform {

struct LocationService::Implementation {
  RecordedLocation recorded = ReadRecordedLocation();
  std::optional<WaitClock::TimePoint> begin;
};

bool LocationService::IsEnabled() { return ReadRecordedLocation().enabled; }

LocationService::LocationService() : implementation_(std::make_unique<Implementation>()) {}

LocationService::~LocationService() = default;

void LocationService::Start() { implementation_->begin = WaitClock::Current().Now(); }

std::optional<LocationFix> LocationService::CurrentFix() const {
  std::optional<LocationFix> newest;
  if (!implementation_->begin) return newest;
  const auto waited = WaitClock::Current().Now() - *implementation_->begin;
  for (const RecordedFix& fix : implementation_->recorded.fixes) {
    if (fix.after <= waited) newest = fix.fix;
  }
  return newest;
}

void LocationService::Stop() { implementation_->begin.reset(); }

}  // namespace Norvik::Platform
