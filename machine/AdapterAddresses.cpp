#include "machine/AdapterAddresses.h"

#include <arpa/inet.h>

#include <cstring>

#include "platform/Interfaces.h"

namespace Norvik::Machine {

namespace {

std::string Ipv4Text(const sockaddr* given) {
  if (!given || given->sa_family != AF_INET) return {};
  sockaddr_in address{};
  std::memcpy(&address, given, sizeof(address));
  char text[INET_ADDRSTRLEN];
  return ::inet_ntop(AF_INET, &address.sin_addr, text, sizeof(text)) ? text : "";
}

}  // namespace

std::map<std::string, std::list<Common::IpAddressInfo>> Ipv4Addresses() {
  std::map<std::string, std::list<Common::IpAddressInfo>> addresses;
  const auto list = Platform::ReadInterfaces();
  for (const ifaddrs* item = list.get(); item; item = item->ifa_next) {
    const std::string address = Ipv4Text(item->ifa_addr);
    if (address.empty()) continue;
    addresses[item->ifa_name].push_back({address, Ipv4Text(item->ifa_netmask)});
  }
  return addresses;
}

}  // namespace Norvik::Machine
