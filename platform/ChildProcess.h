#pragma once

#include <sys/types.h>

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

/// A program to run, and what to do with what it prints.
struct ChildCommand {
  using Sink = std::function<void(std::string_view)>;

  /// The program, looked up in PATH if it has no "/", and its arguments.
  std::vector<std::string> words;
  /// Null: the account of this process. Otherwise the child gets that account's groups, a small
  /// environment of its own, and the account's home as its folder.
  const ChildAccount* account = nullptr;
  /// Take pieces of what the child prints, in order, on the calling thread. Without a sink for
  /// errors they go the way of the output.
  Sink onOutput;
  Sink onErrors;
  /// It changes nothing on the machine, so that it runs under a rehearsal as well.
  bool onlyAsks = false;
};

struct ChildResult {
  bool started = false;
  std::string problem;  ///< why it could not be started
  int exitCode = -1;    ///< 128 plus the signal's number if a signal ended it
  pid_t processId = -1;
};

/// Runs a program and waits until it has ended and nobody holds its output open any more. It has no
/// standard input (/dev/null), none of this process's descriptors, and default signal handling.
/// Raises only what a sink raises, after the child has ended. Under a rehearsal (see `Rehearsal`)
/// one that does not only ask is noted, and answered as started and ended well unless a look tells
/// that it could not be started.
ChildResult RunChild(const ChildCommand& command);

}  // namespace Norvik::Platform
