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

TEST_F(SectionFactoryTest, RecordsOfTheAgentAreAddedAsTheyStoodAtTheStart) {
  host.identification->first.networkAdapters.resize(2);
  const SectionFactory factory = Factory();
  host.identification->first = {};
  std::list<Common::NetworkAdapterInfo> adapters(1);
  factory.GetNetworkAdaptersSection()->GetInfo(adapters);
  EXPECT_THAT(adapters, SizeIs(3));
}

}  // namespace
}  // namespace Norvik::KOB
