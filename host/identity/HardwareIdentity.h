#pragma once

#include <string>

namespace Norvik::Host {

/// What identifies the hardware of this machine. Empty texts where it is unknown.
struct HardwareIdentity {
  std::string serialNumber;
  std::string model;         ///< the identifier, as "Mac14,2"
  std::string platformUuid;  ///< of the logic board
};

/// Starts no tool. Without root's rights Linux shows neither serial number nor UUID.
HardwareIdentity ReadHardwareIdentity();

}  // namespace Norvik::Host
