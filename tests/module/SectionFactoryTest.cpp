#include "module/SectionFactory.h"

#include <gmock/gmock.h>

#include "module/CommonInventorySections/AlternativeBiosSection.h"
#include "module/CommonInventorySections/AlternativeBoardSlotsSection.h"
#include "module/CommonInventorySections/BiosSection.h"
#include "module/CommonInventorySections/BoardSlotsSection.h"
#include "support/FakeHost.h"

namespace Norvik::KOB {
namespace {

using namespace testing;
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

/// What a section gives the second time that it is asked with the same value.
template <class Value, class Section>
Value TakenTwice(const Section& section) {
  Value value;
  section->GetInfo(value);
  section->GetInfo(value);
  return value;
}

TEST_F(SectionFactoryTest, RecordsOfTheAgentAreHandedOnAsTheyStoodAtTheStartAndListsAppended) {
  auto& first = host.identification->first;
  first.memory.totalBytes = 8;
  first.operatingSystem.name = "System";
  first.setup.modelIdentifier = "Model";
  first.networkAdapters.resize(2);
  first.networkAdapters.back().name = "en1";
  first.physicalDisks.resize(1);
  const SectionFactory factory = Factory();
  first = {};
  EXPECT_EQ(TakenTwice<Common::MemoryInfo>(factory.GetMemorySection()).totalBytes, 8U);
  EXPECT_EQ(TakenTwice<Common::OperatingSystemInfo>(factory.GetOperatingSystemSection()).name,
            "System");
  EXPECT_EQ(TakenTwice<Common::SetupInfo>(factory.GetSetupSection()).modelIdentifier, "Model");
  using Adapters = std::list<Common::NetworkAdapterInfo>;
  const auto adapters = TakenTwice<Adapters>(factory.GetNetworkAdaptersSection());
  EXPECT_THAT(adapters, SizeIs(4));
  EXPECT_EQ(adapters.back().name, "en1");
  using Disks = std::list<Common::PhysicalDiskInfo>;
  EXPECT_THAT(TakenTwice<Disks>(factory.GetPhysicalDiskSection()), SizeIs(2));
  using Processors = std::list<Common::ProcessorInfo>;
  EXPECT_THAT(TakenTwice<Processors>(factory.GetProcessorsSection()), IsEmpty());
}

TEST_F(SectionFactoryTest, StartupCommandsAreNotImplemented) {
  using Commands = std::list<RunCommandInfo>;
  EXPECT_THAT(TakenTwice<Commands>(Factory().GetRunCommandsSection()), IsEmpty());
  EXPECT_TRUE(host.log.Holds(3, "Not implemented"));
}

}  // namespace
}  // namespace Norvik::KOB
