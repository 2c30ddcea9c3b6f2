#pragma once

#include <chrono>

#include "module/Entities/GeoLocationPoint.h"

namespace Norvik::KOB {

/// Where the machine is. The zero point stands for an unknown place.
class GeoLocationCommon {
 public:
  /// @param limit how long an answer is awaited; only tests have another one
  explicit GeoLocationCommon(std::chrono::milliseconds limit = std::chrono::minutes(5))
      : limit_(limit) {}

  /// Asks on a thread of its own and logs every failure. Never raises. After the limit it gives up
  /// the answer, but still waits until the thread has ended.
  GeoLocationPoint GetLocation() const;
  /// Asks on this thread.
  GeoLocationPoint GetLocationAsync() const;

 private:
  std::chrono::milliseconds limit_;
};

}  // namespace Norvik::KOB
