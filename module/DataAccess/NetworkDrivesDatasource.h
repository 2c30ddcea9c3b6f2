#pragma once

#include <boost/optional.hpp>
#include <vector>

#include "module/Entities/NetworkDriveInfo.h"

namespace Norvik::KOB::V2 {

/// The table of the network drives that users reported. Each call is its own transaction. Never
/// throws: a failure is logged.
class NetworkDrivesDatasource {
 public:
  /// Empty optional if the table is empty or cannot be read. Of an id only the low 32 bits come
  /// back, sign-extended.
  static boost::optional<std::vector<NetworkDriveInfo>> Get();
  /// Replaces a drive of the same id. False on failure.
  static bool Set(const NetworkDriveInfo& drive);
  static void TruncateNetworkDrivesTable();
};

}  // namespace Norvik::KOB::V2
