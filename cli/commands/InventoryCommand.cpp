#include <chrono>
#include <fstream>
#include <memory>
#include <ostream>

#include "cli/commands/ActionRunner.h"
#include "cli/commands/Commands.h"
#include "cli/commands/InventoryRecorder.h"
#include "cli/commands/InventoryReport.h"
#include "cli/commands/Rendering.h"
#include "common/files/Paths.h"
#include "host/assembly/ModuleActionCodes.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using namespace Common;
using std::chrono::steady_clock;

/// Counts of this run's full document, which is kept for the next comparison.
std::map<std::string, SectionCount> CountsOfRun(const std::vector<DocumentStep>& steps) {
  const auto previous = Paths(Paths::PREVIOUS_INVENTORY, false).AppData();
  for (const auto& step : steps) {
    if (step.kind != DocumentStep::COPY || !step.done) continue;
    if (step.target.parent_path() != previous) continue;
    std::ifstream document(step.target.string());
    return CountRecords(document);
  }
  return {};
}

/// What the action throws is logged, so it is among the problems.
InventoryReport TakeInventory(ActionRunner& runner, bool incremental,
                              const InventoryRecorder& recorder) {
  const auto start = steady_clock::now();
  runner.Run(incremental ? ACTION_INCREMENTAL_INVENTORY : ACTION_TOTAL_INVENTORY, {});
  const std::chrono::duration<double> taken = steady_clock::now() - start;
  InventoryReport report;
  static_cast<RunResult&>(report) = recorder.Result();
  report.requestedIncremental = incremental;
  report.seconds = taken.count();
  report.sections = recorder.Sections();
  report.records = CountsOfRun(report.steps);
  if (report.Succeeded() || !report.problems.empty()) return report;
  const std::string& refusal = report.refusal;
  report.problems.push_back(refusal.empty() ? "no document reached the outbox" : refusal);
  return report;
}

}  // namespace

int RunInventory(const CommandLine& line, std::ostream& output, std::ostream& errors) {
  const auto recorder = std::make_shared<InventoryRecorder>([&](const RetrievedSections& sections) {
    if (!line.json) output << "retrieving " << sections.Name() << std::endl;
  });
  ActionRunner runner(line, recorder, [&](const LogLine& logged) { recorder->See(logged); });
  const InventoryReport report = TakeInventory(runner, line.incremental, *recorder);
  output << (line.json ? report.ToJsonText() : report.ToText());
  for (const auto& problem : report.problems) {
    errors << MessageLine(line.json, problem) << std::flush;
  }
  return report.Succeeded() ? EXIT_DONE : EXIT_FAILED;
}

}  // namespace Norvik::Cli
