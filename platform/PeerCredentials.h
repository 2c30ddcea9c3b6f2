#pragma once

#include <sys/types.h>

#include <optional>

namespace Norvik::Platform {

/// Who holds the other end of a local socket. The system says so, not the other end.
struct PeerCredentials {
  uid_t user = 0;
  pid_t process = 0;  ///< the one that connected
};

/// Empty, with `errno` set, for what is no connected local socket.
std::optional<PeerCredentials> CredentialsOfPeer(int socket);

}  // namespace Norvik::Platform
