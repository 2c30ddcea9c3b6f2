#include <chrono>
#include <fstream>
#include <memory>
#include <ostream>

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

InventoryReport TakeInventory(AgentHost& host, bool incremental,
                              const InventoryRecorder& recorder) {
  const auto start = steady_clock::now();
  try {
    host.Run(incremental ? ACTION_INCREMENTAL_INVENTORY : ACTION_TOTAL_INVENTORY, {});
  } catch (const std::exception&) {
    // The host has logged it, so it is among the problems.
  }
  const std::chrono::duration<double> taken = steady_clock::now() - start;
  InventoryReport report;
  static_cast<RunResult&>(report) = recorder.Result();
  report.requestedIncremental = incremental;
  report.seconds = taken.count();
  report.sections = recorder.Sections();
  report.records = CountsOfRun(report.steps);
  if (!report.Succeeded() && report.problems.empty()) {
    report.problems.push_back("no document reached the outbox");
  }
  return report;
}

}  // namespace

int RunInventory(const CommandLine& line, std::ostream& output, std::ostream& errors) {
  const auto recorder = std::make_shared<InventoryRecorder>([&](const RetrievedSections& sections) {
    if (!line.json) output << "retrieving " << sections.Name() << std::endl;
  });
  const ProgressListenerScope listening(recorder);
  AgentOptions options = line.agent;
  options.logListener = [&](const LogLine& logged) { recorder->See(logged); };
  AgentHost host(options);

  const InventoryReport report = TakeInventory(host, line.incremental, *recorder);
  output << (line.json ? report.ToJsonText() : report.ToText());
  for (const auto& problem : report.problems) {
    errors << MessageLine(line.json, problem) << std::flush;
  }
  return report.Succeeded() ? EXIT_DONE : EXIT_FAILED;
}

}  // namespace Norvik::Cli
