#include <chrono>
#include <fstream>
#include <ostream>

#include "cli/commands/Commands.h"
#include "cli/commands/DocumentCounts.h"
#include "cli/commands/InventoryReport.h"
#include "cli/commands/StatusRecorder.h"
#include "common/action/ActionCodes.h"
#include "common/action/InventorySchedules.h"
#include "common/database/DataBase.h"
#include "common/files/Paths.h"
#include "common/text/Text.h"
#include "host/assembly/ModuleActionCodes.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using namespace Common;
using std::chrono::steady_clock;

/// The full document of this run, which is kept for the next comparison.
std::map<std::string, std::size_t> CountsOfRun(const std::vector<PipelineStep>& steps) {
  const auto previous = Paths(Paths::PREVIOUS_INVENTORY, false).AppData();
  for (const auto& step : steps) {
    if (step.kind != PipelineStep::COPY || !step.done) continue;
    if (step.target.parent_path() != previous) continue;
    std::ifstream document(step.target.string());
    return CountRecords(document);
  }
  return {};
}

InventoryReport Take(AgentHost& host, bool incremental, const InventoryWatch& watch) {
  InventoryReport report;
  report.requestedIncremental = incremental;
  const bool first = V2::DataBase::GetDataTable(LAST_INVENTORY_KEY) == 0;
  const PipelineWatch pipeline;
  const StatusRecorder recorder(host.GetCommunications());
  const auto start = steady_clock::now();
  try {
    host.Run(incremental ? ACTION_INCREMENTAL_INVENTORY : ACTION_TOTAL_INVENTORY, {});
  } catch (const std::exception& error) {
    report.problems.push_back(error.what());
  }
  report.seconds = std::chrono::duration<double>(steady_clock::now() - start).count();
  report.sections = watch.Sections();
  report.steps = pipeline.Steps();
  report.statuses = recorder.Statuses();
  report.records = CountsOfRun(report.steps);
  report.fallbackReason = watch.FallbackReason();
  if (incremental && first) report.fallbackReason = "no inventory was ever taken";
  return report;
}

void CollectProblems(const InventoryWatch& watch, InventoryReport& report) {
  const auto logged = watch.Problems();
  report.problems.assign(logged.begin(), logged.end());
  if (!report.Succeeded() && report.problems.empty()) {
    report.problems.push_back("no document reached the outbox");
  }
}

}  // namespace

int RunInventory(const CommandLine& line, std::ostream& output, std::ostream& errors) {
  InventoryWatch watch([&](const std::string& name) {
    if (!line.json) output << "retrieving " << name << std::endl;
  });
  AgentOptions options = line.agent;
  options.logListener = [&watch](const LogLine& logged) { watch.See(logged); };
  AgentHost host(options);

  InventoryReport report = Take(host, line.incremental, watch);
  CollectProblems(watch, report);
  output << (line.json ? report.ToJsonText() : report.ToText());
  for (const auto& problem : report.problems) {
    errors << "norvik-agent: " << OnOneLine(problem) << std::endl;
  }
  return report.Succeeded() ? EXIT_DONE : EXIT_FAILED;
}

}  // namespace Norvik::Cli
