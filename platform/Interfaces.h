#pragma once

#include <ifaddrs.h>
#include <net/if.h>
#include <net/if_dl.h>
#include <net/if_var.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <memory>

namespace Norvik::Platform {

/// The first entry of the list of `getifaddrs`; of the recorded machine if one is in force, in the
/// form that a Mac gives it. It owns the whole list. Null if the system lists no interface.
std::shared_ptr<const ifaddrs> ReadInterfaces();

/// Whether an address of an interface is one of those that the system replaces from time to time.
/// Known on macOS and of a recorded machine only.
bool IsTemporaryAddress(const char* interface, const sockaddr_in6& address);

}  // namespace Norvik::Platform
