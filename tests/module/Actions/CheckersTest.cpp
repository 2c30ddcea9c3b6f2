#include <gmock/gmock.h>

#include <functional>

#include "module/Actions/OSTypeDBSeeker.h"
#include "module/Actions/SoftwareChangesChecker.h"
#include "support/FakeHost.h"

namespace Norvik::KOB {
namespace {

using testing::ThrowsMessage;
using namespace Tests;

TEST(OSTypeDBSeeker, TellsTheRecordedType) {
  FakeHost host;
  const OSTypeDBSeeker seeker;
  EXPECT_EQ(seeker.GetOSType(), -1);
  Common::AgentData data(host.database, "DATA");
  const std::pair<const char*, int> cases[] = {
      {"macOS", 0}, {"windows", 1}, {"LINUX", 2}, {"BeOS", 3}, {"", 3}};
  for (const auto& [text, type] : cases) {
    data.SetString("OPERATING_SYSTEM_TYPE", text);
    EXPECT_EQ(seeker.GetOSType(), type) << text;
  }
}

TEST(SoftwareChangesChecker, RegistersNothingAndRefusesEverything) {
  FakeHost host;
  Common::HandlerMap handlers;
  SoftwareChangesChecker checker(host.Dependencies(), {}, handlers);
  EXPECT_TRUE(handlers.empty());
  Common::ActionParameters none;
  const std::function<void()> operations[] = {
      [&] { checker.StartRegistryCheck(none); }, [&] { checker.WaitForKeyChange(); },
      [&] { checker.CloseHandlers(); },          [&] { checker.OpenUserKeys(); },
      [&] { checker.OpenSystemKeys(); },         [&] { checker.CreateEventHandlers(); },
      [&] { checker.CreateLastEventHandler(); }};
  for (const auto& operation : operations) {
    EXPECT_THAT(operation, ThrowsMessage<std::runtime_error>("not implemented yet"));
  }
}

}  // namespace
}  // namespace Norvik::KOB
