#include "host/machine/Recording.h"

#include <gtest/gtest.h>

#include <sstream>

#include "host/AgentProgram.h"
#include "host/machine/FirstInventory.h"
#include "platform/RecordedMachine.h"

namespace {

using namespace Norvik::Host;

TEST(Recording, AFolderThatIsNotThereIsWrongUse) {
  std::ostringstream output;
  std::ostringstream errors;
  EXPECT_EQ(
      RunAgentProgram({"norvik-agent", "--machine", "/no/such/mac", "actions"}, output, errors),
      EXIT_WRONG_USE);
  EXPECT_EQ(output.str(), "");
  EXPECT_EQ(errors.str(), "norvik-agent: --machine: there is no folder /no/such/mac\n");
  EXPECT_EQ(UseRecordedMachine({}), nullptr);
  EXPECT_FALSE(Norvik::Platform::IsMachineRecorded());
}

TEST(Recording, TheSmBiosTableIsTheRecordedOne) {
  const boost::filesystem::path machines = NORVIK_SOURCE_DIR "/tests/machines";
  for (const auto& [name, isValid] : {std::pair("intel-t2", true), {"old-no-smbios", false}}) {
    const auto machine = UseRecordedMachine(machines / name);
    EXPECT_EQ(ReadSmBios()->IsValid(), isValid) << name;
  }
}

}  // namespace
