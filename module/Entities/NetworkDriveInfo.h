#pragma once

#include <string>

#include "common/records/InventoryRecord.h"

namespace Norvik::KOB {

/// A mounted network share. Its id is neither in the document nor compared.
struct NetworkDriveInfo final : Common::InventoryRecord<NetworkDriveInfo> {
  NetworkDriveInfo() = default;
  explicit NetworkDriveInfo(ptree node);

  unsigned long long id = 0;
  std::string unit;
  std::string path;
  std::string server;

  /// For the Boost archives in which a user's process sends its drives to the service. To save,
  /// pass a const object.
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
  static constexpr auto Kept() {
    return FieldTable(Field("path", &NetworkDriveInfo::path),
                      Field("unit", &NetworkDriveInfo::unit));
  }
};

}  // namespace Norvik::KOB
