#include "machine/SmbiosFacts.h"

#include "support/RecordJson.h"
#include "support/SmbiosTable.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Machine;
using namespace Norvik::Tests;

std::string EntryPoint(std::uint64_t tableLength) {
  std::string entry("_SM3_\0\x18\x03\x02\0\x01\0", 12);
  for (int i = 0; i < 4; ++i) entry += static_cast<char>(tableLength >> (8 * i));
  entry += std::string(8, '\0');
  unsigned int sum = 0;
  for (const char c : entry) sum += static_cast<unsigned char>(c);
  entry[5] = static_cast<char>(256 - sum % 256);
  return entry;
}

TEST(SmbiosFacts, AnEntryPointIsAcceptedOnlyWithItsChecksum) {
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

Json MemoryOf(const SmBios& smBios) {
  MemoryInfo memory;
  AddMemory(smBios, memory);
  return JsonOf(memory);
}

/// For a machine with two processors; the system reports the speed of the first.
Json ProcessorsOf(const SmBios& smBios) {
  std::vector<ProcessorInfo> processors(2);
  processors[0].maximumMhz = 3000;
  AddProcessors(smBios, processors);
  return JsonOf(processors);
}

TEST(SmbiosFacts, AreReadFromTheStructures) {
  for (const Json& row : DataOf("machine/smbios-facts.json")) {
    const SmbiosBytes table = SmbiosTableOf(row["structures"]);
    const auto smBios = MakeSmBios(EntryPoint(table.size()), {table.begin(), table.end()});
    const Json found = {{"setup", JsonOf(SetupOf(*smBios))},
                        {"memory", MemoryOf(*smBios)},
                        {"processors", ProcessorsOf(*smBios)}};
    EXPECT_EQ(Shown(Chosen(found, row["expected"])), Shown(row["expected"])) << row["name"];
  }
}

}  // namespace
