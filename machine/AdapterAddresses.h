#pragma once

#include <list>
#include <map>
#include <string>

#include "common/records/NetworkAdapterInfo.h"

namespace Norvik::Machine {

/// The IPv4 addresses of this machine by interface, in the order of the system. Empty if the system
/// does not list them.
std::map<std::string, std::list<Common::IpAddressInfo>> Ipv4Addresses();

}  // namespace Norvik::Machine
