#include "module/NetworkDrivesHandler/NetworkDrivesHandler.h"

#include "common/log/Logger.h"
#include "module/DataAccess/NetworkDrivesDatasource.h"

namespace Norvik::KOB {

using Drives = std::vector<NetworkDriveInfo>;

boost::optional<Drives> NetworkDrivesHandler::GetMappedDrivesFromAPI() {
  NORVIK_DETAIL("Not implemented for this SO");
  // Deliberately an empty list and not an empty optional: a user without drives still clears what
  // the service holds.
  return Drives();
}

boost::optional<Drives> NetworkDrivesHandler::GetFromDb() {
  return V2::NetworkDrivesDatasource::Get();
}

bool NetworkDrivesHandler::Save(NetworkDriveInfo&& drive) {
  return V2::NetworkDrivesDatasource::Set(drive);
}

void NetworkDrivesHandler::TruncateNetworkDrivesTable() {
  V2::NetworkDrivesDatasource::TruncateNetworkDrivesTable();
}

}  // namespace Norvik::KOB
