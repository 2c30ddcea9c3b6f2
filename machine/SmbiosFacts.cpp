#include "machine/SmbiosFacts.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <list>
#include <numeric>

#include "common/text/Text.h"
#include "machine/SmbiosNames.h"

namespace Norvik::Machine {

namespace {

using namespace Common;
using Structure = SmBios::CStruct;
using Structures = std::list<const Structure*>;

enum StructureType : std::uint8_t {
  SYSTEM = 1,
  BASEBOARD = 2,
  CHASSIS = 3,
  PROCESSOR = 4,
  PORT_CONNECTOR = 8,
  MEMORY_ARRAY = 16,
  MEMORY_DEVICE = 17,
};

Structures AllOf(const SmBios& smBios, StructureType type) {
  Structures structures;
  smBios.GetStructData(type, structures);
  return structures;
}

std::string TextAt(const Structure& structure, std::size_t offset) {
  return trim_copy(EncodeUtf8Characters(structure.TextAt(offset)));
}

wxString WideAt(const Structure& structure, std::size_t offset) {
  return WxStringFromStdString(TextAt(structure, offset));
}

std::uint8_t ByteAt(const Structure& structure, std::size_t offset) {
  return static_cast<std::uint8_t>(structure.Field(offset, 1));
}

/// Empty if the manufacturer has set none. The first three groups of a UUID are little-endian in
/// the table.
wxString UuidAt(const Structure& structure, std::size_t offset) {
  if (structure.Length() < offset + 16) return {};
  static constexpr std::size_t ORDER[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  std::string text;
  bool isSet = false;
  for (std::size_t i = 0; i < 16; ++i) {
    const std::uint8_t byte = ByteAt(structure, offset + ORDER[i]);
    // All zeros or all ones: not set.
    isSet = isSet || (byte != 0 && byte != 0xFF);
    char digits[3];
    std::snprintf(digits, sizeof(digits), "%02x", byte);
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += digits;
  }
  return isSet ? WxStringFromStdString(text) : wxString();
}

void ReadBaseboard(const Structure& structure, SmbBaseboardInfo& board) {
  board.manufacturer = TextAt(structure, 0x04);
  board.product = TextAt(structure, 0x05);
  board.version = TextAt(structure, 0x06);
  board.serial = TextAt(structure, 0x07);
  board.assetTag = TextAt(structure, 0x08);
}

void ReadChassis(const Structure& structure, SmbChassisInfo& chassis) {
  // The highest bit reports a lock and is not part of the type.
  chassis.type = ByteAt(structure, 0x05) & 0x7F;
  chassis.typeName = WxStringFromStdString(ChassisTypeName(chassis.type));
  chassis.manufacturer = TextAt(structure, 0x04);
  chassis.version = WideAt(structure, 0x06);
  chassis.serial = WideAt(structure, 0x07);
  chassis.assetTag = WideAt(structure, 0x08);
  chassis.bootUpState = ByteAt(structure, 0x09);
  chassis.powerSupplyState = ByteAt(structure, 0x0A);
  chassis.thermalState = ByteAt(structure, 0x0B);
  chassis.securityStatus = ByteAt(structure, 0x0C);
  chassis.oemInformation = static_cast<std::uint32_t>(structure.Field(0x0D, 4));
  // The list of contained elements precedes it: their number times the length of each.
  const std::size_t elements = ByteAt(structure, 0x13) * std::size_t{ByteAt(structure, 0x14)};
  chassis.sku = TextAt(structure, 0x15 + elements);
}

void ReadSystem(const Structure& structure, SmbSystemInfo& system) {
  system.manufacturer = TextAt(structure, 0x04);
  system.product = TextAt(structure, 0x05);
  system.version = TextAt(structure, 0x06);
  system.serial = TextAt(structure, 0x07);
  system.uuid = UuidAt(structure, 0x08);
  system.sku = TextAt(structure, 0x19);
  system.family = TextAt(structure, 0x1A);
}

SmbPortConnectorInfo PortConnectorOf(const Structure& structure) {
  SmbPortConnectorInfo port;
  port.name = WideAt(structure, 0x04);
  port.internalConnector = WxStringFromStdString(ConnectorName(ByteAt(structure, 0x05)));
  port.erd = WideAt(structure, 0x06);
  port.externalConnector = WxStringFromStdString(ConnectorName(ByteAt(structure, 0x07)));
  port.typeCode = ByteAt(structure, 0x08);
  port.type = WxStringFromStdString(PortTypeName(port.typeCode));
  return port;
}

constexpr std::uint64_t KIB = 1024;
constexpr std::uint64_t MIB = 1024 * KIB;

std::uint64_t MemoryDeviceSize(const Structure& structure) {
  constexpr std::uint64_t UNKNOWN = 0xFFFF;
  constexpr std::uint64_t EXTENDED = 0x7FFF;
  constexpr std::uint64_t IN_KIB = 0x8000;
  const std::uint64_t size = structure.Field(0x0C, 2);
  if (size == UNKNOWN) return 0;
  if (size == EXTENDED) return (structure.Field(0x1C, 4) & 0x7FFFFFFF) * MIB;
  return size & IN_KIB ? (size & ~IN_KIB) * KIB : size * MIB;
}

SmbMemoryDeviceInfo MemoryDeviceOf(const Structure& structure) {
  SmbMemoryDeviceInfo device;
  device.sizeBytes = MemoryDeviceSize(structure);
  device.speedMhz = structure.Field(0x15, 2);
  device.formFactor = WxStringFromStdString(MemoryFormFactorName(ByteAt(structure, 0x0E)));
  device.name = WideAt(structure, 0x10);
  device.bank = WideAt(structure, 0x11);
  device.type = WxStringFromStdString(MemoryTypeName(ByteAt(structure, 0x12)));
  device.manufacturer = WideAt(structure, 0x17);
  device.serial = WideAt(structure, 0x18);
  device.assetTag = WideAt(structure, 0x19);
  device.model = WideAt(structure, 0x1A);
  return device;
}

void ReadMemoryArray(const Structure& structure, MemoryInfo& memory) {
  constexpr std::uint64_t EXTENDED = 0x80000000;
  const std::uint64_t maximum = structure.Field(0x07, 4);
  memory.location = structure.Field(0x04, 1);
  memory.errorCorrection = structure.Field(0x06, 1);
  memory.maximumBytes += maximum == EXTENDED ? structure.Field(0x0F, 8) : maximum * KIB;
  memory.slotCount = static_cast<std::uint16_t>(memory.slotCount + structure.Field(0x0D, 2));
}

void ReadProcessor(const Structure& structure, ProcessorInfo& processor) {
  processor.socket = TextAt(structure, 0x04);
  if (processor.manufacturer.empty()) processor.manufacturer = TextAt(structure, 0x07);
  if (processor.model.empty()) processor.model = TextAt(structure, 0x10);
  if (processor.busMhz == 0) processor.busMhz = structure.Field(0x12, 2);
  if (processor.maximumMhz == 0) processor.maximumMhz = structure.Field(0x14, 2);
  processor.serial = TextAt(structure, 0x20);
  processor.assetTag = TextAt(structure, 0x21);
  processor.partNumber = WideAt(structure, 0x22);
}

bool HasChecksum(const std::string& bytes, std::size_t length) {
  if (length == 0 || bytes.size() < length) return false;
  const unsigned int sum = std::accumulate(
      bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length), 0u,
      [](unsigned int total, char c) { return total + static_cast<unsigned char>(c); });
  return sum % 256 == 0;
}

std::uint32_t NumberAt(const std::string& bytes, std::size_t offset, std::size_t length) {
  std::uint32_t number = 0;
  for (std::size_t i = length; i > 0; --i) {
    number = (number << 8) | static_cast<unsigned char>(bytes.at(offset + i - 1));
  }
  return number;
}

}  // namespace

SmbiosEntryPoint ParseSmbiosEntryPoint(const std::string& bytes) {
  SmbiosEntryPoint entry;
  if (bytes.compare(0, 5, "_SM3_") == 0 && bytes.size() >= 0x18) {
    entry.version = NumberAt(bytes, 7, 1) * 256 + NumberAt(bytes, 8, 1);
    entry.tableLength = NumberAt(bytes, 0x0C, 4);
    entry.valid = HasChecksum(bytes, NumberAt(bytes, 6, 1));
  } else if (bytes.compare(0, 4, "_SM_") == 0 && bytes.size() >= 0x1F) {
    entry.version = NumberAt(bytes, 6, 1) * 256 + NumberAt(bytes, 7, 1);
    entry.tableLength = NumberAt(bytes, 0x16, 2);
    entry.valid = HasChecksum(bytes, NumberAt(bytes, 5, 1));
  }
  return entry;
}

std::shared_ptr<SmBios> MakeSmBios(const std::string& entryPoint, const std::string& table) {
  const SmbiosEntryPoint entry = ParseSmbiosEntryPoint(entryPoint);
  if (!entry.valid) return std::make_shared<SmBios>();
  const std::size_t length = std::min(table.size(), entry.tableLength);
  const auto end = table.begin() + static_cast<std::ptrdiff_t>(length);
  return std::make_shared<SmBios>(entry.version, std::vector<std::uint8_t>(table.begin(), end));
}

SetupInfo SetupOf(const SmBios& smBios) {
  SetupInfo setup;
  const auto boards = AllOf(smBios, BASEBOARD);
  const auto chassis = AllOf(smBios, CHASSIS);
  const auto systems = AllOf(smBios, SYSTEM);
  // The first structure of a type describes the machine; further ones describe inserted modules.
  if (!boards.empty()) ReadBaseboard(*boards.front(), setup.baseboard);
  if (!chassis.empty()) ReadChassis(*chassis.front(), setup.chassis);
  if (!systems.empty()) ReadSystem(*systems.front(), setup.system);
  for (const Structure* port : AllOf(smBios, PORT_CONNECTOR)) {
    setup.portConnectors.push_back(PortConnectorOf(*port));
  }
  return setup;
}

void AddMemory(const SmBios& smBios, MemoryInfo& memory) {
  constexpr std::uint64_t SYSTEM_MEMORY = 3;
  for (const Structure* array : AllOf(smBios, MEMORY_ARRAY)) {
    if (array->Field(0x05, 1) == SYSTEM_MEMORY) ReadMemoryArray(*array, memory);
  }
  for (const Structure* device : AllOf(smBios, MEMORY_DEVICE)) {
    memory.devices.push_back(MemoryDeviceOf(*device));
  }
}

void AddProcessors(const SmBios& smBios, std::vector<ProcessorInfo>& processors) {
  constexpr std::uint64_t CENTRAL = 3;
  constexpr std::uint64_t POPULATED = 0x40;
  auto processor = processors.begin();
  for (const Structure* structure : AllOf(smBios, PROCESSOR)) {
    const bool counts =
        structure->Field(0x05, 1) == CENTRAL && structure->Field(0x18, 1) & POPULATED;
    if (!counts || processor == processors.end()) continue;
    ReadProcessor(*structure, *processor);
    ++processor;
  }
}

}  // namespace Norvik::Machine
