#pragma once

#include "module/Entities/GeoLocationPoint.h"

namespace Norvik::KOB {

/// Asks the system for one position of the machine.
class GeoLocation {
 public:
  /// Waits for at most five seconds. The zero point if the machine does not tell.
  GeoLocationPoint GetLocation();
};

}  // namespace Norvik::KOB
