#include "host/recording/SystemFacts.h"

#include <arpa/inet.h>
#include <libproc.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "host/OutputText.h"
#include "platform/Interfaces.h"
#include "platform/LocalAccounts.h"
#include "platform/LoginRecords.h"
#include "platform/MachineFacts.h"

namespace Norvik::Host {

namespace {

using Platform::Asked;
using Platform::LoginRecords;

OrderedJson KernelValues(const Questions& questions) {
  OrderedJson values = {{"kern.hostname", Platform::HostName()}};
  for (const auto& [name, text] : questions.AnswersTo(Asked::KERNEL_TEXT)) values[name] = text;
  for (const auto& [name, digits] : questions.AnswersTo(Asked::KERNEL_NUMBER)) {
    values[name] = std::stoull(digits);
  }
  return values;
}

OrderedJson Volumes(const Questions& questions) {
  OrderedJson mounts = OrderedJson::array();
  for (const auto& [mountPoint, device] : questions.AnswersTo(Asked::DEVICE)) {
    mounts.push_back({{"mountPoint", mountPoint}, {"device", device}});
  }
  OrderedJson modified = OrderedJson::object();
  for (const auto& [path, seconds] : questions.AnswersTo(Asked::MODIFICATION)) {
    modified[path] = std::stoll(seconds);
  }
  return {{"mounts", mounts}, {"modified", modified}};
}

std::string LinkAddress(const sockaddr_dl& link) {
  std::string address;
  for (int at = 0; at < link.sdl_alen; ++at) {
    char digits[4];
    std::snprintf(digits, sizeof(digits), "%s%02x", at == 0 ? "" : ":",
                  static_cast<unsigned int>(static_cast<unsigned char>(LLADDR(&link)[at])));
    address += digits;
  }
  return address;
}

void AddLink(const ifaddrs& item, OrderedJson& interface) {
  const auto& link = *reinterpret_cast<const sockaddr_dl*>(item.ifa_addr);
  interface["type"] = link.sdl_type;
  if (link.sdl_alen > 0) interface["address"] = LinkAddress(link);
  if (!item.ifa_data) return;
  const auto& data = *static_cast<const if_data*>(item.ifa_data);
  interface["mtu"] = data.ifi_mtu;
  interface["bitsPerSecond"] = data.ifi_baudrate;
}

template <class Address>
std::string AddressText(int family, const Address& address) {
  char text[INET6_ADDRSTRLEN];
  return ::inet_ntop(family, &address, text, sizeof(text)) ? text : std::string();
}

void AddIpv4(const ifaddrs& item, OrderedJson& interface) {
  const auto& address = *reinterpret_cast<const sockaddr_in*>(item.ifa_addr);
  OrderedJson added = {{"address", AddressText(AF_INET, address.sin_addr)}};
  if (item.ifa_netmask) {
    const auto& mask = *reinterpret_cast<const sockaddr_in*>(item.ifa_netmask);
    added["mask"] = AddressText(AF_INET, mask.sin_addr);
  }
  interface["ipv4"].push_back(added);
}

int PrefixLength(const in6_addr& mask) {
  int length = 0;
  while (length < 128 && (mask.s6_addr[length / 8] & 0x80 >> length % 8) != 0) ++length;
  return length;
}

void AddIpv6(const ifaddrs& item, OrderedJson& interface) {
  sockaddr_in6 address{};
  std::memcpy(&address, item.ifa_addr, sizeof(address));
  const bool isTemporary = Platform::IsTemporaryAddress(item.ifa_name, address);
  // A Mac's kernel keeps the number of the interface in a link-local address.
  if (IN6_IS_ADDR_LINKLOCAL(&address.sin6_addr)) {
    address.sin6_addr.s6_addr[2] = 0;
    address.sin6_addr.s6_addr[3] = 0;
  }
  OrderedJson added = {{"address", AddressText(AF_INET6, address.sin6_addr)}};
  if (item.ifa_netmask) {
    const auto& mask = *reinterpret_cast<const sockaddr_in6*>(item.ifa_netmask);
    added["prefixLength"] = PrefixLength(mask.sin6_addr);
  }
  if (isTemporary) added["temporary"] = true;
  interface["ipv6"].push_back(added);
}

OrderedJson Interfaces() {
  OrderedJson interfaces = OrderedJson::array();
  std::map<std::string, std::size_t> places;
  const auto list = Platform::ReadInterfaces();
  for (const ifaddrs* item = list.get(); item; item = item->ifa_next) {
    if (!item->ifa_addr) continue;
    const auto place = places.emplace(item->ifa_name, interfaces.size());
    if (place.second) interfaces.push_back({{"name", item->ifa_name}});
    OrderedJson& interface = interfaces[place.first->second];
    if (item->ifa_addr->sa_family == AF_LINK) AddLink(*item, interface);
    if (item->ifa_addr->sa_family == AF_INET) AddIpv4(*item, interface);
    if (item->ifa_addr->sa_family == AF_INET6) AddIpv6(*item, interface);
  }
  return interfaces;
}

OrderedJson Logins() {
  OrderedJson logins = OrderedJson::array();
  LoginRecords records;
  while (const utmpx* const entry = records.Next()) {
    logins.push_back({{"type", entry->ut_type},
                      {"time", entry->ut_tv.tv_sec},
                      {"pid", entry->ut_pid},
                      {"user", LoginRecords::TextOf(entry->ut_user)},
                      {"line", LoginRecords::TextOf(entry->ut_line)},
                      {"host", LoginRecords::TextOf(entry->ut_host)}});
  }
  return logins;
}

OrderedJson Accounts() {
  OrderedJson users = OrderedJson::array();
  for (const auto& user : Platform::LocalUsers()) {
    users.push_back({{"name", user.name}, {"fullName", user.fullName}});
  }
  OrderedJson groups = OrderedJson::array();
  for (const auto& group : Platform::LocalGroups()) {
    groups.push_back({{"name", group.name}, {"members", group.members}});
  }
  return {{"users", users}, {"groups", groups}, {"logins", Logins()}};
}

std::vector<int> ProcessIds() {
  const int bytes = ::proc_listpids(PROC_ALL_PIDS, 0, nullptr, 0);
  std::vector<int> ids(bytes > 0 ? static_cast<std::size_t>(bytes) / sizeof(int) : 0);
  const int filled =
      ::proc_listpids(PROC_ALL_PIDS, 0, ids.data(), static_cast<int>(ids.size() * sizeof(int)));
  ids.resize(filled > 0 ? static_cast<std::size_t>(filled) / sizeof(int) : 0);
  return ids;
}

OrderedJson Processes() {
  OrderedJson processes = OrderedJson::array();
  for (const int id : ProcessIds()) {
    OrderedJson process = {{"pid", id}};
    char text[PROC_PIDPATHINFO_MAXSIZE] = {};
    if (::proc_name(id, text, sizeof(text)) > 0) process["name"] = text;
    if (::proc_pidpath(id, text, sizeof(text)) > 0) process["path"] = text;
    rusage_info_v2 usage{};
    if (::proc_pid_rusage(id, RUSAGE_INFO_V2, reinterpret_cast<rusage_info_t*>(&usage)) == 0) {
      process["footprint"] = usage.ri_phys_footprint;
    }
    processes.push_back(process);
  }
  return processes;
}

/// Indented, so that two recordings are easy to compare.
std::string FileText(const OrderedJson& value) {
  return value.dump(1, ' ', false, OrderedJson::error_handler_t::replace) + "\n";
}

}  // namespace

std::map<std::string, std::string> SystemFacts(const Questions& questions) {
  std::map<std::string, std::string> facts = Platform::MachineFacts();
  facts["sysctl.json"] = FileText(KernelValues(questions));
  facts["volumes.json"] = FileText(Volumes(questions));
  facts["interfaces.json"] = FileText(Interfaces());
  facts["accounts.json"] = FileText(Accounts());
  facts["processes.json"] = FileText(Processes());
  return facts;
}

}  // namespace Norvik::Host
