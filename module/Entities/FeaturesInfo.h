#pragma once

#include <string>

#include "common/records/InventoryRecord.h"

namespace Norvik::KOB {

/// A feature of the system.
struct FeaturesInfo final : Common::InventoryRecord<FeaturesInfo> {
  FeaturesInfo() = default;
  explicit FeaturesInfo(const ptree& node) { Read(node); }

  std::string version;
  std::string name;

  static constexpr auto Fields() {
    return FieldTable(Field("version", &FeaturesInfo::version), Field("name", &FeaturesInfo::name));
  }
  /// Deliberately not the name: the server identifies a feature by its version.
  static constexpr auto Key() { return &FeaturesInfo::version; }
  static constexpr auto Kept() { return FieldTable(WideText("version", &FeaturesInfo::version)); }
};

}  // namespace Norvik::KOB
