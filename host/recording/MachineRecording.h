#pragma once

#include <boost/filesystem/path.hpp>
#include <chrono>
#include <string>
#include <vector>

#include "host/assembly/AgentHost.h"

namespace Norvik::Host {

struct RecordingOptions {
  boost::filesystem::path folder;      ///< to be made; it must not exist
  boost::filesystem::path moduleFile;  ///< whose inventory is recorded
  int logLevel = 4;
  bool redact = false;
  /// A tool that runs longer is ended, and recorded as one that fails.
  std::chrono::seconds toolLimit{600};
};

struct RecordingResult {
  std::size_t calls = 0;              ///< of tools
  std::size_t files = 0;              ///< of the machine
  std::size_t replacements = 0;       ///< values that were replaced
  std::vector<std::string> warnings;  ///< what the recording is without, one line each
};

/// Records the machine: takes a machine inventory on a data folder of its own and keeps all that it
/// asks the machine for, in the format of `--machine`. The folder appears when it is whole; nothing
/// is left after a failure. Not together with an `AgentHost`, and not for several threads: PATH and
/// the working folder of the process change meanwhile. Throws `UsageError` if the folder exists,
/// and another `std::exception` if it cannot be made.
RecordingResult RecordMachine(const RecordingOptions& options);

}  // namespace Norvik::Host
