#pragma once

#include <iosfwd>

#include "cli/commands/CommandLine.h"

namespace Norvik::Cli {

/// Exit codes of the program.
enum ExitCode : int {
  EXIT_DONE = 0,
  EXIT_FAILED = 1,
  EXIT_WRONG_USE = 2,
  EXIT_ATTENTION = 3,  ///< of `status`: it has worked, and something needs a person
};

// The commands of the program. Each writes its answer to `output`, each failure as one line to
// `errors`, and returns an exit code. If it throws `UsageError` or another subclass of
// `std::exception`, the text is the reason and no answer was written. One at a time in a process.

/// Takes a machine inventory.
int RunInventory(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Takes a file inventory.
int RunFiles(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Explains whether the next file inventory would list a path. Changes nothing.
int RunExplain(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Explains a key of the document: its source, what is missing for it, its last times. Changes
/// nothing.
int RunWhy(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Prints the document in a file of the outbox, or a plain one.
int RunOpen(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Makes, shows or rotates keys of sealed documents; only `show` is for the keys of an agent.
int RunKeys(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Shows sections of the last inventory, of a file or of a new inventory. Leaves the agent's data
/// alone.
int RunShow(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Lists the documents that are kept, or tells what they changed. Changes nothing.
int RunHistory(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Applies an incremental document to a full one.
int RunApply(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Prints the incremental document that leads from one full document to another.
int RunDiff(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Prints documents without personal data. Several of one machine still belong together.
int RunRedact(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Writes a page that shows documents in a browser. Changes nothing else.
int RunView(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Runs one action of the module, or rehearses it.
int RunAction(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Lists the actions that the module registers.
int RunActions(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Checks a configuration, then stores and applies it: through the running agent if there is one.
int RunConfigure(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Shows the state of the agent. Creates no files or folders, and loads no module.
int RunStatus(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Looks for what makes an agent fail in silence. Creates and changes nothing. See
/// `AreChecksRunning` for the end of the process.
int RunDoctor(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Records this machine, or the recorded one that takes its place. Leaves the agent's data alone.
int RunRecord(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Runs the agent's service until a signal ends it.
int RunService(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Runs the process of a logged-on user until a signal ends it.
int RunUser(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Notifies the running agent of changes to software or hardware.
int RunNotify(const CommandLine& line, std::ostream& output, std::ostream& errors);
/// Lets the running agent show a message to the logged-on users.
int RunMessage(const CommandLine& line, std::ostream& output, std::ostream& errors);

}  // namespace Norvik::Cli
