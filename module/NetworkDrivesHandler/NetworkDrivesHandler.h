#pragma once

#include <boost/optional.hpp>
#include <vector>

#include "module/Entities/NetworkDriveInfo.h"

namespace Norvik::KOB {

/// The network drives of the user of this process, and the store of those that users reported.
/// Never throws.
class NetworkDrivesHandler {
 public:
  /// Drives that this user has mapped; empty optional if the system cannot say at the moment. This
  /// system keeps no such list, so the returned list is always empty.
  static boost::optional<std::vector<NetworkDriveInfo>> GetMappedDrivesFromAPI();

  /// Empty optional if no drive is stored or the store cannot be read.
  static boost::optional<std::vector<NetworkDriveInfo>> GetFromDb();
  /// False if the drive could not be stored.
  static bool Save(NetworkDriveInfo&& drive);
  static void TruncateNetworkDrivesTable();
};

}  // namespace Norvik::KOB
