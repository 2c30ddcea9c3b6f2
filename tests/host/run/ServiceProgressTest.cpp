#include "host/run/ServiceProgress.h"

#include "common/progress/Progress.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Host;
using namespace Norvik::Tests;

OrderedJson WithoutTimes(OrderedJson runs) {
  for (auto& run : runs) run.erase("since");
  return runs;
}

TEST(ServiceProgress, ShowsEachRunUntilItEndsAndLogsTheTimeOfEachSection) {
  const LogCapture log;
  const auto progress = std::make_shared<ServiceProgress>();
  const ProgressListenerScope listening(progress);
  { const SectionScope outside({"disk"}); }
  const auto twoRuns = [&] {
    const RunScope machine(RunKind::MachineInventory);
    machine.DecideKind(true);
    { const SectionScope section({"setup", "portConnectors"}); }
    const SectionScope section({"software"});
    {
      const RunScope files(RunKind::FileInventory);
      PhasesScope phases;
      phases.Enter(RudStatusScanning);
      CountOne(SeenByThisRun().folders);
      EXPECT_EQ(WithoutTimes(progress->ToJson()), OrderedJson::parse(R"([
          {"inventory": "machine", "kind": "incremental", "at": "software", "sections": 1},
          {"inventory": "files", "kind": "", "at": "scanning", "folders": 1, "files": 0}])"));
    }
    ReportTotalInstead(RunKind::MachineInventory, "why");
    EXPECT_EQ(WithoutTimes(progress->ToJson())[0]["kind"], "total");
    throw std::runtime_error("torn");
  };
  EXPECT_THROW(twoRuns(), std::runtime_error);
  EXPECT_EQ(progress->ToJson(), OrderedJson::array());
  const auto took = [](const std::string& keys) {
    return MatchesRegex("Section " + keys + " took [0-9]+ milliseconds");
  };
  EXPECT_THAT(log.Texts(5),
              ElementsAre(took("disk"), took("setup, portConnectors"), took("software")));
}

}  // namespace
