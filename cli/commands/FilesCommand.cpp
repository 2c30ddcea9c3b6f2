#include <chrono>
#include <memory>
#include <ostream>

#include "cli/commands/Commands.h"
#include "cli/commands/FilesProgress.h"
#include "cli/commands/FilesReport.h"
#include "cli/commands/StatusRecorder.h"
#include "common/action/ActionCodes.h"
#include "common/text/Text.h"
#include "host/assembly/ModuleActionCodes.h"
#include "platform/DirectoryReader.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using namespace Common;
using Platform::DirectoryReader;
using std::chrono::steady_clock;

unsigned int CodeFor(const CommandLine& line) {
  if (line.scheduled) {
    return line.incremental ? ACTION_FILE_INVENTORY_INCREMENTAL : ACTION_FILE_INVENTORY;
  }
  return line.incremental ? ACTION_FILE_INVENTORY_INCREMENTAL_ON_DEMAND
                          : ACTION_FILE_INVENTORY_ON_DEMAND;
}

/// Why the module turned the request away.
std::string RefusalOf(const FilesReport& report, const FilesWatch& watch) {
  for (const auto& status : report.statuses) {
    if (status.status == TaskResponseInfo::TASK_NOT_RUN) {
      return "a total file inventory has already ended on this day (UTC), so the scheduled one "
             "does not run";
    }
    if (status.status == TaskResponseInfo::TASK_FAILED) return status.message;
  }
  return watch.LastWarning();
}

FilesReport Take(AgentHost& host, const CommandLine& line, const FilesWatch& watch) {
  FilesReport report;
  report.requestedIncremental = line.incremental;
  const PipelineWatch pipeline([&](const auto& document) { report.counts = CountFiles(document); });
  const StatusRecorder recorder(host.GetCommunications());
  const auto before = DirectoryReader::Counts().folders;
  const auto start = steady_clock::now();
  try {
    // Waits also for the action that carries the inventory out.
    host.Run(CodeFor(line), {});
  } catch (const std::exception& error) {
    report.problems.push_back(error.what());
  }
  report.seconds = std::chrono::duration<double>(steady_clock::now() - start).count();
  report.folders = DirectoryReader::Counts().folders - before;
  report.kind = watch.Kind();
  if (watch.HadNoBase()) report.fallbackReason = "no file of a former file inventory is known";
  report.nothingToSend = watch.NothingToSend();
  report.phases = watch.Seconds();
  report.steps = pipeline.Steps();
  report.statuses = recorder.Statuses();
  return report;
}

void CollectProblems(const FilesWatch& watch, FilesReport& report) {
  // What the handler raised is logged too.
  const auto logged = watch.Problems();
  if (!logged.empty()) report.problems = logged;
  if (report.Succeeded() || !report.problems.empty()) return;
  const std::string refusal = report.kind.empty() ? RefusalOf(report, watch) : "";
  report.problems.push_back(refusal.empty() ? "no document reached the outbox" : refusal);
}

}  // namespace

int RunFiles(const CommandLine& line, std::ostream& output, std::ostream& errors) {
  std::unique_ptr<FilesProgress> progress;
  FilesWatch watch([&](FilesPhase phase) {
    if (progress) progress->Enter(phase);
  });
  AgentOptions options = line.agent;
  options.logListener = [&watch](const LogLine& logged) { watch.See(logged); };
  AgentHost host(options);

  if (!line.json) progress = std::make_unique<FilesProgress>(output);
  FilesReport report = Take(host, line, watch);
  progress.reset();
  CollectProblems(watch, report);
  if (line.json) {
    output << report.ToJsonText();
  } else if (!report.kind.empty()) {
    output << report.ToText();
  }
  for (const auto& problem : report.problems) {
    errors << "norvik-agent: " << OnOneLine(problem) << std::endl;
  }
  return report.Succeeded() ? EXIT_DONE : EXIT_FAILED;
}

}  // namespace Norvik::Cli
