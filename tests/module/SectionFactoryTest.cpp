#include "module/SectionFactory.h"

#include <gmock/gmock.h>

#include "module/CommonInventorySections/AlternativeBiosSection.h"
#include "module/CommonInventorySections/AlternativeBoardSlotsSection.h"
#include "module/CommonInventorySections/BiosSection.h"
#include "module/CommonInventorySections/BoardSlotsSection.h"
#include "support/FakeHost.h"

namespace Norvik::KOB {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace Tests;

class SectionFactoryTest : public testing::Test {
 protected:
  SectionFactory Factory() { return {host.identification, host.database}; }

  FakeHost host;
};

TEST_F(SectionFactoryTest, TheSmBiosDecidesWhereFirmwareAndBoardComeFrom) {
  EXPECT_TRUE(dynamic_cast<AlternativeBiosSection*>(Factory().GetBiosSection().get()));
  EXPECT_TRUE(dynamic_cast<AlternativeBoardSlotsSection*>(Factory().GetBoardSlotsSection().get()));

  const std::vector<std::uint8_t> table = {0, 4, 0, 0, 0, 0};
  host.identification->smBios = std::make_shared<Common::SmBios>(0x0301, table);
  ASSERT_TRUE(host.identification->smBios->IsValid());
  EXPECT_TRUE(dynamic_cast<BiosSection*>(Factory().GetBiosSection().get()));
  EXPECT_TRUE(dynamic_cast<BoardSlotsSection*>(Factory().GetBoardSlotsSection().get()));

  const SectionFactory factory = Factory();
  host.identification->smBios.reset();
  EXPECT_FALSE(factory.GetBiosSection());
  EXPECT_FALSE(factory.GetBoardSlotsSection());
}

TEST_F(SectionFactoryTest, AnIdentificationThatHasGoneStopsIt) {
  host.identification.reset();
  EXPECT_THROW(Factory(), std::bad_weak_ptr);
}

TEST_F(SectionFactoryTest, RecordsOfTheAgentAreHandedOnAsTheyStoodAtTheStart) {
  auto& first = host.identification->first;
  first.memory.totalBytes = 8;
  first.operatingSystem.name = "System";
  first.setup.modelIdentifier = "Model";
  const SectionFactory factory = Factory();
  first = {};

  Common::MemoryInfo memory;
  factory.GetMemorySection()->GetInfo(memory);
  EXPECT_EQ(memory.totalBytes, 8U);
  Common::OperatingSystemInfo system;
  factory.GetOperatingSystemSection()->GetInfo(system);
  EXPECT_EQ(system.name, "System");
  Common::SetupInfo setup;
  factory.GetSetupSection()->GetInfo(setup);
  EXPECT_EQ(setup.modelIdentifier, "Model");
}

TEST_F(SectionFactoryTest, ListsOfTheAgentAreAppended) {
  auto& first = host.identification->first;
  first.networkAdapters.resize(2);
  first.networkAdapters[0].name = "en0";
  first.networkAdapters[1].name = "en1";
  first.physicalDisks.resize(1);
  const SectionFactory factory = Factory();

  std::list<Common::NetworkAdapterInfo> adapters;
  const auto section = factory.GetNetworkAdaptersSection();
  section->GetInfo(adapters);
  section->GetInfo(adapters);
  std::vector<std::string> names;
  for (const auto& adapter : adapters) names.push_back(adapter.name);
  EXPECT_THAT(names, ElementsAre("en0", "en1", "en0", "en1"));

  std::list<Common::PhysicalDiskInfo> disks;
  factory.GetPhysicalDiskSection()->GetInfo(disks);
  EXPECT_EQ(disks.size(), 1U);
  std::list<Common::ProcessorInfo> processors;
  factory.GetProcessorsSection()->GetInfo(processors);
  EXPECT_THAT(processors, IsEmpty());
}

TEST_F(SectionFactoryTest, StartupCommandsAreNotImplemented) {
  std::list<RunCommandInfo> commands;
  Factory().GetRunCommandsSection()->GetInfo(commands);
  EXPECT_THAT(commands, IsEmpty());
  EXPECT_TRUE(host.log.Holds(3, "Not implemented"));
}

}  // namespace
}  // namespace Norvik::KOB
