#include "machine/DiskutilText.h"
#include "machine/MountText.h"
#include "machine/NetworkText.h"
#include "machine/ProcessorText.h"
#include "machine/SystemText.h"
#include "support/RecordJson.h"

namespace {

using namespace Norvik::Machine;
using namespace Norvik::Tests;

Json FoundIn(const ProcessorPackage& package) {
  Json found = JsonOf(package.info);
  found["firstProcessor"] = package.firstProcessor;
  return found;
}
Json FoundIn(const Mount& mount) {
  return {{"deviceNumber", mount.deviceNumber},
          {"mountPoint", mount.mountPoint},
          {"fileSystem", mount.fileSystem},
          {"source", mount.source}};
}
template <class Value>
Json FoundIn(const std::vector<Value>& values) {
  Json found = Json::array();
  for (const Value& value : values) found.push_back(FoundIn(value));
  return found;
}

Json AddressesIn(const std::string& text) {
  Json found;
  for (const auto& [name, addresses] : ParseIpv6Addresses(text)) found[name] = JsonOf(addresses);
  return found;
}
Json ResolverIn(const std::string& text) {
  const ResolverFile file = ParseResolverFile(text);
  return {{"servers", file.servers}, {"domain", file.domain}};
}

/// From the output of `diskutil info -all`, and then, from its first title on, of `diskutil list`.
Json DisksIn(const std::string& text) {
  const auto list = std::min(text.find("\n/dev/"), text.size());
  return JsonOf(ParseDiskutil(text.substr(0, list), text.substr(list)));
}
Json PortsIn(const std::string& text) {
  Json found;
  for (const auto& [device, port] : ParseHardwarePorts(text)) {
    found[device] = {port.type, port.description, port.vlan};
  }
  return found;
}
Json KernelFactsIn(const std::string& text) {
  const Entries entries = ParseEntries(text, ':');
  const KernelValues values = {
      [&](const std::string& name) { return LeadingNumber(ValueOf(entries, name)); },
      [&](const std::string& name) { return ValueOf(entries, name); }};
  Norvik::Common::ProcessorInfo info;
  info.caches = MacCaches(values);
  info.features = IntelFeatures(values);
  info.features.splice(info.features.end(), ParseArmFeatures(text));
  return JsonOf(info);
}

const std::map<std::string, Json (*)(const std::string&)> READERS = {
    {"cache size", [](const std::string& text) { return Json(ParseCacheSize(text)); }},
    {"cpuinfo", [](const std::string& text) { return FoundIn(ParseCpuInfo(text)); }},
    {"dhcp leases", [](const std::string& text) { return Json(ParseDhcpLeases(text)); }},
    {"diskutil", DisksIn},
    {"entries", [](const std::string& text) { return Json(ParseEntries(text, '=')); }},
    {"gateways", [](const std::string& text) { return Json(ParseRoutes(text)); }},
    {"gateways of netstat", [](const std::string& text) { return Json(ParseNetstatRoutes(text)); }},
    {"gateways of version 6", [](const std::string& text) { return Json(ParseIpv6Routes(text)); }},
    {"hardware ports", PortsIn},
    {"kernel facts of a Mac", KernelFactsIn},
    {"addresses of version 6", AddressesIn},
    {"leading number", [](const std::string& text) { return Json(LeadingNumber(text)); }},
    {"mac address", [](const std::string& text) { return Json(PlainMacAddress(text)); }},
    {"mounts", [](const std::string& text) { return FoundIn(ParseMountInfo(text)); }},
    {"resolver file", ResolverIn},
    {"vlans", [](const std::string& text) { return Json(ParseVlans(text)); }},
    {"volumes", [](const std::string& text) { return FoundIn(VolumesOf(ParseMountInfo(text))); }},
    {"without keywords", [](const std::string& text) { return Json(WithoutKeywords(text)); }},
    {"without quotes", [](const std::string& text) { return Json(WithoutQuotes(text)); }},
};

/// A text in one piece or as its lines.
std::string TextOf(const Json& text) {
  if (text.is_string()) return text;
  std::string lines;
  for (const std::string line : text) lines += line + "\n";
  return lines;
}

TEST(Texts, AreParsedByTheirReaders) {
  const Json tables = DataOf("machine/texts.json");
  EXPECT_EQ(tables.size(), READERS.size());
  for (const auto& [reader, rows] : tables.items()) {
    for (const Json& row : rows) {
      const Json found = READERS.at(reader)(TextOf(row[0]));
      EXPECT_EQ(Shown(Chosen(found, row[1])), Shown(row[1])) << reader << ": " << row[0];
    }
  }
}

TEST(MountText, FreeSpaceIsRoundedToWholeGibibytes) {
  EXPECT_EQ(WholeGibibytes((5ull << 30) - 1), 4ull << 30);
  EXPECT_EQ(WholeGibibytes(5ull << 30), 5ull << 30);
}

}  // namespace
