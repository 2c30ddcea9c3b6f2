#include "machine/linux/BlockDevices.h"

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>

#include "common/text/Text.h"
#include "machine/SystemText.h"

namespace Norvik::Machine {

namespace {

using namespace Common;

constexpr std::uint64_t SECTOR = 512;
constexpr char BLOCK_FOLDER[] = "/sys/block/";

std::string FirstText(const SystemFiles& files, const std::string& folder,
                      std::initializer_list<const char*> names) {
  for (const char* name : names) {
    std::string text = files.Text(folder + name);
    if (!text.empty()) return text;
  }
  return {};
}

/// From the page with the unit serial number of a SCSI device: a header of four bytes, then the
/// text.
std::string ScsiSerial(const SystemFiles& files, const std::string& folder) {
  const std::string page = files.Bytes(folder + "device/vpd_pg80");
  return page.size() > 4 ? trim_copy(EncodeUtf8Characters(page.substr(4))) : std::string();
}

std::map<std::string, std::string> DeviceRecord(const SystemFiles& files,
                                                const std::string& number) {
  return ParseDeviceRecord(files.Bytes("/run/udev/data/b" + number));
}

/// The device manager escapes blanks and other characters as \x20.
std::string Unescaped(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::string digits = text.substr(i, 2) == "\\x" ? text.substr(i + 2, 2) : "";
    const bool escape = digits.size() == 2 &&
                        digits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    if (escape) {
      result += static_cast<char>(std::stoi(digits, nullptr, 16));
      i += 3;
    } else {
      result += text[i];
    }
  }
  return result;
}

DiskPartitionInfo PartitionOf(const SystemFiles& files, const std::string& folder,
                              const std::string& name, const std::string& number) {
  constexpr char ACTIVE[] = "0x80";
  DiskPartitionInfo partition;
  partition.device = "/dev/" + name;
  partition.index = files.Number(folder + "partition");
  partition.offsetBytes = files.Number(folder + "start") * SECTOR;
  partition.sizeBytes = files.Number(folder + "size") * SECTOR;
  partition.readOnly = files.Number(folder + "ro") != 0;
  const auto event = ParseEntries(files.Bytes(folder + "uevent"), '=');
  const auto record = DeviceRecord(files, number);
  partition.type = ValueOf(record, "ID_PART_ENTRY_TYPE");
  partition.label = ValueOf(event, "PARTNAME");
  if (partition.label.empty()) partition.label = Unescaped(ValueOf(record, "ID_FS_LABEL_ENC"));
  partition.bootable = ValueOf(record, "ID_PART_ENTRY_FLAGS") == ACTIVE;
  partition.fileSystemType = ValueOf(record, "ID_FS_TYPE");
  partition.uuid = ValueOf(event, "PARTUUID");
  if (partition.uuid.empty()) partition.uuid = ValueOf(record, "ID_PART_ENTRY_UUID");
  return partition;
}

void AddPartitions(const SystemFiles& files, const std::string& disk, BlockDisk& result) {
  for (const auto& name : files.Names(BLOCK_FOLDER + disk)) {
    const std::string folder = BLOCK_FOLDER + disk + "/" + name + "/";
    if (!files.Exists(folder + "partition")) continue;
    const std::string number = files.Text(folder + "dev");
    result.deviceNumbers.push_back(number);
    result.info.partitions.push_back(PartitionOf(files, folder, name, number));
  }
  result.info.partitions.sort(
      [](const auto& left, const auto& right) { return left.index < right.index; });
}

BlockDisk DiskOf(const SystemFiles& files, const std::string& name) {
  const std::string folder = BLOCK_FOLDER + name + "/";
  BlockDisk disk;
  PhysicalDiskInfo& info = disk.info;
  const std::string number = files.Text(folder + "dev");
  const auto record = DeviceRecord(files, number);
  info.pnpDeviceId = name;
  info.sizeBytes = files.Number(folder + "size") * SECTOR;
  info.busType = BusTypeOf(files.Resolved(folder));
  info.manufacturer = FirstText(files, folder, {"device/vendor"});
  // Some buses report a number here.
  if (boost::starts_with(info.manufacturer, "0x")) info.manufacturer.clear();
  info.model = FirstText(files, folder, {"device/model", "device/name"});
  info.serial = FirstText(files, folder, {"device/serial", "serial"});
  if (info.serial.empty()) info.serial = ScsiSerial(files, folder);
  if (info.serial.empty()) info.serial = ValueOf(record, "ID_SERIAL_SHORT");
  info.mediaType = files.Number(folder + "queue/rotational") != 0 ? "HDD" : "SSD";
  disk.deviceNumbers.push_back(number);
  AddPartitions(files, name, disk);
  return disk;
}

bool IsLayered(const std::string& name) {
  return boost::starts_with(name, "dm-") || boost::starts_with(name, "md");
}

bool IsIgnored(const std::string& name) {
  const auto begins = [&](const char* prefix) { return boost::starts_with(name, prefix); };
  return begins("loop") || begins("ram") || begins("zram") || begins("sr") || begins("fd") ||
         begins("nbd");
}

/// Collects the numbers of all devices below a layered device, in all layers.
void CollectBelow(const SystemFiles& files, const std::string& name, int depth,
                  std::vector<std::string>& numbers) {
  constexpr int DEEPEST = 8;
  const std::string folder = BLOCK_FOLDER + name + "/slaves";
  for (const auto& below : files.Names(folder)) {
    numbers.push_back(files.Text(folder + "/" + below + "/dev"));
    if (IsLayered(below) && depth < DEEPEST) CollectBelow(files, below, depth + 1, numbers);
  }
}

/// A layered device belongs to the first disk below it.
void AttachLayered(const SystemFiles& files, const std::string& name,
                   std::vector<BlockDisk>& disks) {
  std::vector<std::string> below;
  CollectBelow(files, name, 0, below);
  for (auto& disk : disks) {
    auto& numbers = disk.deviceNumbers;
    if (std::find_first_of(numbers.begin(), numbers.end(), below.begin(), below.end()) ==
        numbers.end()) {
      continue;
    }
    numbers.push_back(files.Text(BLOCK_FOLDER + name + "/dev"));
    return;
  }
}

}  // namespace

