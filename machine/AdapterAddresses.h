#pragma once

#include <list>
#include <map>
#include <string>

#include "common/records/NetworkAdapterInfo.h"

namespace Norvik::Machine {

/// The IPv4 addresses of this machine by interface, in the system's order.
std::map<std::string, std::list<Common::IpAddressInfo>> Ipv4Addresses();

}  // namespace Norvik::Machine
