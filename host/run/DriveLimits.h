#pragma once

#include <sys/types.h>

#include <cstddef>
#include <map>
#include <string>

#include "common/ipc/ICommunicationIPC.h"

namespace Norvik::Host {

/// Limits what users report of their network drives, far above real use. For one thread.
class DriveLimits {
 public:
  static constexpr std::size_t ARCHIVE_BYTES = 8192;  ///< all texts of a drive
  static constexpr std::size_t DRIVES_OF_USER = 512;
  static constexpr std::size_t DRIVES_OF_ALL = 4096;

  /// Which limit a message exceeds, on one line; it must then not be carried out. Empty otherwise:
  /// the drive counts as stored until any user has them all removed, as the message for that does.
  std::string ReasonToDrop(uid_t user, const Common::IPCMessage& message);

 private:
  std::map<uid_t, std::size_t> drives_;
  std::size_t all_ = 0;
};

}  // namespace Norvik::Host
