#pragma once

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "host/assembly/AgentHost.h"

namespace Norvik::Cli {

/// The parsed command line. A member that the command does not use keeps its default.
struct CommandLine {
  std::string command;  ///< empty: print `help` and do nothing else
  std::string help;     ///< help or version text; set only without a command
  Host::AgentOptions agent;
  boost::filesystem::path machine;  ///< folder of a recorded Mac; empty: this machine
  boost::filesystem::path socket;   ///< of the running agent
  bool dataFolderGiven = false;     ///< by --data; else `agent.dataFolder` is the default
  bool json = false;
  /// Names of the given options that only an agent of this process can obey.
  std::vector<std::string> ownOptions;
  // Options and arguments of single commands.
  bool incremental = false;
  bool scheduled = false;
  bool pretty = false;
  bool check = false;
  bool list = false;
  bool live = false;
  bool csv = false;
  bool changes = false;
  bool openPage = false;
  boost::filesystem::path file;
  boost::filesystem::path secondFile;
  boost::filesystem::path outputFile;  ///< empty: standard output; of `view` a default name
  boost::filesystem::path secretFile;  ///< empty: a random secret
  boost::filesystem::path mapFile;     ///< empty: none
  std::vector<boost::filesystem::path> files;
  boost::filesystem::path bundle;  ///< the support archive to write; empty: none
  std::string action;              ///< code or name, not checked yet
  bool rehearse = false;
  bool really = false;  ///< a recorded machine is no reason to rehearse
  bool redact = false;
  std::vector<std::string> parameters;  ///< of the action, not parsed yet
  std::string what;  ///< "software"; a key of the document; the name of a check; of `keys`: "make"
  std::string text;  ///< the message for the users
  boost::filesystem::path keyFolder;  ///< or a key file; empty: the keys of a data folder
  std::vector<std::string> sections;  ///< of a document, not checked yet
  std::string since;                  ///< a time, not parsed yet; or empty
};

/// Parses the command line and fills in the defaults. Throws `UsageError`.
/// @param arguments the program's name and the words after it
CommandLine ParseCommandLine(const std::vector<std::string>& arguments);

}  // namespace Norvik::Cli
