#pragma once

#include <boost/optional.hpp>
#include <vector>

#include "module/Entities/NetworkDriveInfo.h"

namespace Norvik::KOB {

/// The network drives of the user of this process, and the store of those that users reported.
/// None of the operations raises.
class NetworkDrivesHandler {
 public:
  /// Drives that this user has mapped; nothing if the system cannot tell now. This system keeps no
  /// such list, so it is empty.
  static boost::optional<std::vector<NetworkDriveInfo>> GetMappedDrivesFromAPI();

  /// Nothing if no drive is stored or the store cannot be read.
  static boost::optional<std::vector<NetworkDriveInfo>> GetFromDb();
  /// False if the drive could not be stored.
  static bool Save(NetworkDriveInfo&& drive);
  static void TruncateNetworkDrivesTable();
};

}  // namespace Norvik::KOB
