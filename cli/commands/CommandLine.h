#pragma once

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "host/assembly/AgentHost.h"

namespace Norvik::Cli {

/// What the command line asks for.
struct CommandLine {
  std::string command;  ///< empty: only `help` is to be shown
  std::string help;
  Host::AgentOptions agent;
  boost::filesystem::path machine;  ///< recording that stands for this machine; empty: none
  /// Of the running agent.
  boost::filesystem::path socket;
  bool dataFolderGiven = false;
  bool json = false;
  // Of single commands.
  bool incremental = false;
  bool scheduled = false;
  bool pretty = false;
  bool check = false;
  boost::filesystem::path file;
  boost::filesystem::path secondFile;
  boost::filesystem::path outputFile;  ///< empty: the answer goes to the output
  std::string action;
  bool rehearse = false;
  std::vector<std::string> parameters;
  std::string what;  ///< "software" or "hardware"
  std::string text;
};

/// Reads the command line; the first argument is the program's name. Raises `UsageError`.
CommandLine ParseCommandLine(const std::vector<std::string>& arguments);

}  // namespace Norvik::Cli
