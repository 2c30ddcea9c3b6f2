#include "platform/PeerCredentials.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace Norvik::Platform {

#ifdef SO_PEERCRED

std::optional<PeerCredentials> CredentialsOfPeer(int socket) {
  struct ucred peer {};
  socklen_t size = sizeof(peer);
  if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) return std::nullopt;
  return PeerCredentials{peer.uid, peer.pid};
}

#else

std::optional<PeerCredentials> CredentialsOfPeer(int socket) {
  PeerCredentials peer;
  gid_t group = 0;
  if (::getpeereid(socket, &peer.user, &group) != 0) return std::nullopt;
  socklen_t size = sizeof(peer.process);
  if (::getsockopt(socket, SOL_LOCAL, LOCAL_PEERPID, &peer.process, &size) != 0) {
    return std::nullopt;
  }
  return peer;
}

#endif

}  // namespace Norvik::Platform
