#pragma once

#include <memory>
#include <optional>

namespace Norvik::Platform {

/// A position in degrees, metres and metres per second.
struct LocationFix {
  double latitude = 0.0;
  double longitude = 0.0;
  double altitude = 0.0;
  double speed = 0.0;
};

/// Asks the system where the machine is. Only for the thread that created it.
class LocationService {
 public:
  /// Whether the user allows programs to ask.
  static bool IsEnabled();

  LocationService();
  LocationService(const LocationService&) = delete;
  LocationService& operator=(const LocationService&) = delete;
  ~LocationService();

  /// Begins to search for the most exact position; returns at once.
  void Start();
  /// The newest position; empty until there is one.
  std::optional<LocationFix> CurrentFix() const;
  void Stop();

 private:
  struct Implementation;
  std::unique_ptr<Implementation> implementation_;
};

}  // namespace Norvik::Platform
