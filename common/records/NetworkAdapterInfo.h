#pragma once

#include <wx/string.h>

#include <cstdint>
#include <list>
#include <string>
#include <vector>

#include "common/records/InventoryRecord.h"

namespace Norvik::Common {

/// An address of a network adapter.
struct IpAddressInfo {
  std::string address;
  std::string mask;  ///< as an address for IPv4, as a prefix length for IPv6

  static constexpr auto Fields() {
    return FieldTable(Field("address", &IpAddressInfo::address),
                      Field("mask", &IpAddressInfo::mask));
  }
};

/// A network interface with its addresses and the servers that it uses.
struct NORVIK_COMMON_API NetworkAdapterInfo final : InventoryRecord<NetworkAdapterInfo> {
  NetworkAdapterInfo() = default;
  explicit NetworkAdapterInfo(const ptree& node) { Read(node); }

  std::vector<wxString> gateways;
  std::vector<wxString> dnsServers;
  std::vector<wxString> dhcpServers;
  std::uint64_t speedMbps = 0;  ///< 0: unknown
  std::uint64_t mtu = 0;
  std::list<IpAddressInfo> addresses;
  std::uint64_t hardwareType = 0;  ///< the system's code of the link layer
  std::uint64_t vlan = 0;
  std::string name;  ///< interface name, as in "en0"
  std::string description;
  wxString macAddress;  ///< twelve upper-case hexadecimal digits
  std::string type;
  std::string manufacturer;

  static constexpr auto Fields() {
    return FieldTable(
        Texts("gateways", &NetworkAdapterInfo::gateways),
        Texts("dnsServers", &NetworkAdapterInfo::dnsServers),
        Texts("dhcpServers", &NetworkAdapterInfo::dhcpServers),
        Field("speedMbps", &NetworkAdapterInfo::speedMbps), Field("mtu", &NetworkAdapterInfo::mtu),
        Records("addresses", &NetworkAdapterInfo::addresses),
        Field("hardwareType", &NetworkAdapterInfo::hardwareType),
        Field("vlan", &NetworkAdapterInfo::vlan), Field("name", &NetworkAdapterInfo::name),
        Field("description", &NetworkAdapterInfo::description),
        Field("macAddress", &NetworkAdapterInfo::macAddress),
        Field("type", &NetworkAdapterInfo::type),
        Field("manufacturer", &NetworkAdapterInfo::manufacturer));
  }
  static constexpr auto Key() { return &NetworkAdapterInfo::name; }
  static constexpr auto Kept() {
    return FieldTable(Field("manufacturer", &NetworkAdapterInfo::manufacturer),
                      Field("name", &NetworkAdapterInfo::name),
                      Field("type", &NetworkAdapterInfo::type));
  }
};

}  // namespace Norvik::Common
