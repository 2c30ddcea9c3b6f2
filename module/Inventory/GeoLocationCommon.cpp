#include "module/Inventory/GeoLocationCommon.h"

#include <future>

#include "common/log/Logger.h"
#include "module/Inventory/GeoLocation.h"

namespace Norvik::KOB {

GeoLocationPoint GeoLocationCommon::GetLocation() const {
  GeoLocationPoint point;
  try {
    auto location = std::async(std::launch::async, [this] { return GetLocationAsync(); });
    if (location.wait_for(limit_) == std::future_status::timeout) {
      NORVIK_ERROR("Unable to get location information");
      NORVIK_DETAIL("possible memory leak");
    } else {
      point = location.get();
    }
  } catch (...) {
    NORVIK_ERROR("Unable to get location information unknown ex");
  }
  return point;
}

GeoLocationPoint GeoLocationCommon::GetLocationAsync() const { return GeoLocation().GetLocation(); }

}  // namespace Norvik::KOB
