#pragma once

#include <cstdint>
#include <string>

namespace Norvik::Common {

/// A message between the service and a user's process.
struct IPCMessage {
  std::int32_t kind = 0;   ///< carried along, given no meaning here
  std::uint32_t code = 0;  ///< action to run at the receiver
  std::string key;         ///< name of its one parameter
  std::string value;
};

}  // namespace Norvik::Common
