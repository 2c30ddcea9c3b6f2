#pragma once

#include <chrono>

#include "module/Entities/GeoLocationPoint.h"

namespace Norvik::KOB {

/// The location of the machine. The zero point stands for an unknown location.
class GeoLocationCommon {
 public:
  /// @param limit how long to wait for a position; only tests change it
  explicit GeoLocationCommon(std::chrono::milliseconds limit = std::chrono::minutes(5))
      : limit_(limit) {}

  /// Gets the position on its own thread and logs every failure. Never throws. After the limit it
  /// discards the result, but still waits for the thread to end.
  GeoLocationPoint GetLocation() const;
  /// Gets the position on the calling thread.
  GeoLocationPoint GetLocationAsync() const;

 private:
  std::chrono::milliseconds limit_;
};

}  // namespace Norvik::KOB
