#pragma once

#include <boost/optional.hpp>
#include <vector>

#include "module/Entities/NetworkDriveInfo.h"

namespace Norvik::KOB::V2 {

/// The table of the network drives that users reported. Each call is a batch of its own; none
/// raises: a failure is logged.
class NetworkDrivesDatasource {
 public:
  /// Nothing if the table is empty or cannot be read. An id comes back by its low 32 bits,
  /// widened with their sign.
  static boost::optional<std::vector<NetworkDriveInfo>> Get();
  /// Replaces a drive of the same id. False on failure.
  static bool Set(const NetworkDriveInfo& drive);
  static void TruncateNetworkDrivesTable();
};

}  // namespace Norvik::KOB::V2
