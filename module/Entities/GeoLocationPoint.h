#pragma once

#include "common/records/InventoryRecord.h"

namespace Norvik::KOB {

/// Location of the machine, in degrees and metres. Two points are equal if every field differs by
/// less than `tolerance`. A document keeps six significant digits, so a point with more digits
/// differs from the one that is read back.
struct GeoLocationPoint final : Common::InventoryRecord<GeoLocationPoint> {
  static constexpr double tolerance = 0.00001;

  GeoLocationPoint() = default;
  explicit GeoLocationPoint(const ptree& node) { Read(node); }

  /// Whether every field is exactly zero, which means that the location is unknown.
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
