#pragma once

#include "common/records/InventoryRecord.h"

namespace Norvik::KOB {

/// Where the machine is, in degrees and metres. Points closer than `tolerance` in every field are
/// equal; since a document keeps six significant digits, a finer point differs from itself read
/// back.
struct GeoLocationPoint final : Common::InventoryRecord<GeoLocationPoint> {
  static constexpr double tolerance = 0.00001;

  GeoLocationPoint() = default;
  explicit GeoLocationPoint(const ptree& node) { Read(node); }

  /// Whether every field is exactly zero, which stands for no location.
  bool IsZero() const;

  double longitude = 0.0;
  double latitude = 0.0;
  double height = 0.0;
  double acceleration = 0.0;

  static constexpr auto Fields() {
    return FieldTable(Approximate("longitude", &GeoLocationPoint::longitude, tolerance),
                      Approximate("latitude", &GeoLocationPoint::latitude, tolerance),
                      Approximate("height", &GeoLocationPoint::height, tolerance),
                      Approximate("acceleration", &GeoLocationPoint::acceleration, tolerance));
  }
};

}  // namespace Norvik::KOB
