#include "module/DeviceIdentifiers.h"

#include <gmock/gmock.h>

#include "support/LogCapture.h"

namespace Norvik::KOB {
namespace {

using testing::ElementsAre;

class DeviceIdentifiersTest : public testing::Test {
 protected:
  std::string Identifier(IdType type) {
    return CreateIdFunctionsMap().at(type)({setup, adapters, hostName, found});
  }

  Common::SetupInfo setup;
  std::list<Common::NetworkAdapterInfo> adapters;
  wxString hostName = "mac: 1";
  wxString found;
  Tests::LogCapture log;
};

TEST_F(DeviceIdentifiersTest, NamesOfTheMachineAreMadePlain) {
  EXPECT_EQ(Identifier(IdType::MAC), "mac__1");
  EXPECT_EQ(Identifier(IdType::PC), "mac__1");
}

TEST_F(DeviceIdentifiersTest, AssetAndSerialAreTakenFromTheFirstPartThatHasThem) {
  const auto both = [&] {
    const std::string asset = Identifier(IdType::ASSET);
    return asset + " " + Identifier(IdType::SERIAL);
  };
  EXPECT_EQ(both(), " ");
  setup.chassis.assetTag = "A3";
  setup.chassis.serial = "S3";
  EXPECT_EQ(both(), "A3 S3");
  setup.baseboard.assetTag = "A2";
  setup.baseboard.serial = "S2";
  EXPECT_EQ(both(), "A2 S2");
  setup.system.serial = "S1";
  EXPECT_EQ(both(), "A2 S1");
  EXPECT_THAT(log.Texts(2), ElementsAre("Identifier for IdType::ASSET not found",
                                        "Identifier for IdType::SERIAL not found"));
}

TEST_F(DeviceIdentifiersTest, AddressesGiveNothingToAMachineWithoutIdentifier) {
  adapters.resize(2);
  adapters.front().macAddress = "000000000000";
  adapters.back().macAddress = "0011223344FF";
  adapters.back().addresses = {{"10.0.0.7", "255.0.0.0"}};
  EXPECT_EQ(Identifier(IdType::IP), "");
  EXPECT_EQ(Identifier(IdType::MIX), "");
  found = "known";
  EXPECT_EQ(Identifier(IdType::IP), "");
  EXPECT_EQ(Identifier(IdType::MIX), "mac: 1_");
  adapters.pop_back();
  EXPECT_EQ(Identifier(IdType::MIX), "");
}

}  // namespace
}  // namespace Norvik::KOB
