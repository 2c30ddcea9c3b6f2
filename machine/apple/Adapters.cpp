#include <arpa/inet.h>

#include <boost/algorithm/string/predicate.hpp>
#include <cstdio>
#include <cstring>
#include <map>

#include "common/commands/CommandRunner.h"
#include "common/text/Text.h"
#include "machine/AdapterAddresses.h"
#include "machine/NetworkText.h"
#include "machine/SystemFiles.h"
#include "machine/apple/GatherFromMac.h"
#include "platform/Interfaces.h"

namespace Norvik::Machine::Mac {

namespace {

using namespace Common;

using Adapters = std::map<std::string, NetworkAdapterInfo>;

wxString MacAddressOf(const sockaddr_dl& link) {
  if (link.sdl_alen != 6) return {};
  std::string address;
  for (int i = 0; i < 6; ++i) {
    char digits[3];
    std::snprintf(digits, sizeof(digits), "%02X",
                  static_cast<unsigned int>(static_cast<unsigned char>(LLADDR(&link)[i])));
    address += digits;
  }
  return WxStringFromStdString(address);
}

void ReadLink(const ifaddrs& item, NetworkAdapterInfo& adapter) {
  constexpr std::uint64_t BITS_PER_MEGABIT = 1'000'000;
  const auto& link = *reinterpret_cast<const sockaddr_dl*>(item.ifa_addr);
  adapter.hardwareType = link.sdl_type;
  adapter.macAddress = MacAddressOf(link);
  if (!item.ifa_data) return;
  const auto& data = *static_cast<const if_data*>(item.ifa_data);
  adapter.mtu = data.ifi_mtu;
  adapter.speedMbps = data.ifi_baudrate / BITS_PER_MEGABIT;
}

unsigned int PrefixLength(const sockaddr* mask) {
  if (!mask) return 0;
  unsigned int length = 0;
  for (const std::uint8_t byte : reinterpret_cast<const sockaddr_in6*>(mask)->sin6_addr.s6_addr) {
    for (unsigned int bits = byte; bits & 0x80; bits = (bits << 1) & 0xFF) ++length;
  }
  return length;
}

void ReadIpv6(const ifaddrs& item, NetworkAdapterInfo& adapter) {
  sockaddr_in6 address{};
  std::memcpy(&address, item.ifa_addr, sizeof(address));
  // The system replaces temporary addresses by itself.
  if (Platform::IsTemporaryAddress(item.ifa_name, address)) return;
  // The system keeps the number of the interface in the second word of a link-local address.
  if (IN6_IS_ADDR_LINKLOCAL(&address.sin6_addr)) {
    address.sin6_addr.s6_addr[2] = 0;
    address.sin6_addr.s6_addr[3] = 0;
  }
  char text[INET6_ADDRSTRLEN];
  if (!::inet_ntop(AF_INET6, &address.sin6_addr, text, sizeof(text))) return;
  adapter.addresses.push_back({text, std::to_string(PrefixLength(item.ifa_netmask))});
}

/// The interfaces of the hardware, and its VLANs. Others, such as tunnels, come and go with their
/// users.
Adapters HardwareAdapters() {
  const auto ports =
      ParseHardwarePorts(CommandRunner::ExecCommand("networksetup -listallhardwareports"));
  Adapters adapters;
  const auto list = Platform::ReadInterfaces();
  for (const ifaddrs* item = list.get(); item; item = item->ifa_next) {
    const std::string name = item->ifa_name;
    const auto port = ports.find(name);
    const bool hardware = ports.empty() ? boost::starts_with(name, "en") : port != ports.end();
    if (!hardware || !item->ifa_addr) continue;
    NetworkAdapterInfo& adapter = adapters[name];
    adapter.name = name;
    if (port != ports.end()) {
      adapter.type = port->second.type;
      adapter.description = port->second.description;
      adapter.vlan = port->second.vlan;
    }
    if (item->ifa_addr->sa_family == AF_LINK) ReadLink(*item, adapter);
    if (item->ifa_addr->sa_family == AF_INET6) ReadIpv6(*item, adapter);
  }
  return adapters;
}

std::string DhcpServer(const std::string& name) {
  return trim_copy(CommandRunner::ExecCommand("ipconfig getoption " + name + " server_identifier"));
}

}  // namespace

std::vector<NetworkAdapterInfo> GatherAdapters() {
  Adapters adapters = HardwareAdapters();
  auto ipv4 = Ipv4Addresses();
  const auto gateways = ParseNetstatRoutes(CommandRunner::ExecCommand("netstat -rn"));
  const auto resolver = ParseResolverFile(SystemFiles().Bytes("/etc/resolv.conf"));
  std::vector<NetworkAdapterInfo> result;
  for (auto& [name, adapter] : adapters) {
    adapter.addresses.splice(adapter.addresses.begin(), ipv4[name]);
    const auto found = gateways.find(name);
    if (found != gateways.end()) {
      adapter.gateways = Wide(found->second);
      adapter.dnsServers = Wide(resolver.servers);
    }
    if (!adapter.addresses.empty()) {
      const std::string server = DhcpServer(name);
      if (!server.empty()) adapter.dhcpServers = Wide({server});
    }
    result.push_back(std::move(adapter));
  }
  return result;
}

}  // namespace Norvik::Machine::Mac
