#include "host/identity/MachineFacts.h"

#include "support/MacRecording.h"
#include "support/Test.h"

namespace {

using namespace Norvik;
using namespace Norvik::Tests;

TEST(MachineFacts, EachRequestGathersAnewButTheFirstInventoryHasThoseOfTheStart) {
  const TemporaryFolder folder;
  MacRecording recording;
  recording.PutInForce();
  const auto connect = [&](const std::string& address) {
    recording.Add("interfaces.json",
                  R"([{"name": "en0", "ipv4": [{"address": ")" + address +
                      R"(", "mask": "255.255.255.0"}]}, {"name": "en0", "type": 6}])");
  };
  Host::MachineFacts facts(std::make_shared<Host::AgentIdentity>(folder / "identity.json"));
  const auto address = [&] {
    const auto adapters = facts.GetFirstInventoryInfo().networkAdapters;
    return adapters.empty() ? "" : adapters.front().addresses.front().address;
  };
  connect("192.0.2.1");
  EXPECT_EQ(address(), "192.0.2.1");
  facts.ModuleIsMade();
  connect("192.0.2.2");
  EXPECT_EQ(address(), "192.0.2.1");
  EXPECT_EQ(address(), "192.0.2.2");
  const auto table = facts.GetSmBios();
  connect("192.0.2.3");
  EXPECT_EQ(address(), "192.0.2.3");
  EXPECT_FALSE(table.expired());
}

}  // namespace
