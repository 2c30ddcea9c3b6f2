#include <chrono>
#include <memory>
#include <ostream>

#include "cli/commands/ActionRunner.h"
#include "cli/commands/Commands.h"
#include "cli/commands/FilesProgress.h"
#include "cli/commands/FilesRecorder.h"
#include "cli/commands/FilesReport.h"
#include "cli/commands/Rendering.h"
#include "common/action/ActionCodes.h"
#include "host/assembly/ModuleActionCodes.h"
#include "host/configuration/ConfigurationWarnings.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using namespace Common;
using std::chrono::steady_clock;

unsigned int CodeFor(const CommandLine& line) {
  if (line.scheduled) {
    return line.incremental ? ACTION_FILE_INVENTORY_INCREMENTAL : ACTION_FILE_INVENTORY;
  }
  return line.incremental ? ACTION_FILE_INVENTORY_INCREMENTAL_ON_DEMAND
                          : ACTION_FILE_INVENTORY_ON_DEMAND;
}

/// What the action throws is logged, so it is among the problems.
FilesReport TakeInventory(ActionRunner& runner, const CommandLine& line,
                          const FilesRecorder& recorder) {
  const auto start = steady_clock::now();
  // Waits also for the action that performs the inventory.
  runner.Run(CodeFor(line), {});
  const std::chrono::duration<double> taken = steady_clock::now() - start;
  FilesReport report;
  static_cast<RunResult&>(report) = recorder.Result();
  report.requestedIncremental = line.incremental;
  report.seconds = taken.count();
  report.counts = recorder.Counts();
  report.folders = recorder.Folders();
  report.phases = recorder.Phases();
  if (report.Succeeded() || !report.problems.empty()) return report;
  const std::string& refusal = report.refusal;
  report.problems.push_back(refusal.empty() ? "no document reached the outbox" : refusal);
  return report;
}

}  // namespace

int RunFiles(const CommandLine& line, std::ostream& output, std::ostream& errors) {
  std::unique_ptr<FilesProgress> progress;
  const auto recorder =
      std::make_shared<FilesRecorder>([&](RudStatus phase, const FilesRecorder::Seen& seen) {
        if (progress) progress->Enter(phase, seen);
      });
  ActionRunner runner(line, recorder, [&](const LogLine& logged) { recorder->See(logged); });
  if (WantsNoFile(runner.Configuration().kob.value())) {
    errors << MessageLine(line.json, NO_FILE_WANTED) << std::flush;
  }
  if (!line.json) progress = std::make_unique<FilesProgress>(output);
  const FilesReport report = TakeInventory(runner, line, *recorder);
  progress.reset();
  if (line.json) {
    output << report.ToJsonText();
  } else if (!report.kind.empty()) {
    output << report.ToText();
  }
  for (const auto& problem : report.problems) {
    errors << MessageLine(line.json, problem) << std::flush;
  }
  return report.Succeeded() ? EXIT_DONE : EXIT_FAILED;
}

}  // namespace Norvik::Cli