std::vector<BlockDisk> ReadBlockDisks(const SystemFiles& files) {
  std::vector<BlockDisk> disks;
  const auto names = files.Names(BLOCK_FOLDER);
  for (const auto& name : names) {
    if (IsIgnored(name) || IsLayered(name)) continue;
    BlockDisk disk = DiskOf(files, name);
    if (disk.info.sizeBytes > 0) disks.push_back(std::move(disk));
  }
  for (const auto& name : names) {
    if (IsLayered(name)) AttachLayered(files, name, disks);
  }
  return disks;
}

std::map<std::string, std::string> ParseDeviceRecord(const std::string& text) {
  std::map<std::string, std::string> record;
  for (const auto& entry : ParseEntries(text, '=')) {
    if (boost::starts_with(entry.first, "E:")) record[entry.first.substr(2)] = entry.second;
  }
  return record;
}

std::string BusTypeOf(const std::string& devicePath) {
  // The order matters: a USB disk is also a SCSI disk.
  static constexpr struct {
    const char* part;
    const char* name;
  } BUSES[] = {{"/usb", "USB"}, {"/nvme", "NVMe"},   {"/ata", "SATA"}, {"/virtio", "Virtio"},
               {"/mmc", "MMC"}, {"/vmbus", "VMBus"}, {"/vbd-", "Xen"}, {"/host", "SCSI"}};
  for (const auto& bus : BUSES) {
    if (devicePath.find(bus.part) != std::string::npos) return bus.name;
  }
  return {};
}

}  // namespace Norvik::Machine
