#include <ostream>

#include "cli/RecordedMachineOption.h"
#include "cli/commands/Commands.h"
#include "cli/commands/Rendering.h"
#include "host/HostError.h"
#include "host/OutputText.h"
#include "host/recording/MachineRecording.h"

namespace Norvik::Cli {

using namespace Host;

int RunRecord(const CommandLine& line, std::ostream& output, std::ostream& errors) {
  if (HasRecordedMachines() && line.machine.empty()) {
    throw UsageError("record wants a Mac; on this system name a recorded one with --machine");
  }
  RecordingOptions options;
  options.folder = line.file;
  options.moduleFile = line.agent.moduleFile;
  options.logLevel = line.agent.logLevel;
  options.redact = line.redact;
  const RecordingResult result = RecordMachine(options);
  for (const auto& warning : result.warnings)
    errors << MessageLine(line.json, warning) << std::flush;
  if (line.json) {
    output << JsonLine({{"folder", line.file.string()},
                        {"calls", result.calls},
                        {"files", result.files},
                        {"replacements", result.replacements},
                        {"warnings", result.warnings}});
  } else {
    output << "recorded " << line.file.string() << ": " << result.calls << " calls of tools, "
           << result.files << " files";
    if (line.redact) output << ", " << result.replacements << " values replaced";
    output << "\n";
  }
  return EXIT_DONE;
}

}  // namespace Norvik::Cli
