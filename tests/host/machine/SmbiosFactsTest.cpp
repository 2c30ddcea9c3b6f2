#include "host/machine/SmbiosFacts.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/text/Text.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Host;

/// A structure of a table: its bytes by offset and its texts.
struct StructureBytes {
  std::string bytes;
  std::vector<std::string> texts;

  StructureBytes(std::uint8_t type, std::size_t length) : bytes(length, '\0') {
    Put(0, type);
    Put(1, length);
  }
  StructureBytes& Put(std::size_t offset, std::uint64_t value, std::size_t size = 1) {
    for (std::size_t i = 0; i < size; ++i) {
      bytes.at(offset + i) = static_cast<char>(value >> (8 * i));
    }
    return *this;
  }
  StructureBytes& Text(std::size_t offset, const std::string& text) {
    texts.push_back(text);
    return Put(offset, texts.size());
  }
  std::string Whole() const {
    std::string whole = bytes;
    for (const auto& text : texts) whole += text + '\0';
    return whole + (texts.empty() ? std::string(2, '\0') : std::string(1, '\0'));
  }
};

std::string EntryPoint(std::uint64_t tableLength) {
  std::string entry("_SM3_\0\x18\x03\x02\0\x01\0", 12);
  for (int i = 0; i < 4; ++i) entry += static_cast<char>(tableLength >> (8 * i));
  entry += std::string(8, '\0');
  unsigned int sum = 0;
  for (const char c : entry) sum += static_cast<unsigned char>(c);
  entry[5] = static_cast<char>(256 - sum % 256);
  return entry;
}

std::shared_ptr<SmBios> Make(const std::vector<StructureBytes>& structures) {
  std::string table;
  for (const auto& structure : structures) table += structure.Whole();
  return MakeSmBios(EntryPoint(table.size()), table);
}

TEST(SmbiosFacts, AnEntryPointIsTakenOnlyWithItsChecksum) {
  EXPECT_TRUE(ParseSmbiosEntryPoint(EntryPoint(100)).valid);
  EXPECT_EQ(ParseSmbiosEntryPoint(EntryPoint(100)).version, 0x302u);
  EXPECT_EQ(ParseSmbiosEntryPoint(EntryPoint(100)).tableLength, 100u);
  std::string damaged = EntryPoint(100);
  damaged[8] = 9;
  EXPECT_FALSE(ParseSmbiosEntryPoint(damaged).valid);
  for (std::size_t length = 0; length < EntryPoint(1).size(); ++length) {
    EXPECT_FALSE(ParseSmbiosEntryPoint(EntryPoint(1).substr(0, length)).valid) << length;
  }
  EXPECT_FALSE(ParseSmbiosEntryPoint(std::string(64, '\0')).valid);
  EXPECT_FALSE(MakeSmBios("", "")->IsValid());
}

TEST(SmbiosFacts, ReadsBoardChassisAndSystem) {
  auto system = StructureBytes(1, 0x1B).Text(4, "Maker").Text(5, "Box 1").Text(7, " S-1 ");
  for (std::size_t i = 0; i < 16; ++i) system.Put(8 + i, i);
  system.Text(0x19, "SKU").Text(0x1A, "Family");
  const auto smBios =
      Make({system, StructureBytes(2, 9).Text(4, "BoardMaker").Text(7, "B-1").Text(8, "Tag"),
            StructureBytes(2, 9).Text(4, "Riser"),
            StructureBytes(3, 0x1C).Put(5, 0x8A).Put(0x13, 2).Put(0x14, 3).Text(7, "C-1").Text(
                0x1B, "ChassisSku"),
            StructureBytes(8, 9).Text(4, "J1").Put(5, 1).Text(6, "USB 1").Put(7, 0x12).Put(8, 16)});
  const SetupInfo setup = SetupOf(*smBios);
  EXPECT_EQ(setup.system.manufacturer, "Maker");
  EXPECT_EQ(setup.system.product, "Box 1");
  EXPECT_EQ(setup.system.serial, "S-1");
  EXPECT_EQ(setup.system.sku, "SKU");
  EXPECT_EQ(setup.system.family, "Family");
  EXPECT_EQ(ToUtf8(setup.system.uuid), "03020100-0504-0706-0809-0a0b0c0d0e0f");
  EXPECT_EQ(setup.baseboard.manufacturer, "BoardMaker");
  EXPECT_EQ(setup.baseboard.assetTag, "Tag");
  EXPECT_EQ(setup.chassis.type, 10);
  EXPECT_EQ(ToUtf8(setup.chassis.typeName), "Notebook");
  EXPECT_EQ(ToUtf8(setup.chassis.serial), "C-1");
  EXPECT_EQ(setup.chassis.sku, "ChassisSku");
  ASSERT_EQ(setup.portConnectors.size(), 1u);
  EXPECT_EQ(ToUtf8(setup.portConnectors.front().name), "J1");
  EXPECT_EQ(ToUtf8(setup.portConnectors.front().externalConnector), "Access Bus (USB)");
  EXPECT_EQ(ToUtf8(setup.portConnectors.front().type), "USB");
}

