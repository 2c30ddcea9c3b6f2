#include "platform/ChildProcess.h"

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <system_error>

#include "platform/ChildStart.h"
#include "platform/FileDescriptor.h"
#include "platform/MachinePath.h"
#include "platform/SystemChanges.h"

namespace Norvik::Platform {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// Waits for the child at the end of the scope, so that it does not remain as a zombie.
class ChildOwner {
 public:
  ChildOwner() = default;
  ChildOwner(const ChildOwner&) = delete;
  ChildOwner& operator=(const ChildOwner&) = delete;
  ~ChildOwner() { Wait(0); }

  void Own(pid_t processId) { processId_ = processId; }
  bool HasEnded() { return Wait(WNOHANG); }
  void KillGroup() {
    if (processId_ > 0) ::kill(-processId_, SIGKILL);
  }
  /// Of a child that has ended.
  int ExitCode() const { return exitCode_; }
  /// Whether it has ended.
  bool Wait(int options) {
    if (processId_ < 0) return true;
    int status = 0;
    pid_t ended = -1;
    do {
      ended = ::waitpid(processId_, &status, options);
    } while (ended < 0 && errno == EINTR);
    if (ended == 0) return false;
    processId_ = -1;
    if (ended > 0) exitCode_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return true;
  }

 private:
  pid_t processId_ = -1;
  int exitCode_ = -1;
};

/// Passes on the output of a child until all is read, or a limit is reached.
class OutputReader {
 public:
  OutputReader(const ChildCommand& command, FileDescriptor& output, FileDescriptor& errors)
      : command_(command), output_(output), errors_(errors) {}

  bool IsAtEnd() const { return !output_.IsOpen() && !errors_.IsOpen(); }
  bool IsOverLimit() const { return isOverLimit_; }

  /// Waits for output for some time. Returns whether there was any, or an end of it.
  bool ReadFor(milliseconds longest) {
    // A closed channel has a negative descriptor, which poll ignores.
    pollfd channels[] = {{output_.Get(), POLLIN, 0}, {errors_.Get(), POLLIN, 0}};
    if (::poll(channels, 2, static_cast<int>(longest.count())) <= 0) return false;
    if (channels[0].revents != 0) ReadSome(output_, command_.onOutput);
    if (channels[1].revents != 0) ReadSome(errors_, command_.onErrors);
    return true;
  }

 private:
  /// Passes on what can be read now; closes the channel at its end.
  void ReadSome(FileDescriptor& channel, const ChildCommand::Sink& sink) {
    char buffer[65536];
    const ssize_t length = ::read(channel.Get(), buffer, sizeof(buffer));
    if (length > 0) {
      if (sink && !isOverLimit_)
        Pass(std::string_view(buffer, static_cast<std::size_t>(length)), sink);
    } else if (length == 0 || errno != EINTR) {
      channel.Close();
    }
  }

  void Pass(std::string_view piece, const ChildCommand::Sink& sink) {
    if (command_.outputLimit > 0 && piece.size() > command_.outputLimit - passed_) {
      isOverLimit_ = true;
      piece = piece.substr(0, command_.outputLimit - passed_);
    }
    passed_ += piece.size();
    sink(piece);
  }

  const ChildCommand& command_;
  FileDescriptor& output_;
  FileDescriptor& errors_;
  std::size_t passed_ = 0;
  bool isOverLimit_ = false;
};

/// Reads until the child has ended and its output too, as far as the limits permit. The end of a
/// child has no descriptor to wait for on all systems, so it is asked for at growing intervals.
ChildResult::Limit ReadToEnd(const ChildCommand& command, OutputReader& reader, ChildOwner& child) {
  const bool isTimed = command.timeLimit > milliseconds::zero();
  const auto begin = Clock::now();
  std::optional<Clock::time_point> end;  // of the grace, once the child has ended
  milliseconds pause(1);
  while (!end || (!reader.IsAtEnd() && Clock::now() < *end)) {
    if (reader.IsAtEnd() && !isTimed) {
      child.Wait(0);
      break;
    }
    pause = reader.ReadFor(pause) ? milliseconds(1) : std::min(2 * pause, milliseconds(100));
    if (reader.IsOverLimit()) return ChildResult::Limit::OUTPUT;
    if (!end && child.HasEnded()) end = Clock::now() + OUTPUT_GRACE;
    const bool isLate = isTimed && Clock::now() - begin >= command.timeLimit;
    if (!end && isLate) return ChildResult::Limit::TIME;
  }
  // What fits into a pipe may be left if a sink was slow.
  for (int reads = 0; reads < 16 && reader.ReadFor(milliseconds::zero()); ++reads) continue;
  return ChildResult::Limit::NONE;
}

bool AreUsable(const std::vector<std::string>& words) {
  if (words.empty() || words.front().empty()) return false;
  for (const auto& word : words) {
    // A NUL would cut the word, and another command would run.
    if (word.find('\0') != std::string::npos) return false;
  }
  return true;
}

}  // namespace

ChildCommand ChildCommand::ShellLine(const std::string& line) {
  ChildCommand command;
  command.words = {"/bin/sh", "-c", line};
  command.isShellLine = true;
  return command;
}

ChildResult ChildResult::NotStarted(int error) {
  ChildResult result;
  result.problem = std::generic_category().message(error);
  return result;
}

ChildResult RunChild(const ChildCommand& command) {
  if (!AreUsable(command.words)) return ChildResult::NotStarted(EINVAL);
  return GetSystemChanges()->Run(command);
}

ChildResult RealSystemChanges::Run(const ChildCommand& command) {
  // Before the pipes, so that they are closed first if a sink throws: a child that writes to a pipe
  // that nobody reads would never end.
  ChildOwner child;
  Pipe output;
  Pipe errors;
  if (!output.Open() || (command.onErrors && !errors.Open())) return ChildResult::NotStarted(errno);

  const int outputEnd = output.write.Get();
  const ChildChannels channels{outputEnd, command.onErrors ? errors.write.Get() : outputEnd};
  pid_t processId = -1;
  const int error = command.account
                        ? StartChildAs(*command.account, command.words, channels, processId)
                        : StartChild(command.words, channels, processId);
  if (error != 0) return ChildResult::NotStarted(error);

  child.Own(processId);
  output.write.Close();
  errors.write.Close();
  OutputReader reader(command, output.read, errors.read);
  ChildResult result;
  result.started = true;
  result.processId = processId;
  result.limit = ReadToEnd(command, reader, child);
  if (result.limit != ChildResult::Limit::NONE) child.KillGroup();
  child.Wait(0);
  result.exitCode = child.ExitCode();
  return result;
}

std::string RunTask(const std::string& program, const std::vector<std::string>& arguments) {
  std::string output;
  ChildCommand child;
  child.words = {MachinePath(program)};
  child.words.insert(child.words.end(), arguments.begin(), arguments.end());
  child.onOutput = [&](std::string_view piece) { output += piece; };
  child.onErrors = [](std::string_view) {};
  child.isQuery = true;
  RunChild(child);
  return output;
}

}  // namespace Norvik::Platform
