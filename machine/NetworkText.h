#pragma once

#include <map>
#include <string>
#include <vector>

#include "common/records/NetworkAdapterInfo.h"

namespace Norvik::Machine {

/// A list of texts for each network interface, in order and without repetitions.
using ByInterface = std::map<std::string, std::vector<std::string>>;

/// The same texts as the records take them.
std::vector<wxString> Wide(const std::vector<std::string>& texts);

/// Gateways in the text of /proc/net/route.
ByInterface ParseRoutes(const std::string& text);
/// Gateways of the default route in the text of /proc/net/ipv6_route.
ByInterface ParseIpv6Routes(const std::string& text);
/// Default gateways in the text of `netstat -rn`.
ByInterface ParseNetstatRoutes(const std::string& text);

/// Addresses in the text of /proc/net/if_inet6, without the temporary ones, which the system
/// changes by itself.
std::map<std::string, std::vector<Common::IpAddressInfo>> ParseIpv6Addresses(
    const std::string& text);

struct ResolverFile {
  std::vector<std::string> servers;
  std::string domain;  ///< the domain, else the first of the search list
};
ResolverFile ParseResolverFile(const std::string& text);

/// DHCP servers of the interfaces in the text of a lease file of dhclient; the last lease counts.
std::map<std::string, std::string> ParseDhcpLeases(const std::string& text);

/// VLAN numbers of the interfaces in the text of /proc/net/vlan/config.
std::map<std::string, std::uint64_t> ParseVlans(const std::string& text);

/// Names of the hardware ports by device, in the text of `networksetup -listallhardwareports`.
std::map<std::string, std::string> ParseHardwarePorts(const std::string& text);

}  // namespace Norvik::Machine