TEST(SmbiosFacts, AUuidThatTheMakerHasNotSetIsEmpty) {
  for (const int filling : {0x00, 0xFF}) {
    StructureBytes system(1, 0x1B);
    for (std::size_t i = 0; i < 16; ++i) system.Put(8 + i, static_cast<std::uint64_t>(filling));
    EXPECT_TRUE(SetupOf(*Make({system})).system.uuid.empty()) << filling;
  }
  EXPECT_TRUE(SetupOf(*Make({StructureBytes(1, 8)})).system.uuid.empty());
}

TEST(SmbiosFacts, ReadsMemorySizesInAllTheirForms) {
  const struct {
    std::uint64_t size;
    std::uint64_t extended;
    std::uint64_t bytes;
  } cases[] = {{0, 0, 0},
               {0xFFFF, 0, 0},
               {8192, 0, 8192ull << 20},
               {0x8000 | 512, 0, 512 << 10},
               {0x7FFF, 65536, 65536ull << 20}};
  for (const auto& row : cases) {
    MemoryInfo memory;
    AddMemory(*Make({StructureBytes(17, 0x22).Put(0x0C, row.size, 2).Put(0x1C, row.extended, 4)}),
              memory);
    ASSERT_EQ(memory.devices.size(), 1u);
    EXPECT_EQ(memory.devices.front().sizeBytes, row.bytes) << row.size;
  }
}

TEST(SmbiosFacts, AddsUpTheArraysOfMainMemory) {
  MemoryInfo memory;
  AddMemory(*Make({StructureBytes(16, 0x17)
                       .Put(4, 3)
                       .Put(5, 3)
                       .Put(6, 6)
                       .Put(7, 1 << 20, 4)
                       .Put(0x0D, 2, 2),
                   StructureBytes(16, 0x17)
                       .Put(5, 3)
                       .Put(7, 0x80000000, 4)
                       .Put(0x0D, 4, 2)
                       .Put(0x0F, 1ull << 40, 8),
                   StructureBytes(16, 0x0F).Put(5, 5).Put(7, 999, 4).Put(0x0D, 9, 2),
                   StructureBytes(17, 0x15).Put(0x0E, 9).Text(0x10, "DIMM A").Put(0x12, 26)}),
            memory);
  EXPECT_EQ(memory.slotCount, 6);
  EXPECT_EQ(memory.maximumBytes, (1ull << 30) + (1ull << 40));
  EXPECT_EQ(ToUtf8(memory.devices.front().name), "DIMM A");
  EXPECT_EQ(ToUtf8(memory.devices.front().formFactor), "DIMM");
  EXPECT_EQ(ToUtf8(memory.devices.front().type), "DDR4");
}

TEST(SmbiosFacts, GivesPopulatedSocketsToTheProcessorsInTheirOrder) {
  std::vector<ProcessorInfo> processors(2);
  processors[0].maximumMhz = 3000;
  AddProcessors(
      *Make({StructureBytes(4, 0x28).Put(5, 3).Put(0x18, 0x01).Text(4, "Empty"),
             StructureBytes(4, 0x28).Put(5, 3).Put(0x18, 0x41).Text(4, "CPU1").Put(0x14, 4000, 2),
             StructureBytes(4, 0x28).Put(5, 3).Put(0x18, 0x41).Text(4, "CPU2").Put(0x14, 4000, 2),
             StructureBytes(4, 0x28).Put(5, 3).Put(0x18, 0x41).Text(4, "CPU3")}),
      processors);
  EXPECT_EQ(processors[0].socket, "CPU1");
  EXPECT_EQ(processors[0].maximumMhz, 3000u);
  EXPECT_EQ(processors[1].socket, "CPU2");
  EXPECT_EQ(processors[1].maximumMhz, 4000u);
}

}  // namespace
