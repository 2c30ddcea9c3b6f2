#include "platform/Interfaces.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <limits>
#include <string>

#include "platform/RecordedMachine.h"
#include "platform/compat/RecordedJson.h"

namespace Norvik::Platform {

namespace {

using nlohmann::json;

template <class Address>
sockaddr* Generic(Address& address) {
  return reinterpret_cast<sockaddr*>(&address);
}

std::uint32_t WordAt(const json& object, const char* key) {
  constexpr std::uint64_t LARGEST = std::numeric_limits<std::uint32_t>::max();
  return static_cast<std::uint32_t>(std::min(WholeNumberAt(object, key), LARGEST));
}

/// Up to eight bytes of an address like "00:00:5e:00:53:01".
std::string LinkBytes(const std::string& text) {
  std::string bytes;
  for (std::size_t at = 0; at + 1 < text.size() && bytes.size() < 8; at += 3) {
    bytes += static_cast<char>(std::strtoul(text.substr(at, 2).c_str(), nullptr, 16));
  }
  return bytes;
}

/// The entries of a recorded machine, in the form that a Mac gives them: one for the link of each
/// interface, then one for each of its addresses.
class RecordedInterfaces {
 public:
  RecordedInterfaces() {
    ForEachObject(RecordedJson("interfaces.json"), [this](const json& node) { Add(node); });
  }
  const ifaddrs* First() const { return entries_.empty() ? nullptr : &entries_.front().entry; }

 private:
  /// An entry with what it points to.
  struct Entry {
    ifaddrs entry{};
    std::string name;
    union {
      sockaddr_dl link;  // the longest comes first: only that one is set to zero
      sockaddr_in6 ipv6;
      sockaddr_in ipv4;
    } address{}, mask{};
    if_data data{};
  };

  void Add(const json& node) {
    ++index_;
    AddLink(node);
    ForEachObject(MemberOf(node, "ipv4"), [&](const json& item) { AddIpv4(node, item); });
    ForEachObject(MemberOf(node, "ipv6"), [&](const json& item) { AddIpv6(node, item); });
  }

  Entry& NewEntry(const json& node) {
    Entry& added = entries_.emplace_back();
    added.name = TextAt(node, "name").substr(0, IFNAMSIZ - 1);
    added.entry.ifa_name = added.name.data();
    added.entry.ifa_addr = Generic(added.address);
    if (entries_.size() > 1) entries_[entries_.size() - 2].entry.ifa_next = &added.entry;
    return added;
  }

  void AddLink(const json& node) {
    Entry& added = NewEntry(node);
    const std::string bytes = LinkBytes(TextAt(node, "address"));
    sockaddr_dl& link = added.address.link;
    link.sdl_family = AF_LINK;
    link.sdl_index = index_;
    link.sdl_type = static_cast<std::uint8_t>(WordAt(node, "type"));
    link.sdl_nlen = static_cast<std::uint8_t>(added.name.size());
    link.sdl_alen = static_cast<std::uint8_t>(bytes.size());
    (added.name + bytes).copy(link.sdl_data, sizeof(link.sdl_data));
    added.data.ifi_type = link.sdl_type;
    added.data.ifi_mtu = WordAt(node, "mtu");
    added.data.ifi_baudrate = WordAt(node, "bitsPerSecond");
    added.entry.ifa_data = &added.data;
  }

  void AddIpv4(const json& node, const json& item) {
    Entry& added = NewEntry(node);
    added.address.ipv4.sin_family = added.mask.ipv4.sin_family = AF_INET;
    ::inet_pton(AF_INET, TextAt(item, "address").c_str(), &added.address.ipv4.sin_addr);
    ::inet_pton(AF_INET, TextAt(item, "mask").c_str(), &added.mask.ipv4.sin_addr);
    added.entry.ifa_netmask = Generic(added.mask);
  }

  void AddIpv6(const json& node, const json& item) {
    Entry& added = NewEntry(node);
    in6_addr& address = added.address.ipv6.sin6_addr;
    added.address.ipv6.sin6_family = added.mask.ipv6.sin6_family = AF_INET6;
    ::inet_pton(AF_INET6, TextAt(item, "address").c_str(), &address);
    // A Mac's kernel keeps the number of the interface in a link-local address.
    if (IN6_IS_ADDR_LINKLOCAL(&address)) address.s6_addr[3] = static_cast<std::uint8_t>(index_);
    const std::uint32_t length = std::min(WordAt(item, "prefixLength"), 128u);
    for (std::uint32_t bit = 0; bit < length; ++bit) {
      std::uint8_t& byte = added.mask.ipv6.sin6_addr.s6_addr[bit / 8];
      byte = static_cast<std::uint8_t>(byte | 0x80 >> bit % 8);
    }
    added.entry.ifa_netmask = Generic(added.mask);
  }

  std::deque<Entry> entries_;  // which does not move them
  std::uint16_t index_ = 0;
};

bool IsSame(const in6_addr& left, const in6_addr& right) {
  return std::memcmp(&left, &right, sizeof(left)) == 0;
}

}  // namespace

std::shared_ptr<const ifaddrs> ReadInterfaces() {
  if (IsMachineRecorded()) {
    const auto recorded = std::make_shared<const RecordedInterfaces>();
    return {recorded, recorded->First()};
  }
  ifaddrs* list = nullptr;
  if (::getifaddrs(&list) != 0) return nullptr;
  return {list, ::freeifaddrs};
}

bool IsTemporaryAddress(const char* interface, const sockaddr_in6& address) {
  bool temporary = false;
  ForEachObject(RecordedJson("interfaces.json"), [&](const json& node) {
    if (TextAt(node, "name") != interface) return;
    ForEachObject(MemberOf(node, "ipv6"), [&](const json& item) {
      in6_addr known{};
      ::inet_pton(AF_INET6, TextAt(item, "address").c_str(), &known);
      if (IsSame(known, address.sin6_addr)) temporary = MemberOf(item, "temporary") == true;
    });
  });
  return temporary;
}

}  // namespace Norvik::Platform
