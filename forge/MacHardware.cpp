#include <algorithm>
#include <cmath>
#include <cstdio>

#include "forge/Mac.h"

namespace Norvik::Forge {

namespace {

constexpr std::int64_t GIBIBYTE = 1LL << 30;
constexpr std::int64_t RECOVERY = 5'368'664'064;
constexpr std::int64_t STARTUP = 524'288'000;
constexpr std::int64_t FIRST_OFFSET = 24'576;

Json CacheRecord(const std::string& name, const char* type, int level, int size) {
  return {{"level", level},
          {"maximumBytes", size},
          {"name", name},
          {"sizeBytes", size},
          {"type", type}};
}

Json PartitionRecord(int index, const char* type, std::int64_t offset, std::int64_t size,
                     const std::string& uuid, const std::string& label = "") {
  return {{"bootable", false},    {"device", "/dev/disk0s" + std::to_string(index)},
          {"fileSystemType", ""}, {"index", index},
          {"label", label},       {"offsetBytes", offset},
          {"readOnly", false},    {"sizeBytes", size},
          {"type", type},         {"uuid", uuid}};
}

Json VolumeRecord(const char* device, const std::string& name, const std::string& mountPoint,
                  std::int64_t size, std::int64_t free) {
  return {{"device", device},  {"fileSystemName", "APFS"}, {"fileSystemType", "apfs"},
          {"freeBytes", free}, {"mountPoint", mountPoint}, {"sizeBytes", size},
          {"volumeName", name}};
}

Json DisplayRecord(const Json& model, const std::string& serial) {
  return {{"date", model["date"]},   {"manufacturer", model["manufacturer"]},
          {"model", model["model"]}, {"name", model["name"]},
          {"revision", ""},          {"serial", serial}};
}

std::string HexText(Random random) {
  char text[9];
  std::snprintf(text, sizeof(text), "%08x", static_cast<unsigned int>(random.Bits()));
  return text;
}

}  // namespace

Json Mac::Processor() const {
  const bool intel = IsIntel();
  Json caches = Json::array();
  if (intel) {
    caches = {CacheRecord("L1 Data", "Data", 1, 32'768),
              CacheRecord("L1 Instruction", "Instruction", 1, 32'768),
              CacheRecord("L2 Unified", "Unified", 2, 262'144)};
  } else {
    for (const bool fast : {true, false}) {
      const std::string kind = fast ? " (Performance)" : " (Efficiency)";
      caches.push_back(CacheRecord("L1 Data" + kind, "Data", 1, fast ? 131'072 : 65'536));
      caches.push_back(
          CacheRecord("L1 Instruction" + kind, "Instruction", 1, fast ? 196'608 : 131'072));
      caches.push_back(
          CacheRecord("L2 Unified" + kind, "Unified", 2, fast ? 12'582'912 : 4'194'304));
    }
  }
  const int cores = model_["cores"];
  return {{"architecture", intel ? "x86_64" : "arm64"},
          {"assetTag", ""},
          {"busMhz", intel ? 400 : 0},
          {"caches", std::move(caches)},
          {"cores", cores},
          {"features", intel ? Json{"FPU", "SSSE3", "FMA", "AVX2", "EM64T"}
                             : Json{"FEAT_AES", "FEAT_DotProd", "FEAT_FP16", "FEAT_LSE"}},
          {"identifier", intel ? "Family 6 Model 158 Stepping 10" : "Family 458787763"},
          {"index", 0},
          {"manufacturer", intel ? "GenuineFjord" : "Apple"},
          {"maximumMhz", intel ? 2600 : 0},
          {"model", model_["chip"]},
          {"partNumber", ""},
          {"serial", ""},
          {"socket", ""},
          {"threads", intel ? 2 * cores : cores}};
}

Json Mac::Memory() const {
  const bool intel = IsIntel();
  const std::int64_t gibibytes = AnyOf(model_["memoryGiB"], random_.For("memory"));
  const Json slots = MemorySlots();
  return {{"devices", slots},
          {"errorCorrection", slots.empty() ? 0 : 3},
          {"hugePageBytes", 0},
          {"location", slots.empty() ? 0 : 3},
          {"maximumBytes", 0},
          {"pageBytes", intel ? 4096 : 16'384},
          {"slotCount", slots.size()},
          {"swapBytes", 0},
          {"totalBytes", gibibytes * GIBIBYTE}};
}

/// Only older desktops have modules.
Json Mac::MemorySlots() const {
  if (!IsIntel() || IsLaptop()) return nullptr;
  const std::int64_t gibibytes = AnyOf(model_["memoryGiB"], random_.For("memory"));
  Json slots = Json::array();
  for (int slot = 0; slot < 2; ++slot) {
    slots.push_back({{"assetTag", ""},
                     {"bank", "BANK " + std::to_string(slot)},
                     {"formFactor", "SODIMM"},
                     {"manufacturer", "Fjord"},
                     {"model", "FJ4-2666"},
                     {"name", "ChannelA-DIMM" + std::to_string(slot)},
                     {"serial", HexText(random_.For("module", slot))},
                     {"sizeBytes", gibibytes * GIBIBYTE / 2},
                     {"speedMhz", 2667},
                     {"type", "DDR4"}});
  }
  return slots;
}

Json Mac::Setup() const {
  const bool intel = IsIntel();
  const std::string family = intel ? (IsLaptop() ? "MacBook Pro" : "iMac") : "";
  return {{"baseboard",
           {{"assetTag", ""},
            {"manufacturer", "Apple Inc."},
            {"product", intel ? "Mac-00FJ0RD00T2XX001" : ""},
            {"serial", ""},
            {"version", intel ? Model() : ""}}},
          {"chassis",
           {{"assetTag", ""},
            {"bootUpState", intel ? 3 : 0},
            {"manufacturer", "Apple Inc."},
            {"oemInformation", 0},
            {"powerSupplyState", intel ? 3 : 0},
            {"securityStatus", intel ? 2 : 0},
            {"serial", intel ? serial_ : ""},
            {"sku", ""},
            {"thermalState", intel ? 3 : 0},
            {"type", intel ? (IsLaptop() ? 9 : 13) : 0},
            {"typeName", intel ? (IsLaptop() ? "Laptop" : "All In One") : ""},
            {"version", ""}}},
          {"modelIdentifier", Model()},
          {"portConnectors", nullptr},
          {"system",
           {{"family", family},
            {"manufacturer", "Apple Inc."},
            {"product", Model()},
            {"serial", serial_},
            {"sku", ""},
            {"uuid", platformUuid_},
            {"version", intel ? "1.0" : ""}}}};
}

Json Mac::Firmware(int day) const {
  return {{"date", 0},
          {"manufacturer", "Apple Inc."},
          {"romSize", 0},
          {"version", ReleaseOn(day)["firmware"]}};
}

Json Mac::VideoCards(int day) const {
  const bool intel = IsIntel();
  const std::string chip = intel ? "Skerry Pro 580X" : model_["chip"].get<std::string>();
  const std::string name = " " + chip + "\n";
  const std::string firmware = ReleaseOn(day)["firmware"];
  return Json::array({Json{{"chipset", name},
                           {"dac", intel ? "IOPCIDevice" : "AppleARMIODevice"},
                           {"date", 0},
                           {"driverName", model_["gpu"]},
                           {"manufacturer", intel ? " Skerry (0x1f2f)\n" : " Apple (0x106b)\n"},
                           {"name", name},
                           {"size", intel ? 1'610'612'736 : 0},
                           {"version", ""},
                           {"versionBios", " " + firmware + "\n"}}});
}

/// The volume fills until somebody tidies up; another disk is attached at times.
Json Mac::Disks(int day) const {
  const std::int64_t gigabytes = AnyOf(model_["diskGB"], random_.For("disk"));
  const std::int64_t size = gigabytes * 977'105'064 / 4096 * 4096;
  const std::int64_t container = size - STARTUP - RECOVERY - FIRST_OFFSET;
  Random use = random_.For("use");
  const double whole = static_cast<double>(container) / static_cast<double>(GIBIBYTE);
  const double base = whole * use.Between(0.2, 0.85);
  const double rate = std::min(use.Exponential(0.3), whole / 200);
  const Period tidy = PeriodOf(use, 120, day);
  const double noise = random_.For("noise", day / 3).Between(0, rate * 2);
  const double used = std::min(base + rate * (day - tidy.begin) + noise, whole * 0.985);
  const auto free = static_cast<std::int64_t>(whole - used) * GIBIBYTE;

  char capacity[24];
  std::snprintf(capacity, sizeof(capacity), "%04lld", static_cast<long long>(gigabytes));
  std::string model = model_["disk"];
  model.replace(model.find("{}"), 2, capacity);
  const auto diskOf = [&](const char* device, const char* bus, const std::string& name,
                          std::int64_t bytes, Json partitions, Json volumes) {
    return Json{{"busType", bus},        {"logicalDisk", std::move(volumes)},
                {"manufacturer", ""},    {"mediaType", *bus == 'U' ? "" : "SSD"},
                {"model", name},         {"partition", std::move(partitions)},
                {"pnpDeviceId", device}, {"serial", ""},
                {"sizeBytes", bytes}};
  };
  Json disks = Json::array({diskOf(
      "disk0", IsIntel() ? "PCI-Express" : "Apple Fabric", model, size,
      {PartitionRecord(1, "Apple_APFS_ISC", FIRST_OFFSET, STARTUP, Uuid("partition", 1)),
       PartitionRecord(2, "Apple_APFS", FIRST_OFFSET + STARTUP, container, Uuid("partition", 2)),
       PartitionRecord(3, "Apple_APFS_Recovery", size - RECOVERY, RECOVERY, Uuid("partition", 3))},
      {VolumeRecord("/dev/disk1s2", "xART", "/System/Volumes/xarts", STARTUP, 0),
       VolumeRecord("/dev/disk3s1s1", "Macintosh HD", "/", container, free),
       VolumeRecord("/dev/disk3s5", "Data", "/System/Volumes/Data", container, free)})});
  const Random portable = random_.For("portable");
  if (portable.For("owns").Chance(0.2) &&
      portable.For(PeriodOf(portable, 12, day).number).Chance(0.3)) {
    constexpr std::int64_t PORTABLE = 1'000'204'885'504;
    disks.push_back(
        diskOf("disk4", "USB", "Fjord Portable 1TB", PORTABLE, nullptr,
               Json::array({VolumeRecord("/dev/disk5s1", "Portable", "/Volumes/Portable", PORTABLE,
                                         PORTABLE / 3 / GIBIBYTE * GIBIBYTE)})));
  }
  return disks;
}

Json Mac::ExternalDisplay(int slot, int day) const {
  constexpr double KEPT = 400;
  const Random displays = random_.For("display", slot);
  const Random display = displays.For(PeriodOf(displays, KEPT, day).number);
  const double share = slot > 0 ? 0.25 : IsLaptop() ? 0.55 : 0.9;
  if (!display.For("there").Chance(share)) return nullptr;
  return DisplayRecord(Drawn(profiles_.Rows("displays"), display.For("model")),
                       HexText(display.For("serial")));
}

Json Mac::Displays(int day) const {
  Json displays = Json::array();
  if (IsLaptop() || Model().rfind("iMac", 0) == 0) {
    displays.push_back(DisplayRecord({{"date", 631'148'400'000},
                                      {"manufacturer", "APP"},
                                      {"model", "APPL]@"},
                                      {"name", "Color LCD"}},
                                     HexText(random_.For("panel"))));
  }
  // At home nobody has those of the office. A model identifies a display: none occurs twice.
  if (IsLaptop() && PlaceOn(day).atHome) return NullIfEmpty(std::move(displays));
  const Json first = ExternalDisplay(0, day);
  const Json second = ExternalDisplay(1, day);
  if (!first.is_null()) displays.push_back(first);
  if (!second.is_null() && (first.is_null() || first["model"] != second["model"])) {
    displays.push_back(second);
  }
  return NullIfEmpty(std::move(displays));
}

Json Mac::Keyboards(int day) const {
  const Random keyboards = random_.For("keyboard");
  const Random keyboard = keyboards.For(PeriodOf(keyboards, 500, day).number);
  if (!keyboard.For("there").Chance(IsLaptop() ? 0.3 : 0.95)) return nullptr;
  char product[8];
  std::snprintf(product, sizeof(product), "0x%04x",
                static_cast<unsigned int>(keyboard.For("product").Below(5)) + 0x1006);
  return Json::array({Json{{"country", ""},
                           {"description", "0x1f2f  (Skerry)"},
                           {"language", "English"},
                           {"layout", "English"},
                           {"manufacturer", "Skerry, Inc"},
                           {"pnpDeviceId", product},
                           {"type", "USB"}}});
}

Json Mac::Slots() const {
  if (!IsIntel()) return nullptr;
  return Json::array({Json{{"description", "In use"},
                           {"name", "AirPort"},
                           {"slotId", 32},
                           {"type", "PCI Express x1"}},
                      Json{{"description", "Available"},
                           {"name", "Thunderbolt 1"},
                           {"slotId", 33},
                           {"type", "PCI Express Gen 3 x4"}}});
}

}  // namespace Norvik::Forge
