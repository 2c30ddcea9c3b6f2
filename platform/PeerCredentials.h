#pragma once

#include <sys/types.h>

#include <optional>

namespace Norvik::Platform {

/// The process at the other end of a local socket, as reported by the system, not by that process.
struct PeerCredentials {
  uid_t user = 0;
  pid_t process = 0;  ///< that made the connection
};

/// Empty, with `errno` set, if this is no connected local socket.
std::optional<PeerCredentials> CredentialsOfPeer(int socket);

}  // namespace Norvik::Platform
