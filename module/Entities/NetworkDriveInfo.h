#pragma once

#include <string>

#include "common/records/InventoryRecord.h"

namespace Norvik::KOB {

/// A mounted network share. Compared without its id, which documents do not hold.
struct NetworkDriveInfo final : Common::InventoryRecord<NetworkDriveInfo> {
  NetworkDriveInfo() = default;
  explicit NetworkDriveInfo(ptree node);

  unsigned long long id = 0;
  std::string unit;
  std::string path;
  std::string server;

  /// For Boost archives, which carry drives between the user's process and the service. Save a
  /// const object.
  template <class Archive>
  void serialize(Archive& archive, unsigned int /*version*/) {
    archive& id& unit& path& server;
  }

  static constexpr auto Fields() {
    return FieldTable(Field("unit", &NetworkDriveInfo::unit),
                      Field("path", &NetworkDriveInfo::path),
                      Field("server", &NetworkDriveInfo::server));
  }
  static constexpr auto Key() { return &NetworkDriveInfo::unit; }
};

}  // namespace Norvik::KOB
