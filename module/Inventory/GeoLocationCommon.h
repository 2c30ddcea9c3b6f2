#pragma once

#include "module/Entities/GeoLocationPoint.h"

namespace Norvik::KOB {

/// Where the machine is.
class GeoLocationCommon {
 public:
  /// The zero point stands for an unknown place.
  GeoLocationPoint GetLocation() const;
};

}  // namespace Norvik::KOB
