#include "machine/DiskutilText.h"

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <map>
#include <set>

#include "common/text/Text.h"
#include "machine/MountText.h"
#include "machine/SystemText.h"

namespace Norvik::Machine {

namespace {

using namespace Common;

/// Disks and partitions, by identifier.
using Devices = std::map<std::string, Entries>;

Devices ParseDevices(const std::string& text) {
  Devices devices;
  std::string block;
  const auto close = [&] {
    Entries entries = ParseEntries(block, ':');
    const std::string identifier = ValueOf(entries, "Device Identifier");
    if (!identifier.empty()) devices.emplace(identifier, std::move(entries));
    block.clear();
  };
  for (const auto& line : LinesOf(text)) {
    if (boost::starts_with(line, "*****")) {
      close();
    } else {
      block += line + "\n";
    }
  }
  close();
  return devices;
}

/// The first value that is present and not "Not applicable".
std::string KnownValue(const Entries& entries, std::initializer_list<const char*> keys) {
  for (const char* key : keys) {
    std::string value = ValueOf(entries, key);
    if (!value.empty() && !boost::starts_with(value, "Not applicable")) return value;
  }
  return {};
}

bool IsYes(const Entries& entries, const char* key) {
  return boost::starts_with(ValueOf(entries, key), "Yes");
}

/// From "500.3 GB (500277790720 Bytes) (exactly ...)".
std::uint64_t BytesOf(const Entries& entries, std::initializer_list<const char*> keys) {
  const std::string value = KnownValue(entries, keys);
  const auto bracket = value.find('(');
  return bracket == std::string::npos ? 0 : LeadingNumber(value.substr(bracket + 1));
}

/// "disk0" of "disk0s2"; the search starts after the word "disk", which contains an "s".
std::string WholeOf(const std::string& identifier) {
  const auto slice = identifier.find('s', std::min<std::size_t>(identifier.size(), 4));
  return identifier.substr(0, slice);
}

bool IsOptical(const Entries& entries) { return !ValueOf(entries, "Optical Drive Type").empty(); }

/// A disc in a drive is no part of the machine.
bool IsPhysical(const Entries& entries) {
  return IsYes(entries, "Whole") && !IsYes(entries, "Virtual") && !IsOptical(entries) &&
         ValueOf(entries, "Protocol") != "Disk Image";
}

/// The disks below each virtual disk, which is an APFS container or a CoreStorage volume.
using Stores = std::map<std::string, std::set<std::string>>;

/// From lines like "Physical Stores disk0s2, disk1s2" below the title of the virtual disk.
Stores ParseStores(const std::string& list) {
  static const std::string TITLE = "/dev/";
  Stores stores;
  std::string whole;
  for (const auto& line : LinesOf(list)) {
    if (boost::starts_with(line, TITLE)) {
      whole = line.substr(TITLE.size(), line.find_first_of(" :") - TITLE.size());
      continue;
    }
    const std::string text = trim_copy(line);
    if (!boost::starts_with(text, "Physical Store") &&
        !boost::starts_with(text, "Logical Volume")) {
      continue;
    }
    for (const auto& word : WordsOf(text)) {
      if (!boost::starts_with(word, "disk")) continue;
      stores[whole].insert(WholeOf(word.substr(0, word.find(','))));
    }
  }
  return stores;
}

/// Not all releases report the store of a container with each of its volumes, or at all; of the two
/// stores of a Fusion Drive the entries keep one. What the list has is complete.
void AddReportedStores(const Devices& devices, Stores& stores) {
  Stores reported;
  for (const auto& device : devices) {
    const std::string store = ValueOf(device.second, "APFS Physical Store");
    if (store.empty()) continue;
    reported[ValueOf(device.second, "Part of Whole")].insert(WholeOf(store));
  }
  stores.merge(reported);
}

/// The disks that hold a device.
std::set<std::string> DisksBelow(const Entries& entries, const Stores& stores) {
  const std::string whole = ValueOf(entries, "Part of Whole");
  const auto found = stores.find(whole);
  return found == stores.end() ? std::set<std::string>{whole} : found->second;
}

PhysicalDiskInfo DiskOf(const std::string& identifier, const Entries& entries) {
  PhysicalDiskInfo disk;
  disk.pnpDeviceId = identifier;
  disk.sizeBytes = BytesOf(entries, {"Disk Size", "Total Size"});
  disk.busType = KnownValue(entries, {"Protocol"});
  disk.model = KnownValue(entries, {"Device / Media Name"});
  const std::string solid = ValueOf(entries, "Solid State");
  if (solid == "Yes") disk.mediaType = "SSD";
  if (solid == "No") disk.mediaType = "HDD";
  return disk;
}

DiskPartitionInfo PartitionOf(const std::string& identifier, const Entries& entries) {
  DiskPartitionInfo partition;
  partition.device = KnownValue(entries, {"Device Node"});
  partition.index = LeadingNumber(identifier.substr(identifier.rfind('s') + 1));
  partition.type = KnownValue(entries, {"Partition Type", "Content (IOContent)"});
  partition.offsetBytes = LeadingNumber(KnownValue(entries, {"Partition Offset"}));
  partition.sizeBytes = BytesOf(entries, {"Disk Size", "Total Size"});
  partition.label = KnownValue(entries, {"Volume Name"});
  partition.bootable = IsYes(entries, "OS Can Be Installed");
  partition.fileSystemType = KnownValue(entries, {"Type (Bundle)"});
  partition.readOnly = IsYes(entries, "Media Read-Only") || IsYes(entries, "Read-Only Media");
  partition.uuid = KnownValue(entries, {"Disk / Partition UUID"});
  return partition;
}

LogicalDiskInfo VolumeOf(const Entries& entries) {
  LogicalDiskInfo volume;
  volume.sizeBytes =
      BytesOf(entries, {"Container Total Space", "Volume Total Space", "Disk Size", "Total Size"});
  volume.freeBytes = WholeGibibytes(
      BytesOf(entries, {"Container Free Space", "Volume Free Space", "Volume Available Space"}));
  volume.mountPoint = KnownValue(entries, {"Mount Point"});
  volume.volumeName = KnownValue(entries, {"Volume Name"});
  volume.fileSystemType = KnownValue(entries, {"Type (Bundle)"});
  volume.fileSystemName = KnownValue(entries, {"File System Personality", "Name (User Visible)"});
  volume.device = KnownValue(entries, {"Device Node"});
  return volume;
}

}  // namespace

std::vector<PhysicalDiskInfo> ParseDiskutil(const std::string& info, const std::string& list) {
  const Devices devices = ParseDevices(info);
  Stores stores = ParseStores(list);
  AddReportedStores(devices, stores);
  std::vector<PhysicalDiskInfo> disks;
  for (const auto& [identifier, entries] : devices) {
    if (IsPhysical(entries)) disks.push_back(DiskOf(identifier, entries));
  }
  for (const auto& [identifier, entries] : devices) {
    const auto below = DisksBelow(entries, stores);
    for (auto& disk : disks) {
      if (below.count(disk.pnpDeviceId) == 0) continue;
      const bool part =
          !IsYes(entries, "Whole") && ValueOf(entries, "Part of Whole") == disk.pnpDeviceId;
      if (part) disk.partitions.push_back(PartitionOf(identifier, entries));
      if (IsYes(entries, "Mounted")) disk.logicalDisks.push_back(VolumeOf(entries));
    }
  }
  for (auto& disk : disks) {
    disk.partitions.sort(
        [](const auto& left, const auto& right) { return left.index < right.index; });
  }
  return disks;
}

}  // namespace Norvik::Machine
