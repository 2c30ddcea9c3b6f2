#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Norvik::Platform {

/// The account that a child runs under.
struct ChildAccount {
  uid_t user = 0;
  gid_t group = 0;
  std::string name;
  std::string home;
  std::string shell;
};

/// A program to run, and where its output goes.
struct ChildCommand {
  using Sink = std::function<void(std::string_view)>;

  /// A command that has the shell run a line.
  static ChildCommand ShellLine(const std::string& line);

  /// The program, searched for in PATH if its name has no "/", and its arguments.
  std::vector<std::string> words;
  /// Null: the account of this process. Otherwise the child gets that account's groups, a small
  /// environment of its own, and the account's home as its working folder.
  const ChildAccount* account = nullptr;
  /// Receive the output piece by piece, in order, on the calling thread. Without `onErrors` the
  /// standard error goes to the same place as the standard output; without `onOutput` it is lost.
  Sink onOutput;
  Sink onErrors;
  /// It changes nothing on the machine, so that a rehearsal runs it as well.
  bool isQuery = false;
  /// Made by `ShellLine`: a report shows the line in place of the words.
  bool isShellLine = false;
  /// How long it may run; 0 is unlimited.
  std::chrono::milliseconds timeLimit{0};
  /// Bytes that the sinks may receive in all; 0 is unlimited. Output without a sink is not counted.
  std::size_t outputLimit = 0;
};

struct ChildResult {
  /// The limit at which the program was killed with its process group.
  enum class Limit { NONE, TIME, OUTPUT };

  static ChildResult NotStarted(int error);

  bool started = false;
  std::string problem;  ///< why it could not be started
  int exitCode = -1;    ///< 128 plus the signal's number if a signal ended it
  Limit limit = Limit::NONE;
  pid_t processId = -1;
  bool onlyNoted = false;  ///< by a rehearsal, which did not run it
};

/// What processes that the program leaves running may still print, after it has ended itself.
inline constexpr std::chrono::seconds OUTPUT_GRACE{2};

/// Runs a program through the `SystemChanges` in force and waits until it has ended, and then at
/// most `OUTPUT_GRACE` until no process holds its output open any more. It has no standard input
/// (/dev/null), none of this process's descriptors, default signal handling and a process group of
/// its own. A rehearsal runs queries only and reports any other program as ended with 0, unless it
/// shows that it could not be started. Throws only what a sink throws, after the child has ended;
/// its output is closed before, so that its next write ends it.
ChildResult RunChild(const ChildCommand& command);

/// Runs a program that changes nothing, without a shell, waits for it, and returns its standard
/// output whole and unchanged; its error channel is discarded. Empty if it cannot be started. An
/// absolute path goes through `MachinePath`.
std::string RunTask(const std::string& program, const std::vector<std::string>& arguments);

}  // namespace Norvik::Platform
