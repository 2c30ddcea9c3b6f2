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

/// Asks the system where the machine is. For one thread, the one that made it.
class LocationService {
 public:
  /// Whether the user lets programs know at all.
  static bool IsEnabled();

  LocationService();
  LocationService(const LocationService&) = delete;
  LocationService& operator=(const LocationService&) = delete;
  ~LocationService();

  /// Begins to look for the best position that the machine can tell.
  void Start();
  /// The newest position; empty as long as there is none.
  std::optional<LocationFix> CurrentFix() const;
  void Stop();

 private:
  struct Implementation;
  std::unique_ptr<Implementation> implementation_;
};

}  // namespace Norvik::Platform
