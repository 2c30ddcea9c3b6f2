#include <boost/algorithm/string/predicate.hpp>

#include "common/text/Text.h"
#include "machine/AdapterAddresses.h"
#include "machine/NetworkText.h"
#include "machine/SystemText.h"
#include "machine/linux/GatherFromFiles.h"

namespace Norvik::Machine {

namespace {

using namespace Common;

constexpr std::uint64_t ETHERNET = 1;
constexpr std::uint64_t LOOPBACK = 772;

/// Facts from files that describe all interfaces, by interface.
struct NetworkFacts {
  ByInterface gateways;
  std::map<std::string, std::vector<IpAddressInfo>> ipv6;
  std::map<std::string, std::list<IpAddressInfo>> ipv4;
  std::map<std::string, std::string> dhcpServers;
  std::map<std::string, std::uint64_t> vlans;
  std::vector<std::string> dnsServers;
};

NetworkFacts ReadFacts(const SystemFiles& files) {
  NetworkFacts facts;
  facts.gateways = ParseRoutes(files.Bytes("/proc/net/route"));
  for (const auto& item : ParseIpv6Routes(files.Bytes("/proc/net/ipv6_route"))) {
    auto& list = facts.gateways[item.first];
    list.insert(list.end(), item.second.begin(), item.second.end());
  }
  facts.ipv4 = Ipv4Addresses();
  facts.ipv6 = ParseIpv6Addresses(files.Bytes("/proc/net/if_inet6"));
  facts.vlans = ParseVlans(files.Bytes("/proc/net/vlan/config"));
  facts.dnsServers = ParseResolverFile(files.Bytes("/etc/resolv.conf")).servers;
  for (const std::string folder : {"/var/lib/dhcp/", "/var/lib/dhclient/"}) {
    for (const auto& name : files.Names(folder)) {
      for (const auto& item : ParseDhcpLeases(files.Bytes(folder + name))) {
        facts.dhcpServers[item.first] = item.second;
      }
    }
  }
  return facts;
}

std::string TypeOf(const SystemFiles& files, const std::string& folder, std::uint64_t hardware) {
  static constexpr struct {
    const char* file;
    const char* name;
  } SIGNS[] = {{"wireless", "Wireless"},
               {"phy80211", "Wireless"},
               {"bridge", "Bridge"},
               {"bonding", "Bond"},
               {"tun_flags", "Tunnel"}};
  for (const auto& sign : SIGNS) {
    if (files.Exists(folder + sign.file)) return sign.name;
  }
  if (files.Text(folder + "uevent").find("DEVTYPE=vlan") != std::string::npos) return "VLAN";
  return hardware == ETHERNET ? "Ethernet" : "";
}

/// The server of the lease of systemd's network service, whose file is named by the interface's
/// number.
std::string LeaseServer(const SystemFiles& files, const std::string& folder) {
  const std::string number = files.Text(folder + "ifindex");
  const std::string lease = files.Bytes("/run/systemd/netif/leases/" + number);
  return ValueOf(ParseEntries(lease, '='), "SERVER_ADDRESS");
}

template <class Map>
auto Find(const Map& map, const std::string& key) {
  const auto found = map.find(key);
  return found == map.end() ? typename Map::mapped_type() : found->second;
}

void AddNetwork(const NetworkFacts& facts, NetworkAdapterInfo& adapter) {
  adapter.addresses = Find(facts.ipv4, adapter.name);
  for (const auto& address : Find(facts.ipv6, adapter.name)) adapter.addresses.push_back(address);
  adapter.gateways = Wide(Find(facts.gateways, adapter.name));
  // The servers apply to the whole system; list them with the interfaces that have a gateway.
  if (!adapter.gateways.empty()) adapter.dnsServers = Wide(facts.dnsServers);
  adapter.vlan = Find(facts.vlans, adapter.name);
}

NetworkAdapterInfo AdapterOf(const SystemFiles& files, const NetworkFacts& facts,
                             const std::string& name) {
  const std::string folder = "/sys/class/net/" + name + "/";
  NetworkAdapterInfo adapter;
  adapter.name = name;
  adapter.hardwareType = files.Number(folder + "type");
  adapter.mtu = files.Number(folder + "mtu");
  adapter.speedMbps = files.Number(folder + "speed");  // "-1" without a link reads as 0
  adapter.macAddress = WxStringFromStdString(PlainMacAddress(files.Text(folder + "address")));
  adapter.type = TypeOf(files, folder, adapter.hardwareType);
  const std::string driver = files.LinkText(folder + "device/driver");
  adapter.description = driver.substr(driver.rfind('/') + 1);
  AddNetwork(facts, adapter);
  std::string server = Find(facts.dhcpServers, name);
  if (server.empty()) server = LeaseServer(files, folder);
  if (!server.empty()) adapter.dhcpServers = Wide({server});
  return adapter;
}

/// Interfaces that do not belong to the machine: the loopback, the host's end of a container's
/// pair, whose name is random, and unused ones that the kernel offers.
bool IsIgnored(const SystemFiles& files, const NetworkAdapterInfo& adapter) {
  if (adapter.hardwareType == LOOPBACK || boost::starts_with(adapter.name, "veth")) return true;
  const bool isDevice = files.Exists("/sys/class/net/" + adapter.name + "/device");
  const bool isMade = adapter.type != "Ethernet" && !adapter.type.empty();
  return !isDevice && !isMade && adapter.addresses.empty();
}

}  // namespace

std::vector<NetworkAdapterInfo> GatherAdapters(const SystemFiles& files) {
  const NetworkFacts facts = ReadFacts(files);
  std::vector<NetworkAdapterInfo> adapters;
  for (const auto& name : files.Names("/sys/class/net")) {
    if (!files.Exists("/sys/class/net/" + name + "/type")) continue;
    NetworkAdapterInfo adapter = AdapterOf(files, facts, name);
    if (!IsIgnored(files, adapter)) adapters.push_back(std::move(adapter));
  }
  return adapters;
}

}  // namespace Norvik::Machine
