#pragma once

#include "module/Entities/GeoLocationPoint.h"

namespace Norvik::KOB {

/// Gets one position of the machine from the system.
class GeoLocation {
 public:
  /// Blocks for at most five seconds. Returns the zero point if the system reports no position.
  GeoLocationPoint GetLocation();
};

}  // namespace Norvik::KOB
