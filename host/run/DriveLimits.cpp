#include "host/run/DriveLimits.h"

#include "host/assembly/ModuleActionCodes.h"

namespace Norvik::Host {

std::string DriveLimits::ReasonToDrop(uid_t user, const Common::IPCMessage& message) {
  if (message.code == ACTION_TRUNCATE_NETWORK_DRIVES) {
    drives_.clear();
    all_ = 0;
  }
  if (message.code != ACTION_NETWORK_DRIVES) return "";
  const std::size_t size = message.value.size();
  if (size > ARCHIVE_BYTES) {
    return "it has " + std::to_string(size) + " bytes, where at most " +
           std::to_string(ARCHIVE_BYTES) + " are allowed";
  }
  std::size_t& ofUser = drives_[user];
  if (ofUser >= DRIVES_OF_USER) {
    return "at most " + std::to_string(DRIVES_OF_USER) + " of one user are stored";
  }
  if (all_ >= DRIVES_OF_ALL) {
    return "at most " + std::to_string(DRIVES_OF_ALL) + " of all users are stored";
  }
  ++ofUser;
  ++all_;
  return "";
}

}  // namespace Norvik::Host
