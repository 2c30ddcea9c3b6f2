#include "platform/Interfaces.h"

#include <netinet6/in6_var.h>
#include <sys/ioctl.h>

#include <cstring>

#include "platform/FileDescriptor.h"

namespace Norvik::Platform {

std::shared_ptr<const ifaddrs> ReadInterfaces() {
  ifaddrs* list = nullptr;
  if (::getifaddrs(&list) != 0) return nullptr;
  return {list, ::freeifaddrs};
}

bool IsTemporaryAddress(const char* interface, const sockaddr_in6& address) {
  const FileDescriptor socket(::socket(AF_INET6, SOCK_DGRAM, 0));
  in6_ifreq request{};
  std::strncpy(request.ifr_name, interface, sizeof(request.ifr_name) - 1);
  request.ifr_ifru.ifru_addr = address;
  if (!socket.IsOpen() || ::ioctl(socket.Get(), SIOCGIFAFLAG_IN6, &request) != 0) return false;
  return (request.ifr_ifru.ifru_flags6 & IN6_IFF_TEMPORARY) != 0;
}

}  // namespace Norvik::Platform
