#include "platform/ChildProcess.h"

#include <poll.h>
#include <sys/wait.h>

#include <cerrno>
#include <system_error>

#include "platform/ChildStart.h"
#include "platform/FileDescriptor.h"
#include "platform/MachinePath.h"
#include "platform/SystemChanges.h"

namespace Norvik::Platform {

namespace {

/// Waits for the child at the end of the scope, so that it does not remain as a zombie.
class ChildOwner {
 public:
  explicit ChildOwner(pid_t processId) : processId_(processId) {}
  ChildOwner(const ChildOwner&) = delete;
  ChildOwner& operator=(const ChildOwner&) = delete;
  ~ChildOwner() { Wait(); }

  int Wait() {
    if (processId_ < 0) return exitCode_;
    int status = 0;
    pid_t ended = -1;
    do {
      ended = ::waitpid(processId_, &status, 0);
    } while (ended < 0 && errno == EINTR);
    processId_ = -1;
    if (ended >= 0) exitCode_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return exitCode_;
  }

 private:
  pid_t processId_;
  int exitCode_ = -1;
};

/// Passes on what can be read now; closes the channel at its end.
void ReadSome(FileDescriptor& channel, const ChildCommand::Sink& sink) {
  char buffer[65536];
  const ssize_t length = ::read(channel.Get(), buffer, sizeof(buffer));
  if (length > 0) {
    if (sink) sink(std::string_view(buffer, static_cast<std::size_t>(length)));
  } else if (length == 0 || errno != EINTR) {
    channel.Close();
  }
}

/// Reads both channels as they fill, because the child would block on one that is full.
void Drain(FileDescriptor& output, FileDescriptor& errors, const ChildCommand& command) {
  while (output.IsOpen() || errors.IsOpen()) {
    // A closed channel has a negative descriptor, which poll ignores.
    pollfd channels[] = {{output.Get(), POLLIN, 0}, {errors.Get(), POLLIN, 0}};
    if (::poll(channels, 2, -1) < 0) {
      if (errno == EINTR) continue;
      return;
    }
    if (channels[0].revents != 0) ReadSome(output, command.onOutput);
    if (channels[1].revents != 0) ReadSome(errors, command.onErrors);
  }
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

  ChildOwner child(processId);
  output.write.Close();
  errors.write.Close();
  Drain(output.read, errors.read, command);
  ChildResult result;
  result.started = true;
  result.processId = processId;
  result.exitCode = child.Wait();
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
