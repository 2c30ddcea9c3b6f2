#include "common/progress/Progress.h"

#include "support/ProgressRecorder.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Tests;

TEST(Progress, EndsInReverseOrderWhenAnExceptionEndsTheWork) {
  const ProgressRecording progress;
  EXPECT_THROW(
      {
        const RunScope run(RunKind::FileInventory);
        PhasesScope phases;
        phases.Enter(RudStatusScanning);
        phases.Enter(RudStatusSaving);
        const SectionScope section({"a", "b"});
        throw std::runtime_error("torn");
      },
      std::runtime_error);
  EXPECT_THAT(progress->All(), ElementsAre("run begins", "> scanning", "< scanning", "> saving",
                                           "+ a, b", "- a, b", "< saving", "run ends, files: 0"));
  progress->Take();
  { const SectionScope outside({"c"}); }
  EXPECT_THAT(progress->ByRun()[0], ElementsAre("+ c", "- c"));
}

TEST(Progress, SeparatesRunsThatAreUnderWayAtOnce) {
  const ProgressRecording progress;
  const auto work = [](const std::string& name, int files) {
    const RunScope run(RunKind::FileInventory);
    for (int i = 0; i < files; ++i) {
      CountOne(SeenByThisRun().files);
      const SectionScope section({name});
    }
  };
  {
    const RunScope outer(RunKind::MachineInventory);
    std::thread other(work, "other", 300);
    work("inner", 200);
    other.join();
    const SectionScope section({"outer"});
  }
  CountOne(SeenByThisRun().files);  // outside of a run, for nobody
  std::map<std::string, ProgressRecorder::Texts> runs;
  for (const auto& [id, texts] : progress->ByRun()) runs[texts.at(1)] = texts;
  ASSERT_EQ(runs.size(), 3u);
  for (const auto& [name, files] : {std::pair("inner", 200u), std::pair("other", 300u)}) {
    const auto& texts = runs[std::string("+ ") + name];
    EXPECT_EQ(texts.size(), 2 * files + 2);
    EXPECT_EQ(texts.back(), "run ends, files: " + std::to_string(files));
  }
  EXPECT_THAT(runs["+ outer"],
              ElementsAre("run begins", "+ outer", "- outer", "run ends, files: 0"));
}

struct Thrower : IProgressListener {
  void RunBegun(const RunInfo&) override { throw std::runtime_error("first"); }
  void RunEnded(const RunInfo&) override { throw 7; }
  void KindDecided(const RunInfo&, bool) override { throw 7; }
  void TotalInstead(const RunInfo&, const std::string&) override { throw 7; }
  void RequestRefused(RunKind, const std::string&) override { throw 7; }
  void NothingToSend(const RunInfo&) override { throw 7; }
  void SectionBegun(const RunInfo&, const SectionKeys&) override { throw 7; }
  void SectionEnded(const RunInfo&, const SectionKeys&, Duration) override { throw 7; }
  void PhaseBegun(const RunInfo&, RudStatus) override { throw 7; }
  void PhaseEnded(const RunInfo&, RudStatus, Duration) override { throw 7; }
  void RecordsCounted(const RunInfo&, const RecordCounts&) override { throw 7; }
  void ToolEnded(const RunInfo&, const ToolRun&) override { throw 7; }
  void DocumentStepDone(const RunInfo&, const DocumentStep&) override { throw 7; }
  void TaskReported(const TaskResponseInfo&) override { throw 7; }
};

TEST(Progress, AListenerThatThrowsIsLoggedOnceAndTheWorkGoesOn) {
  const LogCapture log;
  for (int i = 0; i < 2; ++i) {
    const ProgressListenerScope scope(std::make_shared<Thrower>());
    const RunScope run(RunKind::FileInventory);
    run.DecideKind(true);
    ReportTotalInstead(RunKind::FileInventory, "");
    ReportRefusal(RunKind::FileInventory, "");
    ReportNothingToSend();
    ReportRecords({});
    ReportTool({});
    ReportDocument({});
    ReportTask({});
    const SectionScope section({"a"});
    PhasesScope phases;
    phases.Enter(RudStatusScanning);
  }
  // Once for each listener.
  const std::string line = "The listener to the progress threw: first";
  EXPECT_THAT(log.Texts(3), ElementsAre(line, line));
  EXPECT_EQ(log.Lines().size(), 2u);
  EXPECT_EQ(GetProgressListener(), nullptr);
}

}  // namespace
