#pragma once

#include <iosfwd>

#include "cli/commands/CommandLine.h"

namespace Norvik::Cli {

/// What an exit code of the program says.
enum ExitCode : int { EXIT_DONE = 0, EXIT_FAILED = 1, EXIT_WRONG_USE = 2 };

// The commands of the program. Each writes its answer to `output` and what went wrong, one line
// each, to `errors`, and answers an exit code. `UsageError` and other subclasses of
// `std::exception` come out with the reason; nothing of an answer is written then.

int RunInventory(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Takes a file inventory.
int RunFiles(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Tells whether the next file inventory would list a path. Only looks.
int RunExplain(const CommandLine& line, std::ostream& output, std::ostream& errors);
int RunOpen(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Applies an incremental document to a full one.
int RunApply(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// The incremental document between two full ones.
int RunDiff(const CommandLine& line, std::ostream& output, std::ostream& errors);
int RunAction(const CommandLine& line, std::ostream& output, std::ostream& errors);
int RunActions(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Checks a configuration, and stores and applies it, by the running agent if there is one.
int RunConfigure(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Only looks: makes neither files nor folders, and loads no module.
int RunStatus(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Is the agent's service, until a signal ends it.
int RunService(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Is the process of a logged-on user, until a signal ends it.
int RunUser(const CommandLine& line, std::ostream& output, std::ostream& errors);
// These have a running agent do something; no agent runs here.
int RunNotify(const CommandLine& line, std::ostream& output, std::ostream& errors);
int RunMessage(const CommandLine& line, std::ostream& output, std::ostream& errors);

}  // namespace Norvik::Cli
