#include "machine/NetworkText.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <charconv>

#include "common/text/Text.h"
#include "machine/SystemText.h"

namespace Norvik::Machine {

namespace {

using namespace Common;

void AddOnce(std::vector<std::string>& list, const std::string& text) {
  if (std::find(list.begin(), list.end(), text) == list.end()) list.push_back(text);
}

template <class Number>
bool ParseHex(const std::string& text, Number& number) {
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number, 16);
  return result.ec == std::errc() && result.ptr == end;
}

/// An IPv4 address that the kernel prints as the number in memory, in network byte order.
std::string Ipv4Text(std::uint32_t word) {
  in_addr address{};
  address.s_addr = word;
  char text[INET_ADDRSTRLEN];
  return ::inet_ntop(AF_INET, &address, text, sizeof(text)) ? text : "";
}

/// An address like "fe80::1%en0" without the interface that it names.
std::string WithoutZone(const std::string& address) { return address.substr(0, address.find('%')); }

/// From 32 hexadecimal digits; empty for anything else.
std::string Ipv6Text(const std::string& digits) {
  in6_addr address{};
  if (digits.size() != 2 * sizeof(address.s6_addr)) return {};
  for (std::size_t i = 0; i < sizeof(address.s6_addr); ++i) {
    if (!ParseHex(digits.substr(2 * i, 2), address.s6_addr[i])) return {};
  }
  char text[INET6_ADDRSTRLEN];
  return ::inet_ntop(AF_INET6, &address, text, sizeof(text)) ? text : "";
}

}  // namespace

std::vector<wxString> Wide(const std::vector<std::string>& texts) {
  std::vector<wxString> wide;
  for (const auto& text : texts) wide.push_back(WxStringFromStdString(text));
  return wide;
}

ByInterface ParseRoutes(const std::string& text) {
  constexpr std::uint32_t BY_GATEWAY = 2;
  ByInterface gateways;
  for (const auto& line : LinesOf(text)) {
    // Iface Destination Gateway Flags ...
    const auto words = WordsOf(line);
    std::uint32_t gateway = 0;
    std::uint32_t flags = 0;
    if (words.size() < 4 || !ParseHex(words[2], gateway) || !ParseHex(words[3], flags)) continue;
    if (gateway != 0 && flags & BY_GATEWAY) AddOnce(gateways[words[0]], Ipv4Text(gateway));
  }
  return gateways;
}

ByInterface ParseIpv6Routes(const std::string& text) {
  static const std::string NOWHERE(32, '0');
  ByInterface gateways;
  for (const auto& line : LinesOf(text)) {
    // destination length source length gateway metric references use flags interface
    const auto words = WordsOf(line);
    if (words.size() < 10 || words[0] != NOWHERE || words[1] != "00" || words[4] == NOWHERE) {
      continue;
    }
    const std::string gateway = Ipv6Text(words[4]);
    if (!gateway.empty()) AddOnce(gateways[words[9]], gateway);
  }
  return gateways;
}

ByInterface ParseNetstatRoutes(const std::string& text) {
  ByInterface gateways;
  std::size_t interfaceColumn = 0;
  for (const auto& line : LinesOf(text)) {
    const auto words = WordsOf(line);
    const auto title = std::find(words.begin(), words.end(), "Netif");
    if (title != words.end()) interfaceColumn = static_cast<std::size_t>(title - words.begin());
    if (words.empty() || words[0] != "default") continue;
    if (interfaceColumn < 2 || words.size() <= interfaceColumn) continue;
    const std::string gateway = WithoutZone(words[1]);
    // A gateway like "link#12" is no address.
    if (gateway.find('#') == std::string::npos) AddOnce(gateways[words[interfaceColumn]], gateway);
  }
  return gateways;
}

std::map<std::string, std::vector<IpAddressInfo>> ParseIpv6Addresses(const std::string& text) {
  constexpr std::uint32_t TEMPORARY = 0x01;
  std::map<std::string, std::vector<IpAddressInfo>> addresses;
  for (const auto& line : LinesOf(text)) {
    // address interface-number prefix-length scope flags interface
    const auto words = WordsOf(line);
    std::uint32_t prefix = 0;
    std::uint32_t flags = 0;
    if (words.size() < 6 || !ParseHex(words[2], prefix) || !ParseHex(words[4], flags)) continue;
    const std::string address = Ipv6Text(words[0]);
    if (address.empty() || flags & TEMPORARY) continue;
    addresses[words[5]].push_back({address, std::to_string(prefix)});
  }
  // The kernel lists them in no particular order.
  for (auto& item : addresses) {
    std::sort(item.second.begin(), item.second.end(),
              [](const auto& left, const auto& right) { return left.address < right.address; });
  }
  return addresses;
}

ResolverFile ParseResolverFile(const std::string& text) {
  ResolverFile file;
  std::string search;
  for (const auto& line : LinesOf(text)) {
    const auto words = WordsOf(line);
    if (words.size() < 2) continue;
    if (words[0] == "nameserver") AddOnce(file.servers, WithoutZone(words[1]));
    if (words[0] == "domain") file.domain = words[1];
    if (words[0] == "search" && words[1] != ".") search = words[1];
  }
  if (file.domain.empty()) file.domain = search;
  return file;
}

std::map<std::string, std::string> ParseDhcpLeases(const std::string& text) {
  std::map<std::string, std::string> servers;
  std::string interface;
  for (const auto& line : LinesOf(text)) {
    auto words = WordsOf(line);
    if (words.empty()) continue;
    std::string& last = words.back();
    if (last.back() == ';') last.pop_back();
    if (words[0] == "interface" && words.size() == 2) interface = WithoutQuotes(last);
    const bool server =
        words.size() == 3 && words[0] == "option" && words[1] == "dhcp-server-identifier";
    if (server && !interface.empty()) servers[interface] = last;
  }
  return servers;
}

std::map<std::string, std::uint64_t> ParseVlans(const std::string& text) {
  std::map<std::string, std::uint64_t> vlans;
  for (const auto& line : LinesOf(text)) {
    // name | number | parent
    const auto words = WordsOf(line);
    const bool entry = words.size() == 5 && words[1] == "|" && words[3] == "|";
    if (entry) vlans[words[0]] = LeadingNumber(words[2]);
  }
  return vlans;
}

std::map<std::string, HardwarePort> ParseHardwarePorts(const std::string& text) {
  std::map<std::string, HardwarePort> ports;
  for (const auto& entries : ParseParagraphs(text, ':')) {
    const std::string name = ValueOf(entries, "Hardware Port");
    const std::string device = ValueOf(entries, "Device");
    if (!device.empty()) ports[device] = {name, name, 0};
    const std::string made = ValueOf(entries, "Device (\"Hardware\" Port)");
    if (made.empty()) continue;
    ports[made] = {"VLAN", ValueOf(entries, "VLAN User Defined Name"),
                   LeadingNumber(ValueOf(entries, "Tag"))};
  }
  return ports;
}

}  // namespace Norvik::Machine
