#pragma once

#include <map>
#include <string>
#include <vector>

#include "common/records/NetworkAdapterInfo.h"

namespace Norvik::Machine {

// Parsers of the texts in which systems report their network. All accept any text and skip lines
// that they do not understand.

/// The texts of each network interface, in order and without repetitions.
using ByInterface = std::map<std::string, std::vector<std::string>>;

/// Converts UTF-8 texts to the strings of the records.
std::vector<wxString> Wide(const std::vector<std::string>& texts);

/// The gateways in /proc/net/route.
ByInterface ParseRoutes(const std::string& text);
/// The gateways of the default route in /proc/net/ipv6_route.
ByInterface ParseIpv6Routes(const std::string& text);
/// The default gateways in the output of `netstat -rn`.
ByInterface ParseNetstatRoutes(const std::string& text);

/// The addresses in /proc/net/if_inet6, sorted, without temporary ones, which the system changes by
/// itself.
std::map<std::string, std::vector<Common::IpAddressInfo>> ParseIpv6Addresses(
    const std::string& text);

struct ResolverFile {
  std::vector<std::string> servers;
  std::string domain;  ///< the domain, or else the first entry of the search list
};
ResolverFile ParseResolverFile(const std::string& text);

/// The DHCP server of each interface in a lease file of dhclient; the last lease counts.
std::map<std::string, std::string> ParseDhcpLeases(const std::string& text);

/// The VLAN number of each interface in /proc/net/vlan/config.
std::map<std::string, std::uint64_t> ParseVlans(const std::string& text);

/// A network port of the hardware, or a VLAN that was made on one.
struct HardwarePort {
  std::string type;  ///< what the system calls the port, as in "Wi-Fi", or "VLAN"
  std::string description;
  std::uint64_t vlan = 0;  ///< the VLAN's number; 0 for a port of the hardware
};

/// The port of each device in the output of `networksetup -listallhardwareports`.
std::map<std::string, HardwarePort> ParseHardwarePorts(const std::string& text);

}  // namespace Norvik::Machine
