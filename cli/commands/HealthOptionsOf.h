#pragma once

#include "cli/commands/CommandLine.h"
#include "host/health/Examined.h"

namespace Norvik::Cli {

/// The agent that a command line names, to be examined.
inline Host::HealthOptions HealthOptionsOf(const CommandLine& line) {
  Host::HealthOptions options;
  options.dataFolder = line.agent.dataFolder;
  options.dataFolderGiven = line.dataFolderGiven;
  options.configurationFile = line.agent.configurationFile;
  options.moduleFile = line.agent.moduleFile;
  options.socket = line.socket;
  return options;
}

}  // namespace Norvik::Cli
